# halvora_module(NAME SOURCES ... HEADERS ... DEPENDS ...)
#
# A module: one static library of its own flags. HEADERS are named so that the target
# all_verify_interface_header_sets can compile each of them alone. Paths are relative to the module;
# a file is included from elsewhere as "module/File.h".
function(halvora_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;HEADERS;DEPENDS" ${ARGN})
  add_library(${name} STATIC ${MODULE_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${CMAKE_SOURCE_DIR}" FILES ${MODULE_HEADERS})
  target_link_libraries(${name} PUBLIC halvora_flags ${MODULE_DEPENDS})
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  halvora_precompiled(${name})
endfunction()

# halvora_test(NAME SOURCES ... LIBRARIES ... [LABELS ...])
#
# A GoogleTest program, one entry of ctest; it runs under the emulator where the build needs one. A
# program that shows windows has no display until test_shows_windows(NAME) gives it one.
function(halvora_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE test_main ${TEST_LIBRARIES})
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
  # Test code is compiled more often than it is run long; its optimisation buys nothing.
  target_compile_options(${name} PRIVATE -O0)
  # GoogleTest is most of what a test program's compiler reads; it is read once.
  halvora_precompiled(${name} test_main)
  # So that resources and exported functions of the program are found as a module's are.
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 LABELS "${TEST_LABELS}"
    ENVIRONMENT "HALVORA_REGISTRY_FILE=${CMAKE_CURRENT_BINARY_DIR}/${name}.reg")
endfunction()

function(test_shows_windows name)
  if(NOT HALVORA_NATIVE)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "HALVORA_DISPLAY=own")
    # Starting a display and a prefix takes time; a dialog that hangs must not take all of it.
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK display TIMEOUT 180)
  endif()
endfunction()
