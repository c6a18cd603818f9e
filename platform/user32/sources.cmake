target_sources(platform PRIVATE
  user32/StringResources.cpp)
