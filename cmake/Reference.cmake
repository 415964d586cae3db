# The public headers as HTML without scripts: cmake --build … --target reference. It is installed if it
# has been built.
find_package(Doxygen)
if(NOT DOXYGEN_FOUND)
  return()
endif()

set(reference_sources ${PROJECT_SOURCE_DIR}/cmake/reference)
set(DOXYGEN_PROJECT_NAME "Kestrel Extension")
# The include path that it has when it is installed.
set(installed_headers ${PROJECT_BINARY_DIR}/reference-headers)
configure_file(extension/KsJS_proxy.h ${installed_headers}/jsapi/KsJS_proxy.h COPYONLY)

set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/reference)
set(DOXYGEN_INPUT_FILTER "awk -f ${reference_sources}/comments.awk")
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${reference_sources}/mainpage.md)
set(DOXYGEN_HTML_HEADER ${reference_sources}/header.html)
set(DOXYGEN_HTML_DYNAMIC_MENUS NO)
set(DOXYGEN_SEARCHENGINE NO)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_CLASS_GRAPH NO)
set(DOXYGEN_VERBATIM_HEADERS NO)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_SORT_MEMBER_DOCS NO)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR} ${installed_headers})
set(DOXYGEN_STRIP_FROM_INC_PATH ${DOXYGEN_STRIP_FROM_PATH})
set(DOXYGEN_QUIET YES)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
doxygen_add_docs(reference ${public_headers} ${installed_headers}/jsapi/KsJS_proxy.h
                 ${reference_sources}/mainpage.md)

install(DIRECTORY ${DOXYGEN_OUTPUT_DIRECTORY}/html/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference
        COMPONENT reference OPTIONAL PATTERN *.js EXCLUDE)
