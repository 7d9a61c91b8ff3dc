// Money paid into and taken out of a paper account: what may be withdrawn, the day's figures, and
// a transfer made once per session however often a killed replay is started again.
#include "qxrun/QxrunProcess.h"
#include "qxrun/broker/BrokerStore.h"
#include "qxrun/broker/PaperBroker.h"
#include "qxrun/replay/BrokerOrders.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qxrun {
namespace {

constexpr int32_t kDay = 20060104;

TEST(TransfersTest, WithdrawalsAreLimitedToTheMoneyNotHeldByPositionsOrOrders) {
  BrokerSymbol symbol;
  symbol.Code = "IF";
  symbol.LotValue = 300;
  symbol.TickSize = 0.2;
  symbol.Costs.MarginRate = 0.1;
  PaperBroker broker({symbol}, nullptr);
  broker.SetQuote(0, "IF", 100, 100, 100.2, 1000, kDay);
  broker.OpenAccount("acc", 100000);
  broker.Accept(broker.Submit(qxrun_test::BrokerOrder(1, 1, 2, 101), "s", 0));
  broker.OnTick("s", 1, 0, "IF", 1001, 100, 0, 100, 100.2, kDay);  // 2 lots at the ask 100.2
  broker.Accept(broker.Submit(qxrun_test::BrokerOrder(1, 1, 1, 90), "s", 1));  // works
  // Margin at the average price 2 x 100.2 x 300 x 0.1 = 6012, frozen 90 x 300 x 0.1 = 2700; the
  // open loss of the last price is not counted.
  broker.SetQuote(0, "IF", 95, 95, 95.2, 1002, kDay);
  EXPECT_NEAR(broker.FreeMoney("acc"), 100000 - 6012 - 2700, 1e-6);

  broker.Transfer("acc", 500, 20000, "s2");
  const Quill::ITradeAcctSummary summary = *broker.Summary("acc");
  EXPECT_EQ(summary.TodayDeposit, 100500);  // opened today, then paid in
  EXPECT_EQ(summary.TodayDrawing, 20000);
  EXPECT_NEAR(broker.FreeMoney("acc"), 80500 - 6012 - 2700, 1e-6);
  // Moving money is no profit: (95 - 100.2) x 2 x 300 = -3120 is the day's result still.
  EXPECT_NEAR(summary.ProfitLoss, -3120, 1e-6);
  EXPECT_TRUE(broker.HasSession("s2"));
  EXPECT_EQ(broker.SessionSequence("s2"), 0);
}

class TransferReplayTest : public ::testing::Test {
 protected:
  qxrun_test::ProcessResult Replay(std::vector<std::string> extra) {
    std::vector<std::string> args = {
        "replay",    "--data",   std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-min-005.txt",
        "--formula", "ma_cross", "--last",
        "3",         "--quiet"};
    args.insert(args.end(), extra.begin(), extra.end());
    return qxrun_test::RunQxrun(folder_.Path(), args);
  }
  BrokerState Stored() { return BrokerStore(folder_.Path() / "home" / "broker.sqlite").Load(); }
  double Balance(const std::string& account) {
    for (const BrokerAccount& stored : Stored().Accounts) {
      if (stored.Name == account) return stored.Balance;
    }
    ADD_FAILURE() << "no account " << account;
    return 0.0;
  }

  qxrun_test::ScratchFolder folder_;
};

TEST_F(TransferReplayTest, ASessionMovesMoneyOnceAndGoingOnWithItDoesNotRepeatIt) {
  ASSERT_EQ(Replay({"--account", "al", "--deposit", "50000", "--withdraw", "1000"}).ExitCode, 0);
  const double opened = Balance("al");  // ma_cross trades no live orders: no commission
  EXPECT_EQ(opened, 49000);
  // The same arguments go on with the same session: nothing is moved again.
  ASSERT_EQ(Replay({"--account", "al", "--deposit", "50000", "--withdraw", "1000"}).ExitCode, 0);
  EXPECT_EQ(Balance("al"), 49000);
  // A new session of an existing account pays in and takes out once more.
  ASSERT_EQ(
      Replay({"--account", "al", "--fresh", "--deposit", "700", "--withdraw", "200"}).ExitCode, 0);
  EXPECT_EQ(Balance("al"), 49500);
}

TEST_F(TransferReplayTest, AWithdrawalBeyondTheFreeMoneyIsRefusedAndStoresNothing) {
  ASSERT_EQ(Replay({"--account", "al", "--deposit", "5000"}).ExitCode, 0);
  const size_t sessions = Stored().Sessions.size();
  const qxrun_test::ProcessResult refused =
      Replay({"--account", "al", "--fresh", "--withdraw", "5000.01"});
  EXPECT_EQ(refused.ExitCode, 2);
  EXPECT_EQ(refused.Err,
            "qxrun: --withdraw: 5000.01 is more than the 5000.00 account 'al' has free\n");
  EXPECT_EQ(Balance("al"), 5000);
  EXPECT_EQ(Stored().Sessions.size(), sessions);
  EXPECT_EQ(Replay({"--account", "al", "--withdraw", "0"}).ExitCode, 2);
}

}  // namespace
}  // namespace qxrun
