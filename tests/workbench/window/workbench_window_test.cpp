#include "workbench/window/workbench_window.h"

#include <gmock/gmock.h>

#include "tests/support/main_loop.h"
#include "tests/workbench/window/widgets.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

class WorkbenchWindowTest : public ::testing::Test {
  protected:
    GtkWidget* find(const std::string& name) const {
        return part(GTK_WIDGET(window.window()), name);
    }
    void click(const std::string& name) const { gtk_button_clicked(GTK_BUTTON(find(name))); }

    std::vector<std::string> events;
    MessageLog log;
    WorkbenchWindow window{
        gtk_label_new("page"),
        log,
        LocaleMenu::Choices{{"de"}, ""},
        {.reload = [this] { events.emplace_back("reload"); },
         .show_inspector = [this] { events.emplace_back("inspector"); },
         .closed = [this] { events.emplace_back("closed"); },
         .load = [this](const std::string& address) { events.push_back("load " + address); },
         .load_resources = [](const std::string&) {},
         .send = [](int, Frame) {},
         .bad_host = {.chosen = [](Misbehavior) {}, .at_once = [](Misbehavior) {}},
         .choose_locale = [this](const std::string& name) { events.push_back("locale " + name); }}};
};

TEST_F(WorkbenchWindowTest, ReportsTheActionsOfItsHeader) {
    click("reload");
    click("inspector");
    type_into(find("address"), "/store/page.html");
    gtk_widget_activate(find("address"));
    click("locale de");
    EXPECT_THAT(events, ElementsAre("reload", "inspector", "load /store/page.html", "locale de"));
}

TEST_F(WorkbenchWindowTest, ReportsClosingAndStaysOpen) {
    gtk_window_close(window.window());
    EXPECT_TRUE(run_main_loop_until([this] { return !events.empty(); }));
    EXPECT_THAT(events, ElementsAre("closed"));
    EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(window.window())));
}

TEST_F(WorkbenchWindowTest, ShowsAStatusOfAnyBytesAsText) {
    window.show_status("caf\xe9 \u2192 page");
    EXPECT_EQ(text_in(find("status")), "caf\uFFFD \u2192 page");
}

TEST_F(WorkbenchWindowTest, ShowsTheAddressOfThePage) {
    window.show_address("file:///store/page.html");
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(find("address"))), "file:///store/page.html");
}

}  // namespace
}  // namespace kestrel::testing
