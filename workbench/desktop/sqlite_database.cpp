#include "workbench/desktop/sqlite_database.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "program/translation.h"

namespace kestrel {
namespace {

// Milliseconds.
constexpr int kBusyTimeout = 5'000;
constexpr int kRetryInterval = 5;

struct Explanation {
    int result_code;
    const char* text;
};

// Clearer texts than SQLite's own; %s is the path of the database.
constexpr std::array kExplanations = {
    Explanation{SQLITE_NOTADB, translatable("%s is not a database")},
    Explanation{SQLITE_CORRUPT, translatable("%s is a damaged database")},
    Explanation{SQLITE_READONLY, translatable("%s cannot be written")},
    Explanation{SQLITE_CANTOPEN, translatable("%s cannot be opened or created")},
    Explanation{SQLITE_FULL, translatable("%s cannot grow: the disk is full")},
    Explanation{SQLITE_BUSY, translatable("%s has been locked by another program for too long")},
    Explanation{SQLITE_TOOBIG, translatable("%s cannot store a text that long")},
};

std::string explain(const std::string& path, int result_code) {
    const auto* const known =
        std::ranges::find(kExplanations, result_code & 0xff, &Explanation::result_code);
    return known != kExplanations.end() ? formatted(translate(known->text), path.c_str())
                                        : path + " " + sqlite3_errstr(result_code);
}

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path) : path_(path) {
    sqlite3* opened = nullptr;
    const int result =
        sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    handle_.reset(opened);
    if (result != SQLITE_OK) fail(result);
    // SQLite silently opens a file read-only if it may not write it.
    if (sqlite3_db_readonly(opened, "main") != 0) fail(SQLITE_READONLY);
    sqlite3_busy_timeout(opened, kBusyTimeout);
}

void SqliteDatabase::run(const char* sql) const {
    const int result = sqlite3_exec(get(), sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) fail(result);
}

void SqliteDatabase::run_when_unlocked(const char* sql) const {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(kBusyTimeout);
    int result = SQLITE_OK;
    while ((result = sqlite3_exec(get(), sql, nullptr, nullptr, nullptr)) == SQLITE_BUSY &&
           std::chrono::steady_clock::now() < deadline) {
        sqlite3_sleep(kRetryInterval);
    }
    if (result != SQLITE_OK) fail(result);
}

void SqliteDatabase::fail(int result_code) const {
    throw DatabaseError(explain(path_, result_code));
}

SqliteStatement::SqliteStatement(const SqliteDatabase& database, std::string_view sql)
    : database_(database) {
    sqlite3_stmt* prepared = nullptr;
    const int result = sqlite3_prepare_v2(database.get(), sql.data(), static_cast<int>(sql.size()),
                                          &prepared, nullptr);
    handle_.reset(prepared);
    if (result != SQLITE_OK) database.fail(result);
}

SqliteStatement& SqliteStatement::bind(std::string_view text) {
    // A null pointer would bind SQL NULL.
    const char* const data = text.empty() ? "" : text.data();
    const int result =
        sqlite3_bind_text64(handle_.get(), ++bound_, data, text.size(), SQLITE_STATIC, SQLITE_UTF8);
    if (result != SQLITE_OK) database_.fail(result);
    return *this;
}

SqliteStatement& SqliteStatement::bind(std::int64_t number) {
    const int result = sqlite3_bind_int64(handle_.get(), ++bound_, number);
    if (result != SQLITE_OK) database_.fail(result);
    return *this;
}

bool SqliteStatement::next() {
    const int result = sqlite3_step(handle_.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) database_.fail(result);
    return result == SQLITE_ROW;
}

std::string SqliteStatement::text(int column) const {
    const auto* const data =
        reinterpret_cast<const char*>(sqlite3_column_text(handle_.get(), column));
    const int size = sqlite3_column_bytes(handle_.get(), column);
    return data == nullptr ? "" : std::string(data, static_cast<std::size_t>(size));
}

int SqliteStatement::execute() {
    next();
    return sqlite3_changes(database_.get());
}

SqliteTransaction::SqliteTransaction(const SqliteDatabase& database) : database_(database) {
    database_.run("BEGIN IMMEDIATE");
}

SqliteTransaction::~SqliteTransaction() {
    // Some errors have already rolled the transaction back.
    if (sqlite3_get_autocommit(database_.get()) == 0) {
        sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void SqliteTransaction::commit() { database_.run("COMMIT"); }

}  // namespace kestrel
