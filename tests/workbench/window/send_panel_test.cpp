#include "workbench/window/send_panel.h"

#include <gmock/gmock.h>

#include <array>

#include "tests/support/frame_bytes.h"
#include "tests/workbench/window/widgets.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class SendPanelTest : public ::testing::Test {
  protected:
    GtkWidget* find(const std::string& name) const { return part(panel.widget(), name); }
    void choose_kind(const char* kind) const {
        gtk_stack_set_visible_child_name(GTK_STACK(find("kinds")), kind);
    }
    void choose_process(const char* id) const {
        gtk_combo_box_set_active_id(GTK_COMBO_BOX(find("process")), id);
    }
    void send() const { gtk_button_clicked(GTK_BUTTON(find("send"))); }

    std::vector<std::pair<int, std::string>> sent;
    SendPanel panel{[this](int pid, Frame frame) { sent.emplace_back(pid, bytes_text(*frame)); }};
    ShownWidget shown{panel.widget()};
};

TEST_F(SendPanelTest, SendsAScriptToAllProcesses) {
    type_into(find("script"), "one();\ntwo(\"\u00fc\");");
    send();
    EXPECT_THAT(sent, ElementsAre(Pair(0, frame_bytes(0, {}, {"one();\ntwo(\"\u00fc\");"}))));
}

TEST_F(SendPanelTest, SendsAnAnswerWithAnArgumentFromEachLine) {
    choose_kind("answer");
    type_into(find("callback"), "zyns_ajax_complete");
    type_into(find("arguments"), "7\n200\nOK\n\n{}\n");
    send();
    type_into(find("arguments"), "");
    send();
    EXPECT_THAT(
        sent,
        ElementsAre(Pair(0, frame_bytes(1, {}, {"zyns_ajax_complete", "7", "200", "OK", "", "{}"})),
                    Pair(0, frame_bytes(1, {}, {"zyns_ajax_complete"}))));
}

TEST_F(SendPanelTest, SendsAPageWithItsResources) {
    choose_kind("page");
    type_into(find("url"), "file:///page.html");
    type_into(find("resources"), "{a: 1}");
    send();
    EXPECT_THAT(sent, ElementsAre(Pair(0, frame_bytes(34, {}, {"file:///page.html", "{a: 1}"}))));
}

TEST_F(SendPanelTest, SendsToTheChosenProcessWhileItIsConnected) {
    panel.set_processes(std::array{11, 22});
    choose_process("22");
    send();
    panel.set_processes(std::array{22, 33});
    send();
    panel.set_processes(std::array{33});
    send();
    ASSERT_EQ(sent.size(), 3U);
    EXPECT_EQ(sent[0].first, 22);
    EXPECT_EQ(sent[1].first, 22);
    EXPECT_EQ(sent[2].first, 0);
}

TEST_F(SendPanelTest, ShowsWhyItDoesNotSend) {
    type_into(find("script"), std::string(5'000'000, 'x'));
    send();
    EXPECT_EQ(
        text_in(find("problem")),
        "This message has 5000001 bytes; the extension accepts at most 5000000, so it was not "
        "sent.");
    choose_kind("answer");
    send();
    EXPECT_EQ(text_in(find("problem")), "An answer needs a callback expression.");
    EXPECT_THAT(sent, IsEmpty());
    type_into(find("callback"), "take");
    send();
    EXPECT_EQ(text_in(find("problem")), "");
    EXPECT_EQ(sent.size(), 1U);
}

}  // namespace
}  // namespace kestrel::testing
