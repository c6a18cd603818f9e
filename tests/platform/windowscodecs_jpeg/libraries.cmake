# The tests make their pictures with the JPEG library itself, and look at results with it.
if(HALVORA_NATIVE)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(LIBJPEG REQUIRED IMPORTED_TARGET libjpeg)
  list(APPEND libraries windowscodecs_jpeg PkgConfig::LIBJPEG)
endif()
