// Prints the install root that a program in its directory finds.

#include <cstdio>

#include "log/zynlog_paths.h"

int main() { std::fputs(GetQUORoot(), stdout); }
