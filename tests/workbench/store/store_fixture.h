// The sample store in a workbench, and the data that visits to it leave.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/temporary_directory.h"
#include "tests/workbench/store/person.h"
#include "workbench/desktop/store_database.h"

namespace kestrel::testing {

inline constexpr const char* kStartedProgram = "kestrel-sample.desktop";

// The selector of an application's card, or of a part of it.
std::string card(const std::string& id, const std::string& part = "");
std::string category(const std::string& name);

// The script that tells whether a message with this text is shown for a moment.
std::string has_toast(const std::string& text);

class StoreTest : public ::testing::Test {
  protected:
    // A program that writes a file, on the menu of this user's desktop.
    static void SetUpTestSuite();
    static std::string trace_of_started_program();

    void SetUp() override;

    // A person who has the store before the eyes does something in the workbench's window.
    void visit(const std::function<void(Person&)>& act);

    std::vector<std::string> kept_order() const { return database().subscriptions(); }
    std::optional<std::string> kept_item(const std::string& key) const {
        return database().item(key);
    }

    // What another workbench makes of the same data, without a window.
    int check_in_second_program(const std::string& script) const;

    TemporaryDirectory data;
    TemporaryDirectory files;
    std::string transcript;  // of the last visit

  private:
    StoreDatabase database() const;
};

}  // namespace kestrel::testing
