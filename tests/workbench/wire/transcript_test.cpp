#include "workbench/wire/transcript.h"

#include <gmock/gmock.h>

#include <array>
#include <sstream>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "tests/support/file_content.h"
#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"
#include "workbench/wire/trace_file.h"

namespace kestrel::testing {
namespace {

using ::testing::MatchesRegex;

TEST(Transcript, StartsEachLineWithTheTime) {
    std::ostringstream out;
    Transcript transcript(out);
    transcript.message(Direction::from_page, 42, *build_frame(6, {}, {}));
    transcript.note("a note");
    const std::string time = "[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3} ";
    EXPECT_THAT(out.str(), MatchesRegex(time + "<-      42   6 logoff\n" + time + "-- a note\n"));
}

TEST(Transcript, WritesACopyAsJsonLines) {
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/lines.jsonl";
    std::ostringstream out;
    Transcript transcript(out);
    ASSERT_TRUE(transcript.copy_to(path));
    transcript.message(Direction::to_page, 42,
                       *build_frame(0, {}, std::array<std::string_view, 1>{"run()"}));
    transcript.note("a \"note\"\xff");
    run_main_loop_until_idle();
    const std::string time = R"([{]"time":"[0-9-]{10}T[0-9:]{8}[.][0-9]{6}Z",)";
    EXPECT_THAT(file_content(path),
                MatchesRegex(time +
                             R"("pid":42,"direction":"to-page","type":0,"name":"script",)"
                             R"("length":6,"ints":\[\],"strings":\["run[(][)]"\][}])"
                             "\n" +
                             time +
                             R"("note":"a \\"note\\")"
                             "\ufffd\"[}]"
                             "\n"));
    EXPECT_FALSE(transcript.copy_to(directory.path() + "/missing/lines"));
}

TEST(Transcript, WritesEveryMessageOfABurst) {
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/lines.jsonl";
    constexpr int kMessages = 10'000;
    const Frame message = build_frame(5, {}, std::array<std::string_view, 1>{"an action"});
    {
        std::ostream nowhere(nullptr);
        Transcript transcript(nowhere);
        ASSERT_TRUE(transcript.copy_to(path));
        for (int i = 0; i < kMessages; ++i) transcript.message(Direction::from_page, 42, *message);
    }
    TraceFile file(path);
    int messages = 0;
    while (file.read_piece([&](const MessageRecord& record) {
        messages += record.frame && record.frame->msg_type == 5 ? 1 : 0;
    })) {
    }
    EXPECT_EQ(messages, kMessages);
}

TEST(Transcript, ReportsAWriteErrorOnce) {
    std::ostringstream out;
    Transcript transcript(out);
    ASSERT_TRUE(transcript.copy_to("/dev/full"));
    transcript.note("first");
    run_main_loop_until_idle();
    transcript.note("second");
    run_main_loop_until_idle();
    EXPECT_THAT(out.str(), MatchesRegex(".* -- first\n.* -- cannot write /dev/full any more\n"
                                        ".* -- second\n"));
}

TEST(Transcript, NotifiesItsListenerOfNotesOnly) {
    std::ostringstream out;
    Transcript transcript(out);
    std::vector<std::string> heard;
    transcript.set_note_listener([&](const std::string& note) { heard.push_back(note); });
    transcript.note("a note");
    transcript.message(Direction::from_page, 42, *build_frame(28, {}, {}));
    EXPECT_THAT(heard, ::testing::ElementsAre("a note"));
}

}  // namespace
}  // namespace kestrel::testing
