#include "program/beside_program.h"

#include <filesystem>
#include <system_error>

namespace kestrel {

std::string beside_program(const char* path) {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto found = std::filesystem::weakly_canonical(program.parent_path() / path, error);
    return std::filesystem::exists(found, error) ? found : "";
}

}  // namespace kestrel
