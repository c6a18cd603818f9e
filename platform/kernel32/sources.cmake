target_sources(platform PRIVATE
  kernel32/LastError.cpp
  kernel32/PathText.cpp
  kernel32/Utf8.cpp)
