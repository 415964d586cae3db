// What the functions of `external` have to do, written down independently of the code under test.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "extension/KsJS_proxy.h"

namespace kestrel::testing {

struct ExpectedMethod {
    std::string_view name;  // on `external`
    KsJS_proxy::PageMethod* member;
    std::string_view arguments;  // of a call, as script
    std::string frame;           // what that call sends

    // How many arguments it takes, and the whole line that any other number gives, with # for that
    // number. Nothing for a function that takes any number and looks at none.
    std::optional<std::size_t> count;
    std::string_view refusal;

    friend void PrintTo(const ExpectedMethod& method, std::ostream* out) { *out << method.name; }
};

// In the order of the API.
const std::vector<ExpectedMethod>& expected_methods();

}  // namespace kestrel::testing
