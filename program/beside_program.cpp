#include "program/beside_program.h"

#include <filesystem>
#include <system_error>

#include "base/executable_path.h"

namespace kestrel {

std::string beside_program(const char* path) {
    std::error_code error;
    const std::filesystem::path program = executable_path();
    const auto found = std::filesystem::weakly_canonical(program.parent_path() / path, error);
    return std::filesystem::exists(found, error) ? found : "";
}

}  // namespace kestrel
