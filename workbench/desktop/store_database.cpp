#include "workbench/desktop/store_database.h"

#include <algorithm>
#include <cstdint>

#include "program/translation.h"

namespace kestrel {
namespace {

// "Kest": distinguishes our files from those of other programs.
constexpr std::int64_t kApplicationId = 0x4b657374;
constexpr std::int64_t kSchemaVersion = 1;

// With the application id and version above.
constexpr const char* kSchema = R"(
    CREATE TABLE item (key TEXT PRIMARY KEY, value TEXT NOT NULL);
    CREATE TABLE subscription (id TEXT PRIMARY KEY, position INTEGER NOT NULL);
    PRAGMA application_id = 0x4b657374;
    PRAGMA user_version = 1;
)";

std::int64_t number_of(const SqliteDatabase& database, std::string_view sql) {
    SqliteStatement query(database, sql);
    query.next();
    return query.number(0);
}

}  // namespace

StoreDatabase::StoreDatabase(const std::string& path) : database_(path) {
    prepare();
    // Readers do not wait for a writer, and commits do not wait for the disk: a power failure loses
    // at most the last changes.
    database_.run_when_unlocked("PRAGMA journal_mode = WAL");
    database_.run("PRAGMA synchronous = NORMAL");
}

void StoreDatabase::prepare() {
    SqliteTransaction transaction(database_);
    if (number_of(database_, "SELECT count(*) FROM sqlite_schema") == 0) database_.run(kSchema);
    if (number_of(database_, "PRAGMA application_id") != kApplicationId) {
        throw DatabaseError(
            formatted(translate("%s belongs to another program"), database_.path().c_str()));
    }
    const std::int64_t version = number_of(database_, "PRAGMA user_version");
    if (version != kSchemaVersion) {
        throw DatabaseError(
            formatted(translate("%s has version %lld, but this program supports only version %d"),
                      database_.path().c_str(), static_cast<long long>(version),
                      static_cast<int>(kSchemaVersion)));
    }
    transaction.commit();
}

std::optional<std::string> StoreDatabase::item(std::string_view key) const {
    SqliteStatement query(database_, "SELECT value FROM item WHERE key = ?");
    if (!query.bind(key).next()) return std::nullopt;
    return query.text(0);
}

void StoreDatabase::set_item(std::string_view key, std::string_view value) {
    SqliteStatement(database_, "INSERT OR REPLACE INTO item (key, value) VALUES (?, ?)")
        .bind(key)
        .bind(value)
        .execute();
}

std::vector<std::string> StoreDatabase::subscriptions() const {
    SqliteStatement query(database_, "SELECT id FROM subscription ORDER BY position");
    std::vector<std::string> ids;
    while (query.next()) ids.push_back(query.text(0));
    return ids;
}

bool StoreDatabase::subscribe(std::string_view id) {
    return SqliteStatement(database_,
                           "INSERT OR IGNORE INTO subscription (id, position)"
                           " SELECT ?, coalesce(max(position) + 1, 0) FROM subscription")
               .bind(id)
               .execute() > 0;
}

bool StoreDatabase::unsubscribe(std::string_view id) {
    return SqliteStatement(database_, "DELETE FROM subscription WHERE id = ?").bind(id).execute() >
           0;
}

bool StoreDatabase::move(std::string_view id, std::size_t position) {
    SqliteTransaction transaction(database_);
    std::vector<std::string> ids = subscriptions();
    const auto from = std::ranges::find(ids, id);
    if (from == ids.end()) return false;
    const auto to = ids.begin() + static_cast<std::ptrdiff_t>(std::min(position, ids.size() - 1));
    if (from == to) return false;
    if (from < to) {
        std::rotate(from, from + 1, to + 1);
    } else {
        std::rotate(to, from, from + 1);
    }
    for (std::size_t index = 0; index < ids.size(); ++index) {
        SqliteStatement(database_, "UPDATE subscription SET position = ? WHERE id = ?")
            .bind(static_cast<std::int64_t>(index))
            .bind(ids[index])
            .execute();
    }
    transaction.commit();
    return true;
}

}  // namespace kestrel
