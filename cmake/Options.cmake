# The options that a user can set at configure time, and the flags that all targets share.

if(WIN32)
  set(HALVORA_NATIVE OFF)
else()
  set(HALVORA_NATIVE ON)
endif()

option(HALVORA_SANITIZE "Address, leak and undefined-behaviour sanitizers (native only)" OFF)
option(HALVORA_PRECOMPILE "Precompiled headers" ON)
option(HALVORA_FUZZ "Trials of the readers with spoiled samples (native only)" ${HALVORA_SANITIZE})
set(HALVORA_API_HOST "api.flickr.com" CACHE STRING "Host of the photo service's API")
set(HALVORA_WEB_HOST "www.flickr.com" CACHE STRING "Host of the photo service's web pages")
set(HALVORA_MAKER_HOST "authorization.halvora.example" CACHE STRING "The maker's authorization host")
set(HALVORA_DEMONSTRATION_KEY "68616c766f72612d64656d6f2d6b6579") # known to flickr-loopback alone
set(HALVORA_APPLICATION_KEY "${HALVORA_DEMONSTRATION_KEY}" CACHE STRING
    "OAuth consumer key of the application, 32 characters")
set(HALVORA_APPLICATION_SECRET "64656d6f2d736563" CACHE STRING
    "OAuth consumer secret of the application, 16 characters")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
# Programs and modules find their libraries by paths relative to themselves: nothing in them depends on the
# folder that they were built in.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${CMAKE_SOURCE_DIR}/cmake/launch-compiler")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_C_COMPILER_LAUNCHER}")
endif()

# Flags of our own code; third-party sources built here don't get them.
add_library(halvora_flags INTERFACE)
target_compile_options(halvora_flags INTERFACE -Wall -Wextra -Wno-missing-field-initializers
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>) # g++ 12 warns falsely of "literal" + std::string&&
target_compile_definitions(halvora_flags INTERFACE UNICODE _UNICODE NOMINMAX)

if(HALVORA_NATIVE)
  # The Windows headers that Debian packages with Wine. windef.h gives every WINAPI function the Microsoft
  # calling convention, which lambdas and mocks can't have, so natively all functions use the system's
  # own. The headers also mark imported functions as hidden, but here they are in other shared libraries.
  target_compile_options(halvora_flags INTERFACE
    "SHELL:-isystem /usr/include/wine/wine/windows"
    -Dms_abi= -D__ms_va_list=va_list -D__ms_va_start=va_start -D__ms_va_end=va_end
    -D__ms_va_copy=va_copy -DDECLSPEC_HIDDEN= -Wno-ignored-attributes -fPIC
    # Also for targets without threads: a precompiled header fits only targets with the same setting.
    -pthread)
  # Before Wine's headers, since ours of the same name are more complete.
  target_include_directories(halvora_flags BEFORE INTERFACE "${CMAKE_SOURCE_DIR}/platform/include")
  if(HALVORA_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    if(CMAKE_CXX_COMPILER_ID STREQUAL Clang) # its libFuzzer sees what has been reached
      add_compile_options(-fsanitize=fuzzer-no-link)
    endif()
  endif()
else()
  target_compile_definitions(halvora_flags INTERFACE STRSAFE_NO_DEPRECATE
    _WIN32_WINNT=0x0601 WINVER=0x0601)
  # For modules and programs: any load address, no executable data, and a guarded stack.
  add_compile_options(-fstack-protector-strong)
  add_link_options(-static -fstack-protector-strong "LINKER:--dynamicbase,--high-entropy-va,--nxcompat")
  # The linker writes the time into each file unless told not to: the same source gives the same bytes.
  add_link_options(LINKER:--no-insert-timestamp)
endif()

# For code of tests: optimising it takes longer than it saves, and undefined behaviour is looked for in what is
# tested; checking for it in the tests as well doubles the time to compile them.
set(HALVORA_TEST_OPTIONS -O0)
if(HALVORA_SANITIZE)
  list(APPEND HALVORA_TEST_OPTIONS -fno-sanitize=undefined)
endif()

# halvora_precompiled(TARGET [HEADERS-OF]) gives a target the precompiled header of all modules, or that of the
# target HEADERS-OF. Each is built only once.
set(CMAKE_PCH_INSTANTIATE_TEMPLATES OFF)
if(HALVORA_PRECOMPILE)
  set(nothing "${CMAKE_BINARY_DIR}/generated/PrecompiledForModules.cpp")
  file(GENERATE OUTPUT "${nothing}" CONTENT "// Nothing but the precompiled header.\n")
  add_library(module_headers OBJECT "${nothing}")
  target_include_directories(module_headers PRIVATE "${CMAKE_SOURCE_DIR}")
  target_link_libraries(module_headers PRIVATE halvora_flags)
  target_precompile_headers(module_headers PRIVATE <cmake/PrecompiledForModules.h>)
endif()
function(halvora_precompiled target)
  if(HALVORA_PRECOMPILE)
    set(source module_headers)
    if(ARGC GREATER 1)
      set(source "${ARGV1}")
    endif()
    target_precompile_headers(${target} REUSE_FROM ${source})
    # A file that defines the GUIDs of the Windows headers (INITGUID) must include these headers itself.
    get_target_property(files ${target} SOURCES)
    list(FILTER files INCLUDE REGEX "(Identifiers|Guids|Module)\\.cpp$")
    set_source_files_properties(${files} "${CMAKE_SOURCE_DIR}/com/Identifiers.cpp"
      PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()
