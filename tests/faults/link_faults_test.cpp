// The link from connecting to the end of the host, with each system call failing once.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "tests/faults/faults.h"
#include "tests/faults/link_life.h"
#include "tests/faults/scenario.h"

namespace kestrel::testing {
namespace {

TEST(Link, WorksWithoutFaults) {
    const Outcome outcome = run_with({"", 0, 0}, life_of_a_link);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_FALSE(outcome.leaks);
}

TEST(Link, RetriesInterruptedCalls) {
    for_each_fault({{"connect", {EINTR, EAGAIN}}, {"read", {EINTR}}, {"send", {EINTR}}},
                   life_of_a_link, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(Link, RetriesConnect) {
    for_each_fault(
        {{"connect", {ECONNREFUSED, ENOENT, EACCES, EPERM, ETIMEDOUT, EPROTOTYPE, ENOTDIR}}},
        life_of_a_link, [](const Fault& fault, const Outcome& outcome) {
            EXPECT_EQ(outcome.status, 0) << fault;
            EXPECT_EQ(outcome.errors, "") << fault;
        });
}

// The host's queue is full at first, so that connecting must wait.
int life_after_a_full_queue() {
    fail_before("connect", EAGAIN);
    return life_of_a_link();
}

TEST(Link, IgnoresErrorsOfWaitingForTheQueue) {
    for_each_fault({{"poll", {EINTR, ENOMEM, EINVAL}}}, life_after_a_full_queue,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(Link, IgnoresSendBufferErrors) {
    for_each_fault({{"setsockopt", {ENOBUFS, ENOMEM, EPERM, EACCES}}}, life_of_a_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(Link, ReportsCloseError) {
    for_each_fault({{"close", {EIO, EINTR, EDQUOT}}}, life_of_a_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                       EXPECT_EQ(outcome.errors,
                                 "Could not close webkit_client::server_fd, error: " +
                                     std::string(strerror(fault.error)) + "\n");
                   });
}

TEST(Link, EndsAsDocumented) {
    for_each_fault(
        {{"socket", {EMFILE, ENFILE, ENOBUFS, ENOMEM, EACCES, EAFNOSUPPORT}},
         {"pthread_create", {EAGAIN, EPERM}},
         {"fcntl", {EACCES, EPERM}},
         {"read", {EIO, EBADF, ECONNRESET, ENOTCONN, ENOMEM, EAGAIN, EFAULT}},
         {"send", {EPIPE, ECONNRESET, ENOTCONN, EAGAIN, ENOBUFS, ENOMEM, EBADF}},
         {"malloc", {ENOMEM}}},
        life_of_a_link, [](const Fault& fault, const Outcome& outcome) {
            // The last read finds the end of the stream, after everything has arrived.
            const bool may_be_late = fault.function == "read";
            const int expected = fault.function == "send" ? 255 : 1;
            EXPECT_TRUE(outcome.status == expected || (may_be_late && outcome.status == 0))
                << fault << ": " << outcome.status;
            EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
        });
}

}  // namespace
}  // namespace kestrel::testing
