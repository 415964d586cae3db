// The test program's own `sleep`: it returns at once.
#pragma once

#include <functional>
#include <vector>

namespace kestrel::testing {

// For its lifetime, keeps account of sleep and stands in for what happens meanwhile.
class FakeSleep {
  public:
    // `meanwhile` runs in every call, on the thread that would sleep; calls count from 1.
    explicit FakeSleep(std::function<void(int call)> meanwhile = {});
    ~FakeSleep();
    FakeSleep(const FakeSleep&) = delete;
    FakeSleep& operator=(const FakeSleep&) = delete;

    // The seconds asked for, call by call.
    std::vector<unsigned> calls() const;
};

}  // namespace kestrel::testing
