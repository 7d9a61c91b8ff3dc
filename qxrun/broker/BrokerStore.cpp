#include "qxrun/broker/BrokerStore.h"

#include <cstring>
#include <fstream>
#include <sqlite3.h>
#include <system_error>

namespace qxrun {
namespace {

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS accounts (name TEXT PRIMARY KEY, balance REAL NOT NULL,"
    " previous_equity REAL NOT NULL, today_deposit REAL NOT NULL, today_drawing REAL NOT NULL,"
    " trading_day INTEGER NOT NULL);"
    "CREATE TABLE IF NOT EXISTS positions (account TEXT NOT NULL, market INTEGER NOT NULL,"
    " code TEXT NOT NULL, long INTEGER NOT NULL, long_today INTEGER NOT NULL,"
    " long_average REAL NOT NULL, short INTEGER NOT NULL, short_today INTEGER NOT NULL,"
    " short_average REAL NOT NULL, PRIMARY KEY (account, market, code));"
    "CREATE TABLE IF NOT EXISTS orders (id INTEGER PRIMARY KEY, contract_no TEXT NOT NULL UNIQUE,"
    " session TEXT NOT NULL, sequence INTEGER NOT NULL, account TEXT NOT NULL,"
    " market INTEGER NOT NULL, code TEXT NOT NULL, buy_or_sell INTEGER NOT NULL,"
    " entry_or_exit INTEGER NOT NULL, lots INTEGER NOT NULL, price REAL NOT NULL,"
    " status INTEGER NOT NULL, filled INTEGER NOT NULL, filled_price REAL NOT NULL,"
    " time INTEGER NOT NULL, trading_day INTEGER NOT NULL, source TEXT NOT NULL,"
    " comment TEXT NOT NULL, note TEXT NOT NULL);"
    "CREATE TABLE IF NOT EXISTS fills (id INTEGER PRIMARY KEY, order_id INTEGER NOT NULL,"
    " account TEXT NOT NULL, market INTEGER NOT NULL, code TEXT NOT NULL,"
    " buy_or_sell INTEGER NOT NULL, entry_or_exit INTEGER NOT NULL, lots INTEGER NOT NULL,"
    " price REAL NOT NULL, commission REAL NOT NULL, profit REAL NOT NULL, time INTEGER NOT NULL,"
    " sequence INTEGER NOT NULL);"
    "CREATE TABLE IF NOT EXISTS sessions (key TEXT PRIMARY KEY, sequence INTEGER NOT NULL);";

// A prepared statement, reset after each use.
class Statement {
 public:
  Statement(sqlite3* db, const char* sql) {
    if (sqlite3_prepare_v2(db, sql, -1, &statement_, nullptr) != SQLITE_OK) statement_ = nullptr;
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  bool Ok() const { return statement_ != nullptr; }
  Statement& Bind(int index, int64_t value) {
    sqlite3_bind_int64(statement_, index, value);
    return *this;
  }
  Statement& Bind(int index, double value) {
    sqlite3_bind_double(statement_, index, value);
    return *this;
  }
  Statement& Bind(int index, const std::string& text) {
    sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
    return *this;
  }
  // SQLITE_ROW, SQLITE_DONE or an error code.
  int Step() { return sqlite3_step(statement_); }
  int Done() {
    const int result = sqlite3_step(statement_);
    sqlite3_reset(statement_);
    return result;
  }
  int64_t Integer(int column) { return sqlite3_column_int64(statement_, column); }
  double Real(int column) { return sqlite3_column_double(statement_, column); }
  std::string Text(int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return text == nullptr
               ? std::string()
               : std::string(text, static_cast<size_t>(sqlite3_column_bytes(statement_, column)));
  }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

}  // namespace

class BrokerStore::Statements {
 public:
  explicit Statements(sqlite3* db)
      : account(db, "INSERT OR REPLACE INTO accounts VALUES (?1, ?2, ?3, ?4, ?5, ?6)"),
        position(db,
                 "INSERT OR REPLACE INTO positions VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)"),
        order(db,
              "INSERT OR REPLACE INTO orders VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10,"
              " ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18, ?19)"),
        fill(db,
             "INSERT INTO fills VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13)"),
        session(db, "INSERT OR REPLACE INTO sessions VALUES (?1, ?2)"),
        begin(db, "BEGIN IMMEDIATE"),
        commit(db, "COMMIT"),
        rollback(db, "ROLLBACK") {}

  bool Ok() const {
    return account.Ok() && position.Ok() && order.Ok() && fill.Ok() && session.Ok() && begin.Ok() &&
           commit.Ok() && rollback.Ok();
  }

  Statement account;
  Statement position;
  Statement order;
  Statement fill;
  Statement session;
  Statement begin;
  Statement commit;
  Statement rollback;
};

BrokerStore::BrokerStore(std::filesystem::path file) : file_(std::move(file)) {
  std::error_code error;
  if (!file_.parent_path().empty()) std::filesystem::create_directories(file_.parent_path(), error);
  // SQLite opens any file and only fails on the first read: a file that is not a database is
  // named as such before it is touched.
  if (std::filesystem::exists(file_, error) && std::filesystem::file_size(file_, error) > 0) {
    std::ifstream in(file_, std::ios::binary);
    char header[16] = {};
    in.read(header, sizeof(header));
    if (std::memcmp(header, "SQLite format 3", 16) != 0) {
      throw StoreError(file_.string() + ": is not a database (a broker store is SQLite)");
    }
  }
  // A store that is refused is closed again: the destructor does not run for it.
  try {
    Open();
  } catch (...) {
    statements_.reset();
    sqlite3_close(db_);
    throw;
  }
}

void BrokerStore::Open() {
  if (sqlite3_open(file_.c_str(), &db_) != SQLITE_OK) Fail("cannot be opened");
  sqlite3_busy_timeout(db_, 5000);
  int64_t schema = 0;
  {
    Statement version(db_, "PRAGMA user_version");
    if (!version.Ok() || version.Step() != SQLITE_ROW) Fail("cannot be read");
    schema = version.Integer(0);
  }
  if (schema > kBrokerSchemaVersion) {
    throw StoreError(file_.string() + ": belongs to a newer version of qxrun (store version " +
                     std::to_string(schema) + ", this one reads up to " +
                     std::to_string(kBrokerSchemaVersion) + ")");
  }
  if (schema == 0) {
    int64_t tableCount = 0;
    {
      Statement tables(db_, "SELECT count(*) FROM sqlite_master");
      if (!tables.Ok() || tables.Step() != SQLITE_ROW) Fail("cannot be read");
      tableCount = tables.Integer(0);
    }
    if (tableCount > 0) {
      throw StoreError(file_.string() + ": is a database but not a broker store");
    }
  }
  Execute("PRAGMA journal_mode=WAL");
  Execute("PRAGMA synchronous=NORMAL");
  // The tables and the version in one transaction: a run killed while making the store leaves
  // none of it.
  const std::string schemaTransaction = std::string("BEGIN;") + kSchema + "PRAGMA user_version=" +
                                        std::to_string(kBrokerSchemaVersion) + ";COMMIT;";
  Execute(schemaTransaction.c_str());
  statements_ = std::make_unique<Statements>(db_);
  if (!statements_->Ok()) Fail("cannot be prepared");
}

BrokerStore::~BrokerStore() {
  statements_.reset();
  sqlite3_close(db_);
}

void BrokerStore::Fail(const std::string& what) const {
  const int code = db_ != nullptr ? sqlite3_errcode(db_) : SQLITE_ERROR;
  std::string reason = db_ != nullptr ? sqlite3_errmsg(db_) : "out of memory";
  if (code == SQLITE_FULL) reason = "the disk is full";
  throw StoreError(file_.string() + ": " + what + ": " + reason);
}

void BrokerStore::Execute(const char* sql) {
  if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail("cannot be set up");
}

void BrokerStore::LimitPages(int64_t pages) {
  const std::string sql = "PRAGMA max_page_count=" + std::to_string(pages);
  Execute(sql.c_str());
}

BrokerState BrokerStore::Load() {
  BrokerState state;
  Statement accounts(db_, "SELECT * FROM accounts ORDER BY name");
  while (accounts.Step() == SQLITE_ROW) {
    state.Accounts.push_back({accounts.Text(0), accounts.Real(1), accounts.Real(2),
                              accounts.Real(3), accounts.Real(4),
                              static_cast<int32_t>(accounts.Integer(5))});
  }
  Statement positions(db_, "SELECT * FROM positions");
  while (positions.Step() == SQLITE_ROW) {
    BrokerPosition& p = state.Positions.emplace_back();
    p.Account = positions.Text(0);
    p.Market = static_cast<uint32_t>(positions.Integer(1));
    p.Code = positions.Text(2);
    p.Long = positions.Integer(3);
    p.LongToday = positions.Integer(4);
    p.LongAverage = positions.Real(5);
    p.Short = positions.Integer(6);
    p.ShortToday = positions.Integer(7);
    p.ShortAverage = positions.Real(8);
  }
  Statement orders(db_, "SELECT * FROM orders ORDER BY id");
  while (orders.Step() == SQLITE_ROW) {
    BrokerOrder& o = state.Orders.emplace_back();
    o.Id = orders.Integer(0);
    o.ContractNo = orders.Text(1);
    o.Session = orders.Text(2);
    o.Sequence = orders.Integer(3);
    o.Account = orders.Text(4);
    o.Market = static_cast<uint32_t>(orders.Integer(5));
    o.Code = orders.Text(6);
    o.BuyOrSell = static_cast<int32_t>(orders.Integer(7));
    o.EntryOrExit = static_cast<int32_t>(orders.Integer(8));
    o.Lots = orders.Integer(9);
    o.Price = orders.Real(10);
    o.Status = static_cast<int32_t>(orders.Integer(11));
    o.Filled = orders.Integer(12);
    o.FilledPrice = orders.Real(13);
    o.Time = orders.Integer(14);
    o.TradingDay = static_cast<int32_t>(orders.Integer(15));
    o.Source = orders.Text(16);
    o.Comment = orders.Text(17);
    o.Note = orders.Text(18);
  }
  Statement fills(db_, "SELECT * FROM fills ORDER BY id");
  while (fills.Step() == SQLITE_ROW) {
    BrokerFill& f = state.Fills.emplace_back();
    f.Id = fills.Integer(0);
    f.OrderId = fills.Integer(1);
    f.Account = fills.Text(2);
    f.Market = static_cast<uint32_t>(fills.Integer(3));
    f.Code = fills.Text(4);
    f.BuyOrSell = static_cast<int32_t>(fills.Integer(5));
    f.EntryOrExit = static_cast<int32_t>(fills.Integer(6));
    f.Lots = fills.Integer(7);
    f.Price = fills.Real(8);
    f.Commission = fills.Real(9);
    f.Profit = fills.Real(10);
    f.Time = fills.Integer(11);
    f.Sequence = fills.Integer(12);
  }
  Statement sessions(db_, "SELECT * FROM sessions");
  while (sessions.Step() == SQLITE_ROW) {
    state.Sessions.push_back({sessions.Text(0), sessions.Integer(1)});
  }
  return state;
}

void BrokerStore::Commit(const BrokerChange& change) {
  Statements& s = *statements_;
  if (s.begin.Done() != SQLITE_DONE) Fail("cannot be written");
  bool ok = true;
  for (const BrokerAccount& a : change.Accounts) {
    ok = ok && s.account.Bind(1, a.Name)
                       .Bind(2, a.Balance)
                       .Bind(3, a.PreviousEquity)
                       .Bind(4, a.TodayDeposit)
                       .Bind(5, a.TodayDrawing)
                       .Bind(6, int64_t{a.TradingDay})
                       .Done() == SQLITE_DONE;
  }
  for (const BrokerPosition& p : change.Positions) {
    ok = ok && s.position.Bind(1, p.Account)
                       .Bind(2, int64_t{p.Market})
                       .Bind(3, p.Code)
                       .Bind(4, p.Long)
                       .Bind(5, p.LongToday)
                       .Bind(6, p.LongAverage)
                       .Bind(7, p.Short)
                       .Bind(8, p.ShortToday)
                       .Bind(9, p.ShortAverage)
                       .Done() == SQLITE_DONE;
  }
  for (const BrokerOrder& o : change.Orders) {
    ok = ok && s.order.Bind(1, o.Id)
                       .Bind(2, o.ContractNo)
                       .Bind(3, o.Session)
                       .Bind(4, o.Sequence)
                       .Bind(5, o.Account)
                       .Bind(6, int64_t{o.Market})
                       .Bind(7, o.Code)
                       .Bind(8, int64_t{o.BuyOrSell})
                       .Bind(9, int64_t{o.EntryOrExit})
                       .Bind(10, o.Lots)
                       .Bind(11, o.Price)
                       .Bind(12, int64_t{o.Status})
                       .Bind(13, o.Filled)
                       .Bind(14, o.FilledPrice)
                       .Bind(15, o.Time)
                       .Bind(16, int64_t{o.TradingDay})
                       .Bind(17, o.Source)
                       .Bind(18, o.Comment)
                       .Bind(19, o.Note)
                       .Done() == SQLITE_DONE;
  }
  for (const BrokerFill& f : change.Fills) {
    ok = ok && s.fill.Bind(1, f.Id)
                       .Bind(2, f.OrderId)
                       .Bind(3, f.Account)
                       .Bind(4, int64_t{f.Market})
                       .Bind(5, f.Code)
                       .Bind(6, int64_t{f.BuyOrSell})
                       .Bind(7, int64_t{f.EntryOrExit})
                       .Bind(8, f.Lots)
                       .Bind(9, f.Price)
                       .Bind(10, f.Commission)
                       .Bind(11, f.Profit)
                       .Bind(12, f.Time)
                       .Bind(13, f.Sequence)
                       .Done() == SQLITE_DONE;
  }
  if (change.Session) {
    ok = ok && s.session.Bind(1, change.Session->Key).Bind(2, change.Session->Sequence).Done() ==
                   SQLITE_DONE;
  }
  if (ok && s.commit.Done() == SQLITE_DONE) return;
  const int code = sqlite3_errcode(db_);
  const std::string message = sqlite3_errmsg(db_);
  s.rollback.Done();
  throw StoreError(file_.string() + ": an event could not be written, nothing of it was kept: " +
                   (code == SQLITE_FULL ? std::string("the disk is full") : message));
}

}  // namespace qxrun
