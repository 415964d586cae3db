#include "tests/ipc/fake_sleep.h"

#include <unistd.h>

#include <mutex>

namespace {

struct Account {
    std::mutex lock;
    std::vector<unsigned> calls;
    std::function<void(int)> meanwhile;
};

// Never destroyed: a detached reader may sleep while the test program leaves.
Account& account() {
    static Account* const instance = new Account;
    return *instance;
}

}  // namespace

unsigned sleep(unsigned seconds) {
    std::function<void(int)> meanwhile;
    int call = 0;
    {
        const std::scoped_lock guard(account().lock);
        account().calls.push_back(seconds);
        call = static_cast<int>(account().calls.size());
        meanwhile = account().meanwhile;
    }
    if (meanwhile) meanwhile(call);
    return 0;
}

namespace kestrel::testing {

FakeSleep::FakeSleep(std::function<void(int)> meanwhile) {
    const std::scoped_lock guard(account().lock);
    account().calls.clear();
    account().meanwhile = std::move(meanwhile);
}

FakeSleep::~FakeSleep() {
    const std::scoped_lock guard(account().lock);
    account().meanwhile = nullptr;
}

std::vector<unsigned> FakeSleep::calls() const {
    const std::scoped_lock guard(account().lock);
    return account().calls;
}

}  // namespace kestrel::testing
