#include "common/LinuxCommonUtils.h"

void LinuxCommonUtils::SecureZeroMemory(void* memory, std::size_t size) {
    if (memory == nullptr) return;
    // Volatile stores are kept even when the memory is released right after.
    auto* byte = static_cast<volatile unsigned char*>(memory);
    while (size-- > 0) *byte++ = 0;
}
