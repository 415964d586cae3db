#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/desktop/sqlite_database.h"

namespace kestrel {

inline constexpr std::string_view kStoreDatabaseFile = "store.db";

// The store page's items and subscriptions, in an SQLite file. Any number of processes may open the
// same file; changes are atomic and visible to all of them immediately. Each function throws
// DatabaseError on failure and then changes nothing.
class StoreDatabase {
  public:
    // Creates the file, but not its directory, if it does not exist. Throws for a file that is no
    // such database or has another version, without changing it.
    explicit StoreDatabase(const std::string& path);

    // The item stored under `key`, if any. Keys and values are any bytes and may be empty.
    std::optional<std::string> item(std::string_view key) const;
    void set_item(std::string_view key, std::string_view value);

    // The ids of the subscribed applications in the user's order.
    std::vector<std::string> subscriptions() const;

    // Each returns false if nothing changes. A position beyond the end means the last one.
    bool subscribe(std::string_view id);
    bool unsubscribe(std::string_view id);
    bool move(std::string_view id, std::size_t position);

  private:
    void prepare();

    SqliteDatabase database_;
};

}  // namespace kestrel
