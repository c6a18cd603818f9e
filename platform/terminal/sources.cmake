target_sources(platform PRIVATE
  terminal/ButtonWords.cpp
  terminal/DialogAnswer.cpp
  terminal/DialogDrawing.cpp
  terminal/TerminalDevice.cpp
  terminal/TerminalDialog.cpp
  terminal/TerminalText.cpp)
