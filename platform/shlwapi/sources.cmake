target_sources(platform PRIVATE
  shlwapi/ByteSize.cpp
  shlwapi/Paths.cpp
  shlwapi/Texts.cpp)
