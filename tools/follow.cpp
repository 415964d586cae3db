#include "tools/follow.h"

#include <poll.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <list>
#include <stdexcept>

#include "log/zynlog_paths.h"
#include "program/listening_socket.h"
#include "program/translation.h"
#include "tools/class_and_level_names.h"
#include "tools/console.h"
#include "tools/process_connection.h"

namespace kestrel::tools {
namespace {

class Filter {
  public:
    explicit Filter(const FollowOptions& options)
        : lowest_level_(line_level_by_name(options.lowest_level)) {
        for (const std::string& name : options.classes) classes_.push_back(class_by_name(name));
    }

    bool passes(const LogLine& line) const {
        return line.level >= lowest_level_ &&
               (classes_.empty() || std::ranges::any_of(classes_, [&](std::uint32_t ancestor) {
                    return is_within(line.log_class, ancestor);
                }));
    }

  private:
    std::uint32_t lowest_level_;
    std::vector<std::uint32_t> classes_;
};

// A descriptor that becomes readable at SIGINT or SIGTERM.
FileDescriptor stop_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC));
}

void allow_many_connections() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == -1) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

std::string socket_path() {
    std::string path = GetSocketFilePath();
    if (path.empty()) {
        throw std::runtime_error(translate("cannot listen: there is no home directory"));
    }
    return path;
}

std::string in_use() {
    return formatted(translate("a log daemon or another viewer already listens at %s"),
                     GetSocketFilePath());
}

class Viewer {
  public:
    explicit Viewer(const FollowOptions& options)
        : filter_(options),
          json_(options.json),
          colours_(wants_colours()),
          stop_(stop_signals()),
          listener_(socket_path(), in_use()) {
        std::fprintf(stderr, "kestrel-log: %s\n",
                     formatted(translate("listening at %s"), GetSocketFilePath()).c_str());
    }

    void run() {
        while (wait()) {
            receive();
            if ((waiting_[kListener].revents & POLLIN) != 0) accept();
        }
    }

  private:
    enum : std::size_t { kStop, kOutput, kListener, kFirstProcess };

    // False if the viewer must stop.
    bool wait() {
        waiting_.clear();
        waiting_.push_back({stop_.get(), POLLIN, 0});
        waiting_.push_back({STDOUT_FILENO, 0, 0});  // POLLERR when its reader closes it
        waiting_.push_back({listener_.fd(), static_cast<short>(is_full_ ? 0 : POLLIN), 0});
        for (const ProcessConnection& process : processes_) {
            waiting_.push_back({process.fd(), POLLIN, 0});
        }
        poll(waiting_.data(), waiting_.size(), -1);
        return waiting_[kStop].revents == 0 && (waiting_[kOutput].revents & POLLERR) == 0;
    }

    void receive() {
        std::size_t index = kFirstProcess;
        std::erase_if(processes_, [&](ProcessConnection& process) {
            if (waiting_[index++].revents == 0) return false;
            const bool is_closed = !process.receive([this](const LogLine& line) { show(line); });
            if (is_closed) is_full_ = false;
            return is_closed;
        });
    }

    void accept() {
        FileDescriptor process = listener_.accept();
        if (process.is_open()) {
            processes_.emplace_back(std::move(process));
        } else if (errno == EMFILE || errno == ENFILE) {
            is_full_ = true;  // until a connection is closed
        }
    }

    void show(const LogLine& line) const {
        if (filter_.passes(line)) print(json_ ? json_of(line) : text_of(line, colours_));
    }

    const Filter filter_;
    const bool json_;
    const bool colours_;
    const FileDescriptor stop_;
    const ListeningSocket listener_;
    std::list<ProcessConnection> processes_;
    std::vector<pollfd> waiting_;
    bool is_full_ = false;
};

}  // namespace

void follow(const FollowOptions& options) {
    allow_many_connections();
    Viewer(options).run();
}

}  // namespace kestrel::tools
