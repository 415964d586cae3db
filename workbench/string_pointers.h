#pragma once

#include <string>
#include <vector>

namespace kestrel {

// A null-terminated argv or environ that points into `texts`, which must outlive it.
inline std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace kestrel
