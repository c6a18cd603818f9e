target_sources(platform PRIVATE
  kernel32/Errors.cpp
  kernel32/LoadedModules.cpp
  kernel32/LocaleConventions.cpp
  kernel32/LocaleInformation.cpp
  kernel32/MemoryBlocks.cpp
  kernel32/Modules.cpp
  kernel32/NumberFormat.cpp
  kernel32/ResourceSection.cpp
  kernel32/Resources.cpp
  kernel32/SystemVersion.cpp
  kernel32/Time.cpp)
