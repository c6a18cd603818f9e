target_sources(platform PRIVATE
  strsafe/StringCch.cpp
  strsafe/WideFormat.cpp)
