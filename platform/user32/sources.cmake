target_sources(platform PRIVATE
  user32/CaseMapping.cpp
  user32/MessageBox.cpp
  user32/Resources.cpp
  user32/WindowStore.cpp
  user32/Windows.cpp)
