#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/desktop/sqlite_database.h"

namespace kestrel {

inline constexpr std::string_view kStoreDatabaseFile = "store.db";

// What the host keeps for the store page: items and subscriptions, in an SQLite file. Any number of
// processes may have the same file open; each sees at once what another has changed, and every
// change is made whole or not at all. Each function throws DatabaseError if the file does not let
// it be done; what was kept before stays.
class StoreDatabase {
  public:
    // Creates the file if it is not there, but not its directory. A file that is no such database,
    // or one of a newer version, is left as it is, and an error.
    explicit StoreDatabase(const std::string& path);

    // The item stored under `key`, if there is one. Keys and values are any bytes, also none.
    std::optional<std::string> item(std::string_view key) const;
    void set_item(std::string_view key, std::string_view value);

    // The applications subscribed to, in the user's order.
    std::vector<std::string> subscriptions() const;

    // Each is false if that changes nothing. A position behind the last one means the last one.
    bool subscribe(std::string_view id);
    bool unsubscribe(std::string_view id);
    bool move(std::string_view id, std::size_t position);

  private:
    void prepare();

    SqliteDatabase database_;
};

}  // namespace kestrel
