# halvora_headers_alone(TARGET PRECOMPILED HEADERS...)
#
# The target headers_alone compiles each header alone, in front of it nothing but the precompiled header of the
# target PRECOMPILED. In a build with HALVORA_PRECOMPILE=OFF there is none (tools/check-sources --tidy); that
# takes five times as long.
add_custom_target(headers_alone)
function(halvora_headers_alone target precompiled)
  set(sources)
  foreach(header ${ARGN})
    file(RELATIVE_PATH path "${CMAKE_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}/${header}")
    file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/headers_alone/${path}.cpp" CONTENT "#include \"${path}\"\n")
    list(APPEND sources "${CMAKE_BINARY_DIR}/headers_alone/${path}.cpp")
  endforeach()
  add_library(${target}_headers_alone OBJECT EXCLUDE_FROM_ALL ${sources})
  target_include_directories(${target}_headers_alone PRIVATE "${CMAKE_SOURCE_DIR}")
  target_link_libraries(${target}_headers_alone PRIVATE ${target})
  halvora_precompiled(${target}_headers_alone ${precompiled})
  add_dependencies(headers_alone ${target}_headers_alone)
endfunction()

# halvora_module(NAME SOURCES ... HEADERS ... DEPENDS ...)
#
# A module is one static library. HEADERS are listed so that each of them can be compiled alone. Paths are
# relative to the module; other files include a header as "module/File.h".
function(halvora_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;HEADERS;DEPENDS" ${ARGN})
  add_library(${name} STATIC ${MODULE_SOURCES})
  target_link_libraries(${name} PUBLIC halvora_flags ${MODULE_DEPENDS})
  target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}")
  halvora_precompiled(${name})
  halvora_headers_alone(${name} module_headers ${MODULE_HEADERS})
endfunction()

# halvora_test(NAME SOURCES ... LIBRARIES ... [LABELS ...])
#
# A GoogleTest program and its entry in ctest, which uses the emulator if the build needs one. A program
# that shows windows needs test_shows_windows(NAME), which gives it a display.
function(halvora_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE test_main ${TEST_LIBRARIES})
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
  target_compile_options(${name} PRIVATE ${HALVORA_TEST_OPTIONS})
  # Most of what the compiler reads for a test is GoogleTest; this way it reads that once.
  halvora_precompiled(${name} test_main)
  # The program's resources and exported functions can then be found as a module's are.
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 LABELS "${TEST_LABELS}"
    ENVIRONMENT "HALVORA_REGISTRY_FILE=${CMAKE_CURRENT_BINARY_DIR}/${name}.reg")
endfunction()

function(test_shows_windows name)
  if(NOT HALVORA_NATIVE)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "HALVORA_DISPLAY=own")
    # Long enough to start a display and a Wine prefix, short enough for a dialog that hangs.
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK display TIMEOUT 180)
  endif()
endfunction()
