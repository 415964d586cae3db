// A program of the client family, to be copied into an installation and run there.
#include <cstdio>

#include "common/LinuxCommonUtils.h"

int main() { std::puts(LinuxCommonUtils::getQUOROOT().c_str()); }
