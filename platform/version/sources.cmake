target_sources(platform PRIVATE
  version/VersionInformation.cpp)
