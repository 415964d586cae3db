// The sample store in a workbench, with persistent data.
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

// The CSS selector of an application's card, or of a part of it.
std::string card(const std::string& id, const std::string& part = "");
std::string category(const std::string& name);

// A script that checks for a toast with this text.
std::string has_toast(const std::string& text);

class StoreTest : public ::testing::Test {
  protected:
    // Installs a desktop entry for a program that writes a file.
    static void SetUpTestSuite();
    static std::string trace_of_started_program();

    void SetUp() override;

    // Opens the store in a workbench, runs `act` and closes the workbench.
    void visit(const std::function<void(Person&)>& act);

    std::vector<std::string> kept_order() const { return database().subscriptions(); }
    std::optional<std::string> kept_item(const std::string& key) const {
        return database().item(key);
    }

    // Runs this script in a headless workbench with the same data; returns the exit status.
    int check_in_second_program(const std::string& script) const;

    TemporaryDirectory data;
    TemporaryDirectory files;
    std::string transcript;  // of the last visit

  private:
    StoreDatabase database() const;
};

}  // namespace kestrel::testing
