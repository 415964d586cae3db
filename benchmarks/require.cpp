#include "benchmarks/require.h"

#include <cstdio>
#include <cstdlib>

namespace kestrel::bench {

void require(bool ok, const std::string& subject) {
    if (ok) return;
    std::perror(subject.c_str());
    std::exit(EXIT_FAILURE);
}

}  // namespace kestrel::bench
