#include <dlfcn.h>
#include <gmock/gmock.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/support/stderr_capture.h"

using kestrel::testing::as_ordinary_user;
using kestrel::testing::in_child;
using kestrel::testing::is_root;
using kestrel::testing::Output;
using kestrel::testing::StderrCapture;
using ::testing::ElementsAre;

namespace {

// Replaces the dynamic linker, and makes every user root unless set otherwise.
struct FakeLoader {
    bool is_root = true;
    std::set<std::string> libraries = {"libcap.so.2"};
    std::set<std::string> functions = {"cap_from_text", "cap_set_proc", "cap_free"};
    int result_of_set_proc = 0;
    bool is_text_understood = true;
    std::vector<std::string> calls;
};

std::unique_ptr<FakeLoader> loader;

// Written by the replacement of dlclose: its order among the messages is tested, too.
constexpr const char* kReleased = "<released>\n";

void* library_handle() { return &loader->libraries; }
void* capability_set() { return loader->is_text_understood ? &loader->functions : nullptr; }

void record(const std::string& call) { loader->calls.push_back(call); }

std::string name_of_set(void* set) { return set == nullptr ? "null" : "the set"; }

void* fake_from_text(const char* text) {
    record(std::string("cap_from_text ") + text);
    return capability_set();
}

int fake_set_proc(void* set) {
    record("cap_set_proc " + name_of_set(set));
    return loader->result_of_set_proc;
}

int fake_free(void* set) {
    record("cap_free " + name_of_set(set));
    return 0;
}

}  // namespace

extern "C" {

uid_t __real_geteuid();
uid_t __wrap_geteuid() { return loader && loader->is_root ? 0 : __real_geteuid(); }

void* __real_dlopen(const char*, int);
void* __wrap_dlopen(const char* name, int mode) {
    if (!loader) return __real_dlopen(name, mode);
    record(std::string("dlopen ") + name + (mode == RTLD_LAZY ? " lazy" : " otherwise"));
    return loader->libraries.contains(name) ? library_handle() : nullptr;
}

void* __real_dlsym(void*, const char*);
void* __wrap_dlsym(void* library, const char* name) {
    if (!loader) return __real_dlsym(library, name);
    EXPECT_EQ(library, library_handle());
    record(std::string("dlsym ") + name);
    if (!loader->functions.contains(name)) return nullptr;
    static const std::map<std::string, void*> kFakes = {
        {"cap_from_text", reinterpret_cast<void*>(fake_from_text)},
        {"cap_set_proc", reinterpret_cast<void*>(fake_set_proc)},
        {"cap_free", reinterpret_cast<void*>(fake_free)}};
    return kFakes.at(name);
}

char* __real_dlerror();
char* __wrap_dlerror() {
    if (!loader) return __real_dlerror();
    record("dlerror");
    static std::string text = "no such thing";
    return text.data();
}

int __real_dlclose(void*);
int __wrap_dlclose(void* library) {
    if (!loader) return __real_dlclose(library);
    EXPECT_EQ(library, library_handle());
    record("dlclose");
    std::fputs(kReleased, stderr);
    return 0;
}
}

namespace {

class CapabilityLibrary : public ::testing::Test {
  protected:
    CapabilityLibrary() { loader = std::make_unique<FakeLoader>(); }
    ~CapabilityLibrary() override { loader.reset(); }
};

constexpr const char* kSet = "cap_from_text = cap_dac_override+ep cap_dac_read_search+p";

TEST_F(CapabilityLibrary, AppliesTheSetAndUnloads) {
    const StderrCapture err;
    EXPECT_EQ(LinuxCommonUtils::drop_capability(), 0);
    EXPECT_THAT(loader->calls, ElementsAre("dlopen libcap.so.2 lazy", "dlsym cap_from_text",
                                           "dlsym cap_set_proc", "dlsym cap_free", kSet,
                                           "cap_set_proc the set", "cap_free the set", "dlclose"));
    EXPECT_EQ(err.text(), kReleased);
}

TEST_F(CapabilityLibrary, FallsBackToTheOlderVersion) {
    loader->libraries = {"libcap.so.1"};
    const StderrCapture err;
    EXPECT_EQ(LinuxCommonUtils::drop_capability(), 0);
    EXPECT_THAT(loader->calls,
                ElementsAre("dlopen libcap.so.2 lazy", "dlopen libcap.so.1 lazy",
                            "dlsym cap_from_text", "dlsym cap_set_proc", "dlsym cap_free", kSet,
                            "cap_set_proc the set", "cap_free the set", "dlclose"));
    EXPECT_EQ(err.text(), kReleased);
}

TEST_F(CapabilityLibrary, ReportsAMissingLibrary) {
    loader->libraries = {};
    const StderrCapture err;
    EXPECT_EQ(LinuxCommonUtils::drop_capability(), -1);
    EXPECT_THAT(loader->calls, ElementsAre("dlopen libcap.so.2 lazy", "dlopen libcap.so.1 lazy"));
    EXPECT_EQ(err.text(),
              "Unable to set the capability as libcap library is not found\n"
              "Unable to get the capability reduction lib\n");
}

class MissingCapabilityFunction : public CapabilityLibrary,
                                  public ::testing::WithParamInterface<const char*> {};

TEST_P(MissingCapabilityFunction, EndsTheSearchAndUnloads) {
    loader->functions.erase(GetParam());
    const StderrCapture err;
    EXPECT_EQ(LinuxCommonUtils::drop_capability(), -1);

    std::vector<std::string> expected = {"dlopen libcap.so.2 lazy"};
    for (const std::string function : {"cap_from_text", "cap_set_proc", "cap_free"}) {
        expected.push_back("dlsym " + function);
        if (function == GetParam()) break;
    }
    expected.insert(expected.end(), {"dlerror", "dlclose"});
    EXPECT_EQ(loader->calls, expected);
    EXPECT_EQ(err.text(), std::string(GetParam()) + " unresolved: no such thing\n" + kReleased +
                              "Unable to get the capability reduction lib\n");
}

INSTANTIATE_TEST_SUITE_P(Each, MissingCapabilityFunction,
                         ::testing::Values("cap_from_text", "cap_set_proc", "cap_free"),
                         [](const auto& name) { return std::string(name.param); });

TEST_F(CapabilityLibrary, ReportsRejectedSetsAndUnloads) {
    loader->result_of_set_proc = -1;
    const StderrCapture err;
    EXPECT_EQ(LinuxCommonUtils::drop_capability(), -1);
    EXPECT_EQ(err.text(), std::string("cap_set_proc : failed\n") + kReleased);
    EXPECT_THAT(std::vector<std::string>(loader->calls.end() - 3, loader->calls.end()),
                ElementsAre("cap_set_proc the set", "cap_free the set", "dlclose"));
}

TEST_F(CapabilityLibrary, PassesOnANullSet) {
    loader->is_text_understood = false;
    loader->result_of_set_proc = -1;
    const StderrCapture err;
    EXPECT_EQ(LinuxCommonUtils::drop_capability(), -1);
    EXPECT_EQ(err.text(), std::string("cap_set_proc : failed\n") + kReleased);
    EXPECT_THAT(std::vector<std::string>(loader->calls.end() - 3, loader->calls.end()),
                ElementsAre("cap_set_proc null", "cap_free null", "dlclose"));
}

TEST_F(CapabilityLibrary, TreatsEveryNonZeroResultAsFailure) {
    loader->result_of_set_proc = 1;
    const StderrCapture err;
    EXPECT_EQ(LinuxCommonUtils::drop_capability(), -1);
}

// The lines of /proc/self/status about capability sets.
std::string capability_lines() {
    std::ifstream status("/proc/self/status");
    std::string lines;
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("CapInh") || line.starts_with("CapPrm") ||
            line.starts_with("CapEff")) {
            lines += line + "\n";
        }
    }
    return lines;
}

bool is_libcap_loaded() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find("/libcap.so") != std::string::npos) return true;
    }
    return false;
}

TEST(Capabilities, RootKeepsTwoForFileAccess) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    const Output output = in_child([] {
        std::cout << LinuxCommonUtils::drop_capability() << '\n' << capability_lines();
        std::cout << is_libcap_loaded();
    });
    // Bit 1 is cap_dac_override, bit 2 cap_dac_read_search.
    EXPECT_EQ(output, (Output{"0\n"
                              "CapInh:\t0000000000000000\n"
                              "CapPrm:\t0000000000000006\n"
                              "CapEff:\t0000000000000002\n"
                              "0",
                              ""}));
}

// After root has dropped all capabilities, it cannot get the two back.
TEST(Capabilities, ReportsRejectionByTheKernel) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    const Output output = in_child([] {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        const std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> none{};
        syscall(SYS_capset, &header, none.data());
        std::cout << LinuxCommonUtils::drop_capability() << is_libcap_loaded();
    });
    EXPECT_EQ(output, (Output{"-10", "cap_set_proc : failed\n"}));
}

TEST(Capabilities, OrdinaryUsersDropNothing) {
    const Output output = as_ordinary_user([] {
        loader = std::make_unique<FakeLoader>();
        loader->is_root = false;
        std::cout << LinuxCommonUtils::drop_capability() << loader->calls.size();
    });
    EXPECT_EQ(output, (Output{"00", ""}));
}

}  // namespace
