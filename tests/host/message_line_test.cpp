#include "host/message_line.h"

#include <gmock/gmock.h>

#include <array>
#include <sstream>

#include "host/transcript.h"
#include "ipc/frame.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::MatchesRegex;

std::string line_of(int type, std::span<const int> ints,
                    std::initializer_list<std::string_view> strings,
                    Direction direction = Direction::from_page, int pid = 42) {
    return message_line(direction, pid, *build_frame(type, ints, std::vector(strings)));
}

TEST(MessageLine, ShowsDirectionProcessTypeNameAndItems) {
    EXPECT_EQ(line_of(19, {}, {"key", "value", ""}),
              "<-      42  19 setItem \"key\" \"value\" \"\"");
    EXPECT_EQ(line_of(21, std::array{255, -3, 0}, {"a", "b"}),
              "<-      42  21 recolorImage 255 -3 0 \"a\" \"b\"");
    EXPECT_EQ(line_of(1, {}, {"f"}, Direction::to_page, 1234567), "-> 1234567   1 answer \"f\"");
    EXPECT_EQ(line_of(33, {}, {}), "<-      42  33 answerDelivered");
}

TEST(MessageLine, ShowsAQuestionMarkForAProcessThatIsUnknown) {
    EXPECT_EQ(line_of(6, {}, {}, Direction::from_page, 0), "<-       ?   6 logoff");
}

TEST(MessageLine, NamesATypeByItsDirection) {
    EXPECT_EQ(line_of(1, {}, {}, Direction::from_page), "<-      42   1 (unknown)");
    EXPECT_EQ(line_of(34, {}, {}, Direction::to_page), "->      42  34 resourcesAndUrl");
    EXPECT_EQ(line_of(-7, {}, {}), "<-      42  -7 (unknown)");
}

TEST(MessageLine, SaysThatItemsDoNotFit) {
    const Frame frame = build_frame(5, {}, std::array<std::string_view, 1>{"ab"});
    payload_begin(*frame)[2] = 'c';  // the item's NUL
    EXPECT_EQ(message_line(Direction::from_page, 42, *frame),
              "<-      42   5 sendAction (items do not fit the header)");
}

TEST(MessageLine, ShowsTheFirstSixteenItemsOnly) {
    const std::vector<std::string_view> many(20, "x");
    const std::string line =
        message_line(Direction::from_page, 42, *build_frame(5, std::array{1, 2}, many));
    EXPECT_THAT(line,
                MatchesRegex("<-      42   5 sendAction 1 2( \"x\"){14} [.]{3} 6 more items"));
}

TEST(ShownText, EscapesWhatDoesNotPrint) {
    EXPECT_EQ(shown_text("a\n\r\t\"\\b"), R"("a\n\r\t\"\\b")");
    EXPECT_EQ(shown_text("\x1b[31m\x7f"), R"("\u{1b}[31m\u{7f}")");
    EXPECT_EQ(shown_text("\xc2\x9b"), R"("\u{9b}")");        // a control character of two bytes
    EXPECT_EQ(shown_text("\xe2\x80\xae"), R"("\u{202e}")");  // turns the direction of writing
    EXPECT_EQ(shown_text("\xe2\x80\xa8"), R"("\u{2028}")");  // ends a line in some terminals
    EXPECT_EQ(shown_text("Gr\xc3\xbc\xc3\x9f"), "\"Gr\xc3\xbc\xc3\x9f\"");
}

TEST(ShownText, ShowsBytesThatAreNoCharacter) {
    EXPECT_EQ(shown_text("a\xff\xc3"), R"("a\xff\xc3")");
    EXPECT_EQ(shown_text("\xc3("), R"("\xc3(")");
}

TEST(ShownText, ShortensLongTextsBetweenCharacters) {
    EXPECT_EQ(shown_text(std::string(80, 'x')), '"' + std::string(80, 'x') + '"');
    EXPECT_EQ(shown_text(std::string(81, 'x')), '"' + std::string(80, 'x') + "\"... 1 more bytes");
    EXPECT_EQ(shown_text(std::string(79, 'x') + "\xc3\xbc\xc3\xbc"),
              '"' + std::string(79, 'x') + "\xc3\xbc\"... 2 more bytes");
}

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
