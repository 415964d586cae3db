#include "host/transcript.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "ipc/frame.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::MatchesRegex;

TEST(Transcript, PutsTheTimeBeforeEachLine) {
    std::ostringstream out;
    Transcript transcript(out);
    transcript.message(Direction::from_page, 42, *build_frame(6, {}, {}));
    transcript.note("a note");
    const std::string time = "[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3} ";
    EXPECT_THAT(out.str(), MatchesRegex(time + "<-      42   6 logoff\n" + time + "-- a note\n"));
}

TEST(Transcript, KeepsACopyInAFile) {
    const TemporaryDirectory directory;
    std::ostringstream out;
    Transcript transcript(out);
    ASSERT_TRUE(transcript.copy_to(directory.path() + "/lines"));
    transcript.note("a note");
    std::ostringstream copy;
    copy << std::ifstream(directory.path() + "/lines").rdbuf();
    EXPECT_EQ(copy.str(), out.str());
    EXPECT_FALSE(transcript.copy_to(directory.path() + "/missing/lines"));
}

TEST(Transcript, TellsItsListenerEachLineWithoutTheTime) {
    std::ostringstream out;
    Transcript transcript(out);
    std::vector<std::string> heard;
    transcript.set_listener([&](const std::string& line) { heard.push_back(line); });
    transcript.note("a note");
    EXPECT_THAT(heard, ::testing::ElementsAre("-- a note"));
}

}  // namespace
}  // namespace kestrel::testing
