set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

option(KESTREL_WERROR "Treat warnings as errors" OFF)
set(KESTREL_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict)  # false alarms over std::string's operator+ at -O3
endif()
if(KESTREL_WERROR)
  add_compile_options(-Werror)
endif()

# Debian's hardening flags; tests/architecture checks the result. glibc's checked functions need
# optimisation; the sanitizers have checks of their own.
add_compile_options(-fstack-protector-strong -Wformat -Werror=format-security)
if(NOT KESTREL_SANITIZE)
  add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
                      $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)

if(KESTREL_SANITIZE)
  add_compile_options(-fsanitize=${KESTREL_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KESTREL_SANITIZE})
endif()

# Builds a subsystem as the static library kestrel-NAME; headers are included from the root.
function(kestrel_subsystem name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LINKS")
  add_library(kestrel-${name} STATIC ${ARG_SOURCES})
  target_include_directories(kestrel-${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(kestrel-${name} PUBLIC ${ARG_LINKS})
endfunction()
