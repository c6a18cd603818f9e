target_sources(platform PRIVATE
  shlwapi/ByteSize.cpp
  shlwapi/Texts.cpp)
