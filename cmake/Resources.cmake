# halvora_resources(TARGET FILE.rc [DEPENDS ...])
#
# Puts the resources of one script into the module TARGET. For Windows the linker does that; natively the
# compiled .res is put into the ELF section ".rsrc", where platform/kernel32 finds it.
find_program(WINDRES x86_64-w64-mingw32-windres REQUIRED)

function(halvora_resources target rc)
  cmake_parse_arguments(RC "" "" "DEPENDS;INCLUDES" ${ARGN})
  get_filename_component(rc "${rc}" ABSOLUTE)
  get_filename_component(base "${rc}" NAME_WE)
  get_filename_component(dir "${rc}" DIRECTORY)
  set(includes -I "${CMAKE_SOURCE_DIR}" -I "${dir}" -I "${CMAKE_BINARY_DIR}/interfaces")
  foreach(i ${RC_INCLUDES})
    list(APPEND includes -I "${i}")
  endforeach()
  if(HALVORA_NATIVE)
    set(out "${CMAKE_CURRENT_BINARY_DIR}/${target}.${base}")
    add_custom_command(OUTPUT "${out}.res"
      COMMAND "${WINDRES}" ${includes} -O res "${rc}" "${out}.res"
      DEPENDS "${rc}" ${RC_DEPENDS} VERBATIM)
    file(WRITE "${out}.S.new"
      ".section .rsrc,\"a\",@progbits\n.balign 8\n.incbin \"${out}.res\"\n.section .note.GNU-stack,\"\",@progbits\n")
    file(COPY_FILE "${out}.S.new" "${out}.S" ONLY_IF_DIFFERENT)
    set_source_files_properties("${out}.S" PROPERTIES LANGUAGE ASM OBJECT_DEPENDS "${out}.res")
    target_sources(${target} PRIVATE "${out}.S")
  else()
    set(object "${CMAKE_CURRENT_BINARY_DIR}/${target}.${base}.o")
    add_custom_command(OUTPUT "${object}"
      COMMAND "${WINDRES}" ${includes} -O coff "${rc}" "${object}"
      DEPENDS "${rc}" ${RC_DEPENDS} VERBATIM)
    set_source_files_properties("${object}" PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
    target_sources(${target} PRIVATE "${object}")
  endif()
endfunction()
