# What is installed where, and the packages that CPack makes from it: natively two Debian packages, the program and
# the service to try it with; for Windows a zip. Installing and packing build nothing; tools/package builds
# everything first.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
set(out "${CMAKE_BINARY_DIR}/packaging")
set(in "${CMAKE_SOURCE_DIR}/packaging")
set(script "${CMAKE_SOURCE_DIR}/resources/Publisher.rc")

# Version and copyright come from the resources of the modules, so that the packages state the same.
file(STRINGS "${script}" line REGEX "^FILEVERSION ")
string(REGEX REPLACE "^FILEVERSION +| " "" version "${line}")
string(REPLACE "," "." version "${version}")
if(NOT version STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "resources/Publisher.rc has the version ${version}, the project ${PROJECT_VERSION}.")
endif()
file(STRINGS "${script}" line REGEX "\"LegalCopyright\"" ENCODING UTF-8)
string(REGEX REPLACE ".*, \"(.*)\"" "\\1" HALVORA_COPYRIGHT "${line}")
string(REPLACE "©" "(c)" HALVORA_COPYRIGHT "${HALVORA_COPYRIGHT}")

# Builds exactly what is installed.
add_custom_target(installed)

# licence_text(PACKAGE NAME COMPONENT) installs the licence, as Debian's PACKAGE has it, of code that we link or
# compile in.
function(licence_text package name component)
  install(FILES "/usr/share/doc/${package}/copyright" DESTINATION "${licences}" RENAME "${name}.txt"
    COMPONENT ${component})
endfunction()

# manual_of_settings(RESULT) gives the manual's list of the settings, from the tables that the programs use.
function(manual_of_settings result)
  file(READ "${CMAKE_SOURCE_DIR}/settings/StoredSettings.cpp" source)
  string(REGEX MATCHALL "{(kind . )?TEXT\\(\"[^}]*\\)}" rows "${source}")
  foreach(row ${rows})
    string(REGEX MATCH "ConversionSettings|^{kind" of_each_kind "${row}")
    string(REGEX REPLACE "^[^\"]*\"([A-Za-z]+)\".*TEXT.\"(.*)\".}$" "\\1\n\\2" row "${row}")
    string(REPLACE "\\\"" "\"" row "${row}")
    if(of_each_kind)
      string(REPLACE "\n" "\nJPEG files: " jpeg_row "${row}")
      string(REPLACE "\n" "\nRAW and TIFF files: " raw_row "${row}")
      list(APPEND jpeg_rows "JPEG${jpeg_row}")
      list(APPEND raw_rows "RAW${raw_row}")
    else()
      list(APPEND other_rows "${row}")
    endif()
  endforeach()
  list(POP_FRONT other_rows mode)
  foreach(row ${mode} ${jpeg_rows} ${raw_rows} ${other_rows})
    list(APPEND manual ".TP\n.B ${row}")
  endforeach()
  list(JOIN manual "\n" manual)
  set(${result} "${manual}" PARENT_SCOPE)
endfunction()

set(CPACK_PACKAGE_NAME halvora)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_VENDOR "Halvora")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

if(HALVORA_NATIVE)
  # Not in lib or directly below it: only our programs use these libraries, and CPack would register them
  # with the system's loader.
  set(folder lib/halvora/modules)
  set(modules publisher web_components msxml windowscodecs platform)
  install(TARGETS halvora RUNTIME DESTINATION bin COMPONENT host)
  install(TARGETS ${modules} LIBRARY DESTINATION ${folder} COMPONENT host)
  install(TARGETS flickr-loopback RUNTIME DESTINATION bin COMPONENT service)
  set_target_properties(halvora PROPERTIES INSTALL_RPATH "$ORIGIN/../${folder}")
  set_target_properties(${modules} PROPERTIES INSTALL_RPATH "$ORIGIN")
  add_dependencies(installed halvora flickr-loopback ${modules})

  # Compressed as Debian requires. The changelog states only the version and its date.
  execute_process(COMMAND git -C "${CMAKE_SOURCE_DIR}" log -1 --format=%cD
    OUTPUT_VARIABLE HALVORA_DAY OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(NOT HALVORA_DAY)
    execute_process(COMMAND date -R OUTPUT_VARIABLE HALVORA_DAY OUTPUT_STRIP_TRAILING_WHITESPACE)
  endif()
  set(HALVORA_MAINTAINER "Halvora Publish to Flickr developers <developers@halvora.example>")
  manual_of_settings(HALVORA_SETTINGS)
  foreach(name halvora flickr-loopback)
    configure_file("${in}/debian/${name}.1" "${out}/${name}.1" @ONLY)
    configure_file("${in}/debian/changelog" "${out}/changelog-${name}/changelog" @ONLY)
    execute_process(COMMAND gzip -9nkf "${out}/${name}.1" "${out}/changelog-${name}/changelog"
      COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  install(FILES "${in}/debian/completion/halvora.bash" DESTINATION share/bash-completion/completions RENAME halvora
    COMPONENT host)
  install(FILES "${in}/debian/completion/_halvora" DESTINATION share/zsh/vendor-completions COMPONENT host)
  install(FILES "${in}/debian/completion/halvora.fish" DESTINATION share/fish/vendor_completions.d COMPONENT host)
  # "Open with" in file managers; not shown in menus.
  install(FILES "${in}/debian/halvora.desktop" DESTINATION share/applications COMPONENT host)
  install(FILES "${in}/debian/halvora.svg" DESTINATION share/icons/hicolor/scalable/apps COMPONENT host)
  install(FILES "${in}/debian/example.halvora.Halvora.metainfo.xml" DESTINATION share/metainfo COMPONENT host)
  foreach(pair host:halvora service:flickr-loopback)
    string(REPLACE ":" ";" pair "${pair}")
    list(GET pair 0 component)
    list(GET pair 1 name)
    set(licences share/doc/${name})
    install(FILES "${out}/${name}.1.gz" DESTINATION share/man/man1 COMPONENT ${component})
    install(FILES "${in}/debian/copyright" "${out}/changelog-${name}/changelog.gz" DESTINATION "${licences}"
      COMPONENT ${component})
    licence_text(libcli11-dev CLI11 ${component})
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  endforeach()
  licence_text(nlohmann-json3-dev nlohmann-json service)

  set(CPACK_GENERATOR DEB)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_COMPONENTS_ALL host service)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${HALVORA_MAINTAINER}")
  set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/lib")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  # The first line of each is the summary.
  set(CPACK_DEBIAN_HOST_DESCRIPTION
    "upload photos to Flickr from the terminal
Uploads your photos to your Flickr account: byte for byte, with their
pixels untouched and only the metadata you allow, or re-rendered from camera
RAW and other files. You give your permission in your web browser. It shows
progress and the time left, and says what went wrong with which file.
.
The package flickr-loopback has a photo service on this computer, to try
everything without an account.")
  set(CPACK_DEBIAN_SERVICE_DESCRIPTION
    "photo service on this computer, to try uploading to Flickr
Behaves on 127.0.0.1 as the photo service does on the Internet, for
demonstrations, tests and experiments: it grants permissions, accepts
uploads and shows them in a gallery. Nothing leaves the computer.")
  # CA certificates, which shlibdeps can't find. The browser is optional.
  set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "ca-certificates")
  set(CPACK_DEBIAN_HOST_PACKAGE_RECOMMENDS "xdg-utils")
  set(CPACK_DEBIAN_HOST_PACKAGE_SUGGESTS "flickr-loopback")
  set(CPACK_DEBIAN_SERVICE_PACKAGE_SUGGESTS "halvora")
else()
  # Only those that this build makes.
  set(HALVORA_MODULES)
  set(HALVORA_PROGRAMS)
  foreach(target web_components publisher halvora)
    if(TARGET ${target})
      install(TARGETS ${target} RUNTIME DESTINATION . LIBRARY DESTINATION .)
      add_dependencies(installed ${target})
      get_target_property(type ${target} TYPE)
      get_target_property(name ${target} OUTPUT_NAME)
      if(type STREQUAL EXECUTABLE)
        string(APPEND HALVORA_PROGRAMS " ${name}.exe")
      else()
        string(APPEND HALVORA_MODULES " ${name}.dll")
      endif()
    endif()
  endforeach()
  foreach(text install.cmd uninstall.cmd ReadMe.txt)
    configure_file("${in}/windows/${text}" "${out}/${text}" @ONLY NEWLINE_STYLE CRLF)
    install(FILES "${out}/${text}" DESTINATION .)
  endforeach()
  set(licences Licences)
  configure_file("${in}/windows/Halvora.txt" "${out}/Halvora.txt" @ONLY NEWLINE_STYLE CRLF)
  install(FILES "${out}/Halvora.txt" DESTINATION "${licences}")
  # Linked into every module: the C runtime's startup code and winpthreads, libgcc and libstdc++.
  licence_text(mingw-w64-common mingw-w64 Unspecified)
  licence_text(gcc-mingw-w64-base gcc Unspecified)
  install(FILES /usr/share/common-licenses/GPL-3 DESTINATION "${licences}" RENAME GPL-3.txt)

  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "Halvora.Publishing.Plugin.Flickr-${PROJECT_VERSION}-x64")
endif()
include(CPack)
