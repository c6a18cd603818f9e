target_sources(platform PRIVATE shell32/ShellExecute.cpp)
