target_sources(platform PRIVATE
  kernel32/LastError.cpp)
