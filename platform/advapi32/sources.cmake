target_sources(platform PRIVATE
  advapi32/Registry.cpp
  advapi32/RegistryContent.cpp
  advapi32/RegistryDatabase.cpp
  advapi32/RegistryText.cpp)
