# Installs the library, its public headers, its pkg-config file and CMake package, and the files for
# authors of pages. The programs' folders install the programs.
include(CMakePackageConfigHelpers)

set(public_headers
  common/LinuxCommonUtils.h
  ipc/protocol.h
  ipc/webkit_client.h
  ipc/webkit_util.h
  log/zynlog.h
  log/zynlog_config.h
  log/zynlog_paths.h)
foreach(header IN LISTS public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${PROJECT_NAME}/${folder})
endforeach()
# Its installed path does not follow the source folder.
install(FILES extension/KsJS_proxy.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${PROJECT_NAME}/jsapi)

# Alone in its directory, because WebKit loads every library in it. A module without soname: programs
# that link it name the file and its directory, as the pkg-config file does.
set(webextensiondir ${CMAKE_INSTALL_LIBDIR}/${PROJECT_NAME}/web-extensions)
install(TARGETS kestrel-extension LIBRARY DESTINATION ${webextensiondir})

# The paths in the pkg-config file are relative to it, so that the prefix can be moved. pkg-config
# escapes blanks in its own directory; absolute paths would have to be escaped here.
file(RELATIVE_PATH prefix_from_pc "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH includedir_from_pc "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
     "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
configure_file(cmake/kestrel-extension.pc.in ${PROJECT_BINARY_DIR}/kestrel-extension.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kestrel-extension.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(config_directory ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
configure_package_config_file(
  cmake/kestrel-extension-config.cmake.in ${PROJECT_BINARY_DIR}/kestrel-extension-config.cmake
  INSTALL_DESTINATION ${config_directory}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR webextensiondir)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/kestrel-extension-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kestrel-extension-config.cmake
              ${PROJECT_BINARY_DIR}/kestrel-extension-config-version.cmake
        DESTINATION ${config_directory})

# The workbench's default page.
install(DIRECTORY examples/store DESTINATION ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME})
install(DIRECTORY types DESTINATION ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME}
        FILES_MATCHING PATTERN *.d.ts PATTERN package.json PATTERN README.md)

# With the layout of the source tree, so that links between documents work.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.svg PATTERN man EXCLUDE)
install(DIRECTORY examples/catalogue examples/utilities DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
foreach(program IN ITEMS kestrel-log kestrel-workbench)
  configure_file(docs/man/${program}.1.in ${PROJECT_BINARY_DIR}/man/${program}.1 @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
