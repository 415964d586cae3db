# Static analysers that run with the compiler: scripts/lint.
option(KESTREL_TIDY "Run clang-tidy along with the compiler" OFF)
option(KESTREL_ANALYZE "Compile with GCC's analyser" OFF)

if(KESTREL_TIDY)
  # The unity build includes sources, which this check reports.
  set(CMAKE_CXX_CLANG_TIDY clang-tidy-14 --quiet --extra-arg=-Wno-unknown-warning-option
                           --checks=-bugprone-suspicious-include)
endif()

# False alarms of GCC 12's analyser in C++: it reports results constructed in the caller's storage as
# uninitialised, and does not know that operator new never returns null. The build preset leaves out
# the programs: it reports their temporary strings as leaks, and needs minutes for sources with JSON.
if(KESTREL_ANALYZE)
  add_compile_options(-fanalyzer
                      -Wno-analyzer-use-of-uninitialized-value
                      -Wno-analyzer-null-argument
                      -Wno-analyzer-possible-null-argument)
endif()
