target_sources(platform PRIVATE
  shell32/DetachedProgram.cpp
  shell32/ShellExecute.cpp)
