target_sources(platform PRIVATE
  strsafe/StringCch.cpp)
