// Runs of a scenario with one failing system call each, in processes of their own.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::testing {

struct Fault {
    std::string_view function;
    int nth;
    int error;

    friend std::ostream& operator<<(std::ostream& stream, const Fault& fault);
};

struct Outcome {
    int status = 0;       // the exit status, or the negative number of the signal that ended it
    std::string errors;   // standard error
    bool failed = false;  // whether the call was made
    bool leaks = false;   // more descriptors at the end than at the beginning
};

// Calls `scenario` in a child whose HOME is an empty directory, with the fault set. What it
// returns is the child's exit status.
Outcome run_with(const Fault& fault, const std::function<int()>& scenario);

// The same for each error of each function, at each of its calls: until the call no longer comes.
void for_each_fault(const std::vector<std::pair<std::string_view, std::vector<int>>>& errors,
                    const std::function<int()>& scenario,
                    const std::function<void(const Fault&, const Outcome&)>& look_at);

}  // namespace kestrel::testing
