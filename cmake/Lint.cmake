# Static analysers that look at each source as it is compiled: scripts/lint.
option(KESTREL_TIDY "Run clang-tidy along with the compiler" OFF)
option(KESTREL_ANALYZE "Compile with GCC's analyser" OFF)

if(KESTREL_TIDY)
  # The preset lets it look at several sources at once, which is what it takes for suspicious.
  set(CMAKE_CXX_CLANG_TIDY clang-tidy-14 --quiet --extra-arg=-Wno-unknown-warning-option
                           --checks=-bugprone-suspicious-include)
endif()

# GCC 12 knows C++ by halves: it takes a result that is built in its caller's place for memory that
# nobody has written to, and does not know that operator new never gives null. The build preset
# leaves out the programs: it takes their temporary strings for leaks, and minutes for each source
# with JSON.
if(KESTREL_ANALYZE)
  add_compile_options(-fanalyzer
                      -Wno-analyzer-use-of-uninitialized-value
                      -Wno-analyzer-null-argument
                      -Wno-analyzer-possible-null-argument)
endif()
