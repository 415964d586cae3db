#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <set>
#include <string>

#include "log/zynlog.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"

namespace kestrel::testing {

// A daemon to which this process has connected and sent its hello.
class DaemonLink : public ::testing::Test {
  protected:
    DaemonLink() {
        signal(SIGPIPE, SIG_IGN);
        clear_syslog_calls();
    }

    static std::string text_of(const std::string& record) { return record.substr(26); }

    const FakeDaemon daemon_;
    const int link_fd_ = init_and_find_link();
    DaemonConnection connection_ = daemon_.accept();
    const std::string hello_ = connection_.read_message();

  private:
    // The descriptor of the connection.
    static int init_and_find_link() {
        const std::set<int> before = open_descriptors();
        ZynLogInit();
        std::set<int> opened = open_descriptors();
        for (const int fd : before) opened.erase(fd);
        EXPECT_EQ(opened.size(), 1U);
        return *opened.begin();
    }
};

}  // namespace kestrel::testing
