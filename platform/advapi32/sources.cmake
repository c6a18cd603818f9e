target_sources(platform PRIVATE
  advapi32/RegistryContent.cpp
  advapi32/RegistryDatabase.cpp
  advapi32/RegistryKeys.cpp
  advapi32/RegistryText.cpp
  advapi32/RegistryValues.cpp)
