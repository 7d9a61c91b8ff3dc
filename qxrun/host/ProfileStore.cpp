#include "qxrun/host/ProfileStore.h"

#include <sqlite3.h>
#include <system_error>

namespace qxrun {
namespace {

// A prepared statement finalised when it goes out of scope.
class Statement {
 public:
  Statement(sqlite3* db, const char* sql) { sqlite3_prepare_v2(db, sql, -1, &statement_, nullptr); }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  bool Ok() const { return statement_ != nullptr; }
  void Bind(int index, const std::string& text) {
    sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
  }
  int Step() { return sqlite3_step(statement_); }
  std::string Column(int index) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, index));
    return text == nullptr
               ? std::string()
               : std::string(text, static_cast<size_t>(sqlite3_column_bytes(statement_, index)));
  }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

}  // namespace

ProfileStore::ProfileStore(std::filesystem::path folder)
    : folder_(std::move(folder)), file_(folder_ / "qxlprofile.sqlite") {}

ProfileStore::~ProfileStore() { sqlite3_close(db_); }

bool ProfileStore::Open() {
  if (db_ != nullptr) return true;
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (sqlite3_open(file_.c_str(), &db_) != SQLITE_OK) {
    sqlite3_close(db_);
    db_ = nullptr;
    return false;
  }
  sqlite3_busy_timeout(db_, 2000);  // another qxrun may be writing the same store
  const char* schema =
      "CREATE TABLE IF NOT EXISTS profile (store TEXT NOT NULL, section TEXT NOT NULL,"
      " key TEXT NOT NULL, value TEXT NOT NULL, PRIMARY KEY (store, section, key))";
  if (sqlite3_exec(db_, schema, nullptr, nullptr, nullptr) != SQLITE_OK) {
    sqlite3_close(db_);
    db_ = nullptr;
    return false;
  }
  return true;
}

std::optional<std::string> ProfileStore::Get(const std::string& store, const std::string& section,
                                             const std::string& key) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!Open()) return std::nullopt;
  Statement select(db_, "SELECT value FROM profile WHERE store = ?1 AND section = ?2 AND key = ?3");
  if (!select.Ok()) return std::nullopt;
  select.Bind(1, store);
  select.Bind(2, section);
  select.Bind(3, key);
  if (select.Step() != SQLITE_ROW) return std::nullopt;
  return select.Column(0);
}

bool ProfileStore::Set(const std::string& store, const std::string& section, const std::string& key,
                       const std::string& value) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!Open()) return false;
  Statement upsert(db_,
                   "INSERT INTO profile (store, section, key, value) VALUES (?1, ?2, ?3, ?4)"
                   " ON CONFLICT (store, section, key) DO UPDATE SET value = excluded.value");
  if (!upsert.Ok()) return false;
  upsert.Bind(1, store);
  upsert.Bind(2, section);
  upsert.Bind(3, key);
  upsert.Bind(4, value);
  return upsert.Step() == SQLITE_DONE;
}

}  // namespace qxrun
