target_sources(platform PRIVATE
  ole32/Apartment.cpp
  ole32/ClassObjects.cpp
  ole32/FileStream.cpp
  ole32/FreeThreadedMarshaler.cpp
  ole32/Guids.cpp
  ole32/MemoryStream.cpp
  ole32/PropVariant.cpp
  ole32/TaskMemory.cpp)
