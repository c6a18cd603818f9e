target_sources(platform PRIVATE
  user32/CaseMapping.cpp
  user32/CharacterCase.cpp
  user32/Foreground.cpp
  user32/Icons.cpp
  user32/MessageBox.cpp
  user32/StringResources.cpp
  user32/WindowStore.cpp
  user32/Windows.cpp)
