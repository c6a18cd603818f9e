# halvora_interfaces(TARGET FILE.idl ...)
#
# Generates a header from the IDL file. Both builds use Wine's widl and the same header; targets that link
# TARGET include it by its bare name.
find_program(WIDL widl REQUIRED)
set(HALVORA_IDL_INCLUDE /usr/include/wine/wine/windows)

# What tools that read the sources need to have been made.
add_custom_target(generated_sources)

function(halvora_interfaces target)
  set(out "${CMAKE_BINARY_DIR}/interfaces")
  file(MAKE_DIRECTORY "${out}")
  set(headers)
  foreach(idl ${ARGN})
    get_filename_component(base "${idl}" NAME_WE)
    set(header "${out}/${base}.h")
    add_custom_command(OUTPUT "${header}"
      COMMAND "${WIDL}" -I "${HALVORA_IDL_INCLUDE}" -h -o "${header}" "${CMAKE_CURRENT_SOURCE_DIR}/${idl}"
      DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${idl}" VERBATIM)
    list(APPEND headers "${header}")
  endforeach()
  add_custom_target(${target}_headers DEPENDS ${headers})
  add_library(${target} INTERFACE)
  add_dependencies(${target} ${target}_headers)
  add_dependencies(generated_sources ${target}_headers)
  target_include_directories(${target} SYSTEM INTERFACE "${out}")
endfunction()
