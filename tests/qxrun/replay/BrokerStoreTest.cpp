// The broker's store: what it keeps, what it refuses to open, and what a failed write leaves.
#include "qxrun/QxrunProcess.h"
#include "qxrun/broker/BrokerStore.h"
#include "qxrun/replay/BrokerOrders.h"

#include <gtest/gtest.h>

#include <sqlite3.h>
#include <string>

namespace qxrun {
namespace {

BrokerSymbol Symbol() {
  BrokerSymbol symbol;
  symbol.Code = "IF";
  symbol.LotValue = 10;
  symbol.Costs.MarginRate = 0.1;
  return symbol;
}

constexpr auto Order = qxrun_test::BrokerOrder;

// A broker over the store at `file`, with what the store holds.
struct StoredBroker {
  explicit StoredBroker(const std::filesystem::path& file)
      : store(file), broker({Symbol()}, &store) {
    broker.Load(store.Load());
  }
  BrokerStore store;
  PaperBroker broker;
};

TEST(BrokerStoreTest, EveryEventIsKeptAndReadBack) {
  qxrun_test::ScratchFolder folder;
  const auto file = folder.Path() / "user" / "broker.sqlite";
  {
    StoredBroker first(file);
    first.broker.SetQuote(0, "IF", 50, 50, 50.5, 100, 20060104);
    first.broker.OpenAccount("acc", 10000);
    first.broker.Accept(first.broker.Submit(Order(1, 1, 3, 51), "s", 1));
    first.broker.OnTick("s", 2, 0, "IF", 200, 50, 2, 50, 50.5, 20060104);
    // Sent but not yet taken in when the run stops.
    first.broker.Submit(Order(2, 7, 1, 49), "s", 2);
  }
  StoredBroker second(file);
  const PaperBroker& broker = second.broker;
  ASSERT_EQ(broker.AllOrders().size(), 2U);
  EXPECT_EQ(broker.AllOrders()[0].Status, kPartlyFilled);
  EXPECT_EQ(broker.AllOrders()[0].Filled, 2);
  EXPECT_EQ(broker.AllOrders()[1].Status, kSending);
  ASSERT_EQ(broker.AllFills().size(), 1U);
  EXPECT_EQ(broker.AllFills()[0].Price, 50.5);
  EXPECT_EQ(broker.Position("acc", 0, "IF").BuyPosition, 2);
  EXPECT_EQ(broker.SessionSequence("s"), 2);
  EXPECT_EQ(broker.TradingDay(), 20060104);
  // The order left sending is taken in once, on the next start.
  EXPECT_EQ(second.broker.AcceptPending(), 1);
  EXPECT_EQ(second.broker.AllOrders()[1].Status, kReported);
  EXPECT_EQ(second.broker.AcceptPending(), 0);
}

TEST(BrokerStoreTest, FilesThatAreNoBrokerStoreAreRefused) {
  qxrun_test::ScratchFolder folder;
  const auto text = folder.Write("text.sqlite", "account,balance\nacc,100\n");
  const auto newer = folder.Path() / "newer.sqlite";
  const auto other = folder.Path() / "other.sqlite";
  for (const auto& [path, sql] : {std::pair{newer, "PRAGMA user_version=2"},
                                  std::pair{other, "CREATE TABLE notes (text TEXT)"}}) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
  }
  struct Row {
    std::filesystem::path File;
    const char* Message;
  };
  const Row rows[] = {{text, "is not a database"},
                      {newer, "belongs to a newer version of qxrun (store version 2"},
                      {other, "is a database but not a broker store"}};
  for (const Row& row : rows) {
    const std::string before = qxrun_test::ReadFile(row.File);
    try {
      BrokerStore store(row.File);
      ADD_FAILURE() << row.File << ": opened";
    } catch (const StoreError& error) {
      const std::string expected = row.File.string() + ": " + row.Message;
      EXPECT_EQ(std::string(error.what()).substr(0, expected.size()), expected);
    }
    EXPECT_EQ(qxrun_test::ReadFile(row.File), before) << row.File << " was changed";
  }
}

TEST(BrokerStoreTest, FailedWriteLeavesStoreAndBrokerAsTheyWere) {
  qxrun_test::ScratchFolder folder;
  const auto file = folder.Path() / "broker.sqlite";
  StoredBroker stored(file);
  PaperBroker& broker = stored.broker;
  broker.SetQuote(0, "IF", 50, 50, 50.5, 100, 20060104);
  broker.OpenAccount("acc", 10000);
  broker.Accept(broker.Submit(Order(1, 1, 1, 51), "s", 1));
  // The disk is full: no page may be added.
  sqlite3* probe = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &probe), SQLITE_OK);
  sqlite3_stmt* count = nullptr;
  sqlite3_prepare_v2(probe, "PRAGMA page_count", -1, &count, nullptr);
  ASSERT_EQ(sqlite3_step(count), SQLITE_ROW);
  const int64_t pages = sqlite3_column_int64(count, 0);
  sqlite3_finalize(count);
  sqlite3_close(probe);
  stored.store.LimitPages(pages);
  // An order whose comment needs pages of its own cannot be kept.
  Quill::ITradeOrder large = Order(1, 1, 1, 51);
  large.Comment = std::string(200000, 'x');
  try {
    broker.Submit(large, "s", 2);
    ADD_FAILURE() << "written";
  } catch (const StoreError& error) {
    EXPECT_NE(std::string(error.what()).find("the disk is full"), std::string::npos)
        << error.what();
  }
  EXPECT_EQ(broker.AllOrders().size(), 1U);
  // A tick that fills is one event: fill, position, order and session all or nothing. It fits.
  broker.OnTick("s", 3, 0, "IF", 300, 50, 1, 50, 50.5, 20060104);
  EXPECT_EQ(broker.AllFills().size(), 1U);

  StoredBroker reopened(file);
  EXPECT_EQ(reopened.broker.AllOrders().size(), 1U);
  EXPECT_EQ(reopened.broker.AllFills().size(), 1U);
  EXPECT_EQ(reopened.broker.Position("acc", 0, "IF").BuyPosition, 1);
  EXPECT_EQ(reopened.broker.SessionSequence("s"), 3);
}

}  // namespace
}  // namespace qxrun
