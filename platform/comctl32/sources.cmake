target_sources(platform PRIVATE
  comctl32/ProgressBar.cpp
  comctl32/TaskDialog.cpp)
