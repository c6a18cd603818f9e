target_sources(platform PRIVATE
  ole32/ClassObjects.cpp
  ole32/FileStream.cpp
  ole32/FreeThreadedMarshaler.cpp
  ole32/Guids.cpp
  ole32/MemoryStream.cpp
  ole32/PropVariant.cpp)
