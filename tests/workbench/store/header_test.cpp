// The controls in the header bar of the workbench's window.
#include <gmock/gmock.h>

#include <fstream>

#include "ipc/protocol.h"
#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/web_server.h"
#include "tests/workbench/store/visit.h"
#include "tests/workbench/window/widgets.h"

namespace kestrel::testing {
namespace {

using ::testing::StartsWith;

constexpr const char* kFirst = "document.title === 'Page that never calls the host'";

class HeaderTest : public ::testing::Test {
  protected:
    std::string file(const std::string& name, const std::string& text) const {
        const std::string path = files.path() + "/" + name;
        std::ofstream(path) << text;
        return path;
    }
    Options options() const {
        Options options;
        options.page_uri = "file://" PAGES "/silent.html";
        options.extension_directory = EXTENSION_DIRECTORY;
        options.data = files.path();
        return options;
    }
    static void go_to(const Person& person, const std::string& address) {
        type_into(person.control("address"), address);
        gtk_widget_activate(person.control("address"));
    }

    TemporaryDirectory files;
};

TEST_F(HeaderTest, AcceptsAFileOrAUrlAsAddress) {
    const std::string path = file("second.html", "<title>second</title>");
    WebServer server([](const std::string&) {
        return WebServer::Saying(
            "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n"
            "<title>third</title>");
    });
    visit(options(), [&](Person& person) {
        ASSERT_TRUE(person.sees(kFirst));
        go_to(person, path);
        EXPECT_TRUE(person.sees("document.title === 'second'"));
        GtkEntry* address = GTK_ENTRY(person.control("address"));
        EXPECT_EQ(gtk_entry_get_text(address), "file://" + path);
        go_to(person, server.url());
        EXPECT_TRUE(person.sees("document.title === 'third'"));
    });
}

TEST_F(HeaderTest, RejectsAnInvalidAddress) {
    visit(options(), [&](Person& person) {
        ASSERT_TRUE(person.sees(kFirst));
        go_to(person, "/missing");
        EXPECT_THAT(text_in(person.control("status")), StartsWith("the address: no such file"));
        EXPECT_EQ(person.read(kFirst), "true");
    });
}

// One message carries both.
TEST_F(HeaderTest, RejectsAnAddressAndResourcesThatAreTooLongTogether) {
    constexpr const char* kTooLong =
        "the page's address and resources together are too long for the extension";
    Options almost_full = options();
    almost_full.resources = "{}";
    almost_full.resources.resize(kMaxInboundPayload - almost_full.page_uri.size() - 2, ' ');
    const std::string longer_address = file(std::string(200, 'n') + ".html", "");
    const std::string longer_resources =
        file("resources.json",
             R"({"greeting": "Guten Tag"})" + std::string(almost_full.resources.size(), ' '));
    visit(almost_full, [&](Person& person) {
        ASSERT_TRUE(person.sees(kFirst));
        EXPECT_TRUE(person.sees("window.ZYNS?.getResources() !== undefined"));
        const auto is_refused = [&] { return text_in(person.control("status")) == kTooLong; };
        go_to(person, longer_address);
        EXPECT_TRUE(is_refused());
        go_to(person, "/missing");
        EXPECT_FALSE(is_refused());
        person.choose_file("choose resources", longer_resources);
        EXPECT_TRUE(is_refused());
        EXPECT_EQ(person.read(kFirst), "true");
    });
}

TEST_F(HeaderTest, ReloadsThePage) {
    visit(options(), [](Person& person) {
        ASSERT_TRUE(person.sees(kFirst));
        person.read("window.isOld = true");
        gtk_button_clicked(GTK_BUTTON(person.control("reload")));
        EXPECT_TRUE(person.sees("window.isOld === undefined"));
        EXPECT_TRUE(person.sees(kFirst));
    });
}

TEST_F(HeaderTest, ReadsResourcesFromAFile) {
    const std::string resources = file("resources.json", R"({"greeting": "Guten Tag"})");
    visit(options(), [&](Person& person) {
        ASSERT_TRUE(person.sees(kFirst));
        person.choose_file("choose resources", resources);
        EXPECT_TRUE(person.sees("window.ZYNS?.getResources()?.greeting === 'Guten Tag'"));
    });
}

}  // namespace
}  // namespace kestrel::testing
