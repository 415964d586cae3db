// Owners for SQLite handles; errors are exceptions. One thread at a time.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kestrel {

// A translated text that says what failed and why.
class DatabaseError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class SqliteDatabase {
  public:
    // Opens the file for reading and writing, and creates it if it does not exist. While another
    // process has locked it, calls wait, at most five seconds. Throws DatabaseError.
    explicit SqliteDatabase(const std::string& path);

    sqlite3* get() const { return handle_.get(); }
    const std::string& path() const { return path_; }

    // Runs statements without parameters and results. Throws DatabaseError.
    void run(const char* sql) const;

    // Like run, for a statement that upgrades a read lock to a write lock, such as a change of the
    // journal mode. If two processes do that at once, SQLite fails without waiting; this retries
    // for five seconds.
    void run_when_unlocked(const char* sql) const;

    // Throws the DatabaseError for a result code of SQLite.
    [[noreturn]] void fail(int result_code) const;

  private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };

    std::string path_;
    std::unique_ptr<sqlite3, Close> handle_;
};

// A prepared statement whose parameters ("?") are bound in order. The database must outlive it. All
// functions throw DatabaseError.
class SqliteStatement {
  public:
    SqliteStatement(const SqliteDatabase& database, std::string_view sql);

    // The text must outlive the statement. It may contain any bytes.
    SqliteStatement& bind(std::string_view text);
    SqliteStatement& bind(std::int64_t number);

    // Steps to the next row of the result; false after the last one.
    bool next();

    // Columns of the current row, counted from 0.
    std::string text(int column) const;
    std::int64_t number(int column) const { return sqlite3_column_int64(handle_.get(), column); }

    // Runs a statement without results; returns the number of changed rows.
    int execute();

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };

    const SqliteDatabase& database_;
    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
    int bound_ = 0;
};

// Locks out other writers until commit(); rolled back if not committed.
class SqliteTransaction {
  public:
    explicit SqliteTransaction(const SqliteDatabase& database);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    void commit();

  private:
    const SqliteDatabase& database_;
};

}  // namespace kestrel
