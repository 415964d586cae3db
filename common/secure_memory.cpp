#include "common/LinuxCommonUtils.h"

void LinuxCommonUtils::SecureZeroMemory(void* memory, std::size_t size) {
    if (memory == nullptr) return;
    // The compiler keeps volatile stores even if the memory is freed right after.
    auto* byte = static_cast<volatile unsigned char*>(memory);
    while (size-- > 0) *byte++ = 0;
}
