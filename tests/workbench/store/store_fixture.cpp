#include "tests/workbench/store/store_fixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/support/file_content.h"
#include "tests/support/log_recorder.h"
#include "tests/workbench/store/store_file.h"
#include "tests/workbench/store/visit.h"
#include "tests/workbench/workbench_process.h"

namespace kestrel::testing {

namespace fs = std::filesystem;

std::string card(const std::string& id, const std::string& part) {
    return "[data-id=\"" + id + "\"] " + part;
}
std::string category(const std::string& name) { return "[data-category=" + name + "]"; }

std::string has_toast(const std::string& text) {
    return "[...document.querySelectorAll('.toast')].some((toast) => toast.textContent.includes('" +
           text + "'))";
}

void StoreTest::SetUpTestSuite() {
    const std::string applications = std::string(g_get_user_data_dir()) + "/applications";
    fs::create_directories(applications);
    std::ofstream(applications + "/" + kStartedProgram)
        << "[Desktop Entry]\nType=Application\nName=Sample\nComment=Leaves a trace\nExec=touch "
        << trace_of_started_program() << "\n";
}

std::string StoreTest::trace_of_started_program() {
    return std::string(g_get_home_dir()) + "/started";
}

void StoreTest::SetUp() {
    clear_log();
    fs::remove(trace_of_started_program());
}

void StoreTest::visit(const std::function<void(Person&)>& act) {
    Options options;
    options.page_uri = "file://" + store_file("index.html");
    options.resources = file_content(store_file("resources.json"));
    options.extension_directory = EXTENSION_DIRECTORY;
    options.data = data.path();
    transcript = testing::visit(options, [&](Person& person) {
        const bool has_store = person.sees("document.querySelectorAll('.card.mine').length > 0");
        ASSERT_TRUE(has_store) << "there is no store";
        act(person);
    });
}

int StoreTest::check_in_second_program(const std::string& script) const {
    const std::string file = files.path() + "/script.js";
    std::ofstream(file) << script;
    WorkbenchProcess program(
        {"--headless", "--page", store_file("index.html"), "--data", data.path(), "--script", file},
        files.path(), files.path());
    const int status = program.wait_for_end();
    if (status != 0) ADD_FAILURE() << program.output();
    return status;
}

StoreDatabase StoreTest::database() const {
    return StoreDatabase(data.path() + "/" + std::string(kStoreDatabaseFile));
}

}  // namespace kestrel::testing
