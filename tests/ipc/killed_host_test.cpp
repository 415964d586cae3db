// A host in a process of its own that is killed with part of a frame written, at every byte of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ipc/send.h"
#include "log/zynlog.h"
#include "tests/ipc/log_lines.h"
#include "tests/ipc/reader_thread.h"
#include "tests/ipc/recorded_handlers.h"
#include "tests/support/link_peer.h"
#include "tests/support/log_recorder.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr std::size_t kHeader = 16;

// What comes whole before the frame that is cut, and that frame: cuts fall within items and
// between.
const std::string kWhole = frame_bytes(1, {}, {"whole"});
const std::string kCut = frame_bytes(34, {}, {"url", "", "resources"});

// Takes over the host's end of the link: nobody else has it open afterwards.
class HostProcess {
  public:
    enum class Then { waits_to_be_killed, kills_itself };

    HostProcess(LinkPeer& end, std::string_view bytes, Then then) : pid_(fork()) {
        if (pid_ == 0) run(end.fd(), bytes, then);
        end.hang_up();
    }
    ~HostProcess() {
        if (pid_ != -1) dies();
    }
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    // Waits until it has written everything and stands still.
    bool stands_still() const {
        int status = 0;
        return waitpid(pid_, &status, WUNTRACED) == pid_ && WIFSTOPPED(status);
    }

    // Kills it.
    bool dies() {
        kill(pid_, SIGKILL);
        return has_been_killed();
    }

    // Waits for its end.
    bool has_been_killed() {
        int status = 0;
        return waitpid(std::exchange(pid_, -1), &status, 0) != -1 && WIFSIGNALED(status) &&
               WTERMSIG(status) == SIGKILL;
    }

  private:
    // System calls only: another thread of this process may hold a lock at the fork.
    [[noreturn]] static void run(int fd, std::string_view bytes, Then then) {
        if (write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) _exit(1);
        kill(getpid(), then == Then::kills_itself ? SIGKILL : SIGSTOP);
        _exit(1);
    }

    pid_t pid_;
};

// Bytes of ours that a dying host has not read show as a reset of the connection.
enum class Unread { nothing, a_message };

class KilledHostTest : public ::testing::TestWithParam<Unread> {
  protected:
    // What is to become of the host after `written` bytes of the frame, and what then must have
    // come of it.
    static void let_host_die_after(std::size_t written, HostProcess::Then then) {
        SCOPED_TRACE(written);
        clear_log();
        const StderrCapture errors;
        const RecordedHandlers handlers;
        LinkPeer end;
        if (GetParam() == Unread::a_message) send(33, {}, {});
        const std::string bytes = kWhole + kCut.substr(0, written);
        if (then == HostProcess::Then::waits_to_be_killed) {
            HostProcess host(end, bytes, then);
            ASSERT_TRUE(host.stands_still());
            ReaderThread reader;
            const bool waits = is_torn_header(written) ? reader.waits_for_rest_of_header()
                                                       : reader.waits_for_more();
            EXPECT_TRUE(waits);
            EXPECT_THAT(handlers.dispatches(), SizeIs(written == kCut.size() ? 2 : 1));
            EXPECT_TRUE(host.dies());
            EXPECT_TRUE(reader.ends());
        } else {
            ReaderThread reader;
            HostProcess host(end, bytes, then);
            EXPECT_TRUE(reader.ends());
            EXPECT_TRUE(host.has_been_killed());
        }
        expect_end(written, handlers.dispatches(), errors.text());
    }

  private:
    static bool is_torn_header(std::size_t written) { return written > 0 && written < kHeader; }

    static void expect_end(std::size_t written, const std::vector<Dispatch>& dispatches,
                           const std::string& errors) {
        const Dispatch whole{1, {}, {"whole", "", "", "", "", ""}};
        const Dispatch cut{34, {}, {"url", "", "resources", "", "", ""}};
        if (written == kCut.size()) {
            EXPECT_THAT(dispatches, ElementsAre(whole, cut));
        } else {
            EXPECT_THAT(dispatches, ElementsAre(whole));
        }
        const bool is_reset = GetParam() == Unread::a_message;
        const char* const reason = is_reset ? "Connection reset by peer" : "Success";
        const bool is_in_payload = written >= kHeader && written < kCut.size();
        if (!is_reset && !is_torn_header(written)) {
            EXPECT_THAT(logged(kInfo), ElementsAre(kHostClosed));
            EXPECT_EQ(errors, "");
        } else if (is_in_payload) {
            EXPECT_THAT(logged(kInfo), ElementsAre(bad_payload_line(reason)));
            EXPECT_EQ(errors, bad_payload_text(reason));
        } else {
            EXPECT_THAT(logged(kInfo), ElementsAre(bad_header_line(reason)));
            EXPECT_EQ(errors, bad_header_text(reason));
        }
    }
};

TEST_P(KilledHostTest, EndsTheReaderThatWaitsForTheRestAndDeliversNoPart) {
    for (std::size_t written = 0; written <= kCut.size(); ++written) {
        let_host_die_after(written, HostProcess::Then::waits_to_be_killed);
    }
}

TEST_P(KilledHostTest, EndsTheReaderThatIsReadingAndDeliversNoPart) {
    for (std::size_t written = 0; written <= kCut.size(); ++written) {
        let_host_die_after(written, HostProcess::Then::kills_itself);
    }
}

INSTANTIATE_TEST_SUITE_P(WithUnread, KilledHostTest,
                         ::testing::Values(Unread::nothing, Unread::a_message),
                         [](const ::testing::TestParamInfo<Unread>& unread) {
                             return unread.param == Unread::nothing ? "Nothing" : "AMessage";
                         });

}  // namespace
}  // namespace kestrel::testing
