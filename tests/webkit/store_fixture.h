#pragma once

#include <glib.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/support/main_loop.h"
#include "tests/webkit/scripted_host.h"
#include "tests/webkit/store_view.h"

namespace kestrel::testing {

// A host that listens in this process's temporary home directory.
class StoreTest : public ::testing::Test {
  protected:
    StoreTest() { std::filesystem::create_directories(client_directory()); }

    static std::string client_directory() { return std::string(g_get_home_dir()) + "/.QUOClient"; }

    ScriptedHost host{client_directory()};
};

// A host that is connected to a page.
class ConnectedStoreTest : public StoreTest {
  protected:
    void SetUp() override {
        host.listen();
        store.load("<title>store</title><body></body>");
        ASSERT_TRUE(host.wait_for(61));
    }

    StoreView store{"", "{greeting: 'hello'}"};
};

}  // namespace kestrel::testing
