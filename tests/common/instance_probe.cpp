// A single-instance program: prints the result of the lock named by its first argument, then runs
// until the end of its standard input.
#include <iostream>

#include "common/LinuxCommonUtils.h"

int main(int argc, char* argv[]) {
    if (argc < 2) return 2;
    const bool is_running = LinuxCommonUtils::IsAnotherInstanceRunning(argv[1]);
    std::cout << (is_running ? "running" : "owner") << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
}
