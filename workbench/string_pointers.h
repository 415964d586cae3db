#pragma once

#include <string>
#include <vector>

namespace kestrel {

// Arguments or an environment as C wants them, with a null at the end. The texts stay where they
// are, and must outlive the pointers.
inline std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace kestrel
