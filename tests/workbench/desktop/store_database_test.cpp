#include "workbench/desktop/store_database.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

namespace fs = std::filesystem;

pid_t start_probe(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), STORE_DATABASE_PROBE);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    pid_t pid = -1;
    EXPECT_EQ(posix_spawn(&pid, STORE_DATABASE_PROBE, nullptr, nullptr, pointers.data(), environ),
              0);
    return pid;
}

bool ends_well(pid_t pid) {
    int status = -1;
    return waitpid(pid, &status, 0) == pid && status == 0;
}

class StoreDatabaseTest : public ::testing::Test {
  protected:
    std::string error_of_opening() const {
        try {
            const StoreDatabase database(path);
        } catch (const DatabaseError& error) {
            return error.what();
        }
        return "";
    }

    TemporaryDirectory directory;
    std::string path = directory.path() + "/" + std::string(kStoreDatabaseFile);
};

TEST_F(StoreDatabaseTest, KeepsItemsAndSubscriptionsWhenReopened) {
    {
        StoreDatabase database(path);
        database.set_item("theme", "light");
        database.set_item("theme", "dark");
        for (const char* id : {"a", "b", "c"}) EXPECT_TRUE(database.subscribe(id));
        EXPECT_TRUE(database.move("c", 0));
    }
    const StoreDatabase database(path);
    EXPECT_THAT(database.item("theme"), Optional("dark"s));
    EXPECT_EQ(database.item("other"), std::nullopt);
    EXPECT_THAT(database.subscriptions(), ElementsAre("c", "a", "b"));
}

TEST_F(StoreDatabaseTest, StoresAnyBytesAsKeyAndValue) {
    const std::array texts = {
        ""s,
        "Grüß Gott – \U0001f426"s,
        "it's \"quoted\"; -- and?"s,
        "x'); DROP TABLE item; --"s,
        "nul\0within"s,
        "nul\0without"s,
        "\xff\xfe not UTF-8 \x80"s,
        std::string(100'000, 'k'),
    };
    StoreDatabase database(path);
    for (const std::string& text : texts) database.set_item(text, text + "=" + text);
    for (const std::string& text : texts) {
        EXPECT_THAT(database.item(text), Optional(text + "=" + text));
    }
    database.set_item("emptied", "");
    EXPECT_THAT(database.item("emptied"), Optional(""s));
}

TEST_F(StoreDatabaseTest, StoresALongValue) {
    const std::string value(20'000'000, 'v');
    StoreDatabase(path).set_item("long", value);
    EXPECT_TRUE(StoreDatabase(path).item("long") == value);
}

TEST_F(StoreDatabaseTest, SubscribesAndUnsubscribesOnce) {
    StoreDatabase database(path);
    EXPECT_TRUE(database.subscribe("it's; --"));
    EXPECT_FALSE(database.subscribe("it's; --"));
    EXPECT_TRUE(database.subscribe(""));
    EXPECT_THAT(database.subscriptions(), ElementsAre("it's; --", ""));
    EXPECT_TRUE(database.unsubscribe("it's; --"));
    EXPECT_FALSE(database.unsubscribe("it's; --"));
    EXPECT_THAT(database.subscriptions(), ElementsAre(""));
}

TEST_F(StoreDatabaseTest, MovesToAPositionUpToTheLast) {
    StoreDatabase database(path);
    for (const char* id : {"a", "gone", "b", "c", "d"}) database.subscribe(id);
    database.unsubscribe("gone");
    EXPECT_TRUE(database.move("a", 2));
    EXPECT_THAT(database.subscriptions(), ElementsAre("b", "c", "a", "d"));
    EXPECT_TRUE(database.move("d", 0));
    EXPECT_THAT(database.subscriptions(), ElementsAre("d", "b", "c", "a"));
    EXPECT_TRUE(database.move("d", std::string::npos));
    EXPECT_THAT(database.subscriptions(), ElementsAre("b", "c", "a", "d"));
    EXPECT_FALSE(database.move("d", 3));
    EXPECT_FALSE(database.move("d", 99));
    EXPECT_FALSE(database.move("unknown", 0));
    EXPECT_TRUE(database.subscribe("e"));
    EXPECT_THAT(database.subscriptions(), ElementsAre("b", "c", "a", "d", "e"));
}

TEST_F(StoreDatabaseTest, SeesChangesOfAnotherProcess) {
    const StoreDatabase database(path);
    ASSERT_TRUE(ends_well(start_probe({path, "set", "key", "from elsewhere"})));
    ASSERT_TRUE(ends_well(start_probe({path, "push", "app", "2"})));
    EXPECT_THAT(database.item("key"), Optional("from elsewhere"s));
    EXPECT_THAT(database.subscriptions(), ElementsAre("app1", "app0"));
}

TEST_F(StoreDatabaseTest, StaysConsistentWhileTwoProcessesCreateAndChangeIt) {
    constexpr int kCount = 60;
    const std::string count = std::to_string(kCount);
    const pid_t one = start_probe({path, "push", "one", count});
    const pid_t two = start_probe({path, "push", "two", count});
    EXPECT_TRUE(ends_well(one));
    EXPECT_TRUE(ends_well(two));

    std::vector<std::string> ids = StoreDatabase(path).subscriptions();
    ASSERT_EQ(ids.size(), 2 * kCount);
    // Each process moved its own ids to the front in order.
    std::ranges::stable_partition(ids, [](const std::string& id) { return id.starts_with("one"); });
    for (int index = 0; index < kCount; ++index) {
        const std::string number = std::to_string(kCount - 1 - index);
        EXPECT_EQ(ids[static_cast<std::size_t>(index)], "one" + number);
        EXPECT_EQ(ids[static_cast<std::size_t>(kCount + index)], "two" + number);
    }
}

// A process that opens the database when the pipe's writing end is closed.
pid_t open_when_closed(const std::array<int, 2>& pipe, const std::string& path) {
    const pid_t pid = fork();
    if (pid != 0) return pid;
    close(pipe[1]);
    char byte = 0;
    if (read(pipe[0], &byte, 1) != 0) _exit(EXIT_FAILURE);
    try {
        const StoreDatabase database(path);
    } catch (const DatabaseError& error) {
        std::cerr << error.what() << '\n';
        _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS);
}

TEST_F(StoreDatabaseTest, IsCreatedBySeveralProcessesAtOnce) {
    constexpr int kRounds = 50;
    for (int round = 0; round < kRounds; ++round) {
        path = directory.path() + "/" + std::to_string(round);
        std::array<int, 2> start{};
        ASSERT_EQ(pipe2(start.data(), O_CLOEXEC), 0);
        std::array<pid_t, 4> processes{};
        for (pid_t& process : processes) {
            process = open_when_closed(start, path);
        }
        close(start[1]);
        close(start[0]);
        for (const pid_t process : processes) EXPECT_TRUE(ends_well(process));
    }
}

TEST_F(StoreDatabaseTest, LosesNothingWhenTheFileCannotGrow) {
    StoreDatabase database(path);
    database.set_item("key", "kept");

    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto on_signal = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{.rlim_cur = 1'000'000, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_THROW(database.set_item("key", std::string(2'000'000, 'x')), DatabaseError);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, on_signal);

    EXPECT_THAT(database.item("key"), Optional("kept"s));
    database.set_item("key", "changed");
    EXPECT_THAT(StoreDatabase(path).item("key"), Optional("changed"s));
}

TEST_F(StoreDatabaseTest, RefusesOtherFilesWithoutChangingThem) {
    const std::string text(5'000, 't');
    std::ofstream(path) << text;
    EXPECT_EQ(error_of_opening(), path + " is not a database");
    EXPECT_EQ(file_content(path), text);
}

TEST_F(StoreDatabaseTest, RefusesAnotherProgramsDatabaseWithoutChangingIt) {
    SqliteDatabase(path).run("CREATE TABLE item (other TEXT)");
    const std::string before = file_content(path);
    EXPECT_EQ(error_of_opening(), path + " belongs to another program");
    EXPECT_EQ(file_content(path), before);
}

TEST_F(StoreDatabaseTest, RefusesANewerVersionWithoutChangingIt) {
    StoreDatabase(path).set_item("key", "value");
    SqliteDatabase(path).run("PRAGMA user_version = 2");
    const std::string before = file_content(path);
    EXPECT_EQ(error_of_opening(),
              path + " has version 2, but this program supports only version 1");
    EXPECT_EQ(file_content(path), before);
}

TEST_F(StoreDatabaseTest, ReportsADamagedDatabase) {
    {
        StoreDatabase database(path);
        database.set_item("key", std::string(100'000, 'v'));
    }
    fs::resize_file(path, 8'192);
    try {
        StoreDatabase(path).set_item("other", std::string(100'000, 'v'));
        FAIL() << "the damage was not noticed";
    } catch (const DatabaseError& error) {
        EXPECT_EQ(error.what(), path + " is a damaged database");
    }
}

TEST_F(StoreDatabaseTest, RefusesADirectoryAndAMissingDirectory) {
    fs::create_directory(path);
    EXPECT_EQ(error_of_opening(), path + " cannot be opened or created");
    path = directory.path() + "/missing/store.db";
    EXPECT_EQ(error_of_opening(), path + " cannot be opened or created");
}

TEST_F(StoreDatabaseTest, RefusesAReadOnlyFile) {
    constexpr uid_t kNobody = 65'534;
    const uid_t user = geteuid();
    { const StoreDatabase database(path); }
    fs::permissions(directory.path(), fs::perms{0755});
    fs::permissions(path, fs::perms{0444});
    ASSERT_TRUE(user != 0 || seteuid(kNobody) == 0);  // root may write everything
    EXPECT_EQ(error_of_opening(), path + " cannot be written");
    ASSERT_EQ(seteuid(user), 0);
}

}  // namespace
}  // namespace kestrel::testing
