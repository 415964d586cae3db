# What other programs get: the library, the headers of its interface and a pkg-config file.

set(public_headers
  common/LinuxCommonUtils.h
  ipc/protocol.h
  ipc/webkit_client.h
  ipc/webkit_util.h
  jsapi/KsJS_proxy.h
  log/zynlog.h
  log/zynlog_config.h
  log/zynlog_paths.h)
foreach(header IN LISTS public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header}
          DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${PROJECT_NAME}/${folder})
endforeach()

# Alone in its directory: WebKit loads every library that it finds there. It stays a module, without
# soname: programs that link it name the file and its directory, as the pkg-config file does.
install(TARGETS kestrel-extension
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${PROJECT_NAME}/web-extensions)

# Written when installing, as only then the prefix is known: cmake --install takes another one.
# A directory that is absolute already stays as it is.
set(libdir "\${prefix}")
set(includedir "\${prefix}")
cmake_path(APPEND libdir ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND includedir ${CMAKE_INSTALL_INCLUDEDIR})
install(CODE "
  set(libdir [[${libdir}]])
  set(includedir [[${includedir}]])
  set(PROJECT_VERSION ${PROJECT_VERSION})
  set(KESTREL_WEBKIT_API ${KESTREL_WEBKIT_API})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/kestrel-extension.pc.in
                 ${PROJECT_BINARY_DIR}/kestrel-extension.pc @ONLY)")
install(FILES ${PROJECT_BINARY_DIR}/kestrel-extension.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
