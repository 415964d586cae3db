// SQLite's handles, with owners, and its errors as exceptions. One thread at a time.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kestrel {

// What could not be done with a database, and why, as the user should read it.
class DatabaseError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class SqliteDatabase {
  public:
    // Opens the file for reading and writing, and creates it if it is not there. Whoever finds it
    // in use by another process waits for that one, five seconds at most. Throws DatabaseError.
    explicit SqliteDatabase(const std::string& path);

    sqlite3* get() const { return handle_.get(); }
    const std::string& path() const { return path_; }

    // Runs a statement without values and without results. Throws DatabaseError.
    void run(const char* sql) const;

    // The same for a statement that turns a read lock into a write lock, such as a change of the
    // journal mode: when two processes do that at once, SQLite fails without waiting. Tries again
    // for five seconds.
    void run_when_unlocked(const char* sql) const;

    // Throws the DatabaseError that a result code of SQLite stands for.
    [[noreturn]] void fail(int result_code) const;

  private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };

    std::string path_;
    std::unique_ptr<sqlite3, Close> handle_;
};

// A statement whose values, its question marks, are bound in their order. The database must outlive
// it. Everything throws DatabaseError.
class SqliteStatement {
  public:
    SqliteStatement(const SqliteDatabase& database, std::string_view sql);

    // The text must outlive the statement. Whatever bytes it holds are kept.
    SqliteStatement& bind(std::string_view text);
    SqliteStatement& bind(std::int64_t number);

    // Goes to the next row of the result; false behind the last one.
    bool next();

    // Columns of the row, counted from 0.
    std::string text(int column) const;
    std::int64_t number(int column) const { return sqlite3_column_int64(handle_.get(), column); }

    // Carries out a statement that has no result; gives the number of rows that it changed.
    int execute();

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };

    const SqliteDatabase& database_;
    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
    int bound_ = 0;
};

// From here to commit() nobody else writes. Taken back if it is not committed.
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
