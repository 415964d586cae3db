// Says which install root a program finds from where it lies.

#include <cstdio>

#include "log/zynlog_paths.h"

int main() { std::fputs(GetQUORoot(), stdout); }
