// The paper broker's store: accounts, positions, orders, fills and replay sessions in SQLite
// (write-ahead log), one transaction per broker event.
//
// Schema version 1 (PRAGMA user_version). A store of a newer version is refused, as is a file
// that is not a database or a database that is not a broker store. Synchronous mode NORMAL: a
// committed event survives the process being killed at any moment; a power cut may lose the last
// events, never leave half of one.
//
// Recovery: an order is kept as "sending" before the broker looks at it, and its acceptance is an
// event of its own; a replay started again takes in the orders still "sending" once (see
// PaperBroker::AcceptPending), and goes on after the last tick the store holds, so no tick's
// orders are sent twice.
#ifndef QXRUN_BROKER_BROKER_STORE_H_
#define QXRUN_BROKER_BROKER_STORE_H_

#include "qxrun/InputError.h"
#include "qxrun/broker/PaperBroker.h"

#include <filesystem>
#include <memory>
#include <string>

struct sqlite3;

namespace qxrun {

inline constexpr int kBrokerSchemaVersion = 1;

// A store that cannot be read or written: the file and what is wrong. Bad input to the replay.
class StoreError : public InputError {
 public:
  using InputError::InputError;
};

class BrokerStore : public BrokerJournal {
 public:
  // Opens (or makes) the store at `file`. Throws StoreError.
  explicit BrokerStore(std::filesystem::path file);
  ~BrokerStore() override;
  BrokerStore(const BrokerStore&) = delete;
  BrokerStore& operator=(const BrokerStore&) = delete;

  BrokerState Load();
  // Writes the change in one transaction; on failure nothing of it is kept and StoreError says why.
  void Commit(const BrokerChange& change) override;

  // Caps the database at `pages` pages (a full disk, for tests of what a failed write leaves).
  void LimitPages(int64_t pages);

  const std::filesystem::path& File() const { return file_; }

 private:
  class Statements;
  void Open();
  [[noreturn]] void Fail(const std::string& what) const;
  void Execute(const char* sql);

  std::filesystem::path file_;
  sqlite3* db_ = nullptr;
  std::unique_ptr<Statements> statements_;
};

}  // namespace qxrun

#endif  // QXRUN_BROKER_BROKER_STORE_H_
