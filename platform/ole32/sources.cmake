target_sources(platform PRIVATE
  ole32/Apartment.cpp
  ole32/ClassObjects.cpp
  ole32/Guids.cpp
  ole32/Identifiers.cpp
  ole32/TaskMemory.cpp)
