// The paper broker's order life cycle (send, partial fill, fill, cancel, refuse, reject) and the
// account figures it reports.
#include "qxrun/broker/OrderDesk.h"
#include "qxrun/broker/PaperBroker.h"
#include "qxrun/replay/BrokerOrders.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace qxrun {
namespace {

constexpr int32_t kDay = 20060104;
constexpr int32_t kNextDay = 20060105;

// One symbol: 300 money per point, margin rate 0.1, commission 5 per lot.
BrokerSymbol Symbol() {
  BrokerSymbol symbol;
  symbol.Code = "IF";
  symbol.LotValue = 300;
  symbol.TickSize = 0.2;
  symbol.Costs.MarginRate = 0.1;
  symbol.Costs.CommissionKind = 0;
  symbol.Costs.CommissionRate = 5;
  return symbol;
}

constexpr auto Order = qxrun_test::BrokerOrder;

class PaperBrokerTest : public ::testing::Test {
 protected:
  PaperBrokerTest() : broker_({Symbol()}, nullptr) {
    broker_.SetQuote(0, "IF", 100, 100, 100.2, 1000, kDay);
    broker_.OpenAccount("acc", 100000);
  }

  // A tick at `price` with the bid there and the ask a tick above.
  void TickAt(double price, double volume, int32_t day = kDay) {
    ++sequence_;
    broker_.OnTick("s", sequence_, 0, "IF", 1000 + sequence_, price, volume, price, price + 0.2,
                   day);
  }
  int64_t Send(const Quill::ITradeOrder& order) {
    const int64_t id = broker_.Submit(order, "s", sequence_);
    broker_.Accept(id);
    return id;
  }
  const BrokerOrder& OrderOf(int64_t id) {
    return broker_.AllOrders()[static_cast<size_t>(id - 1)];
  }

  PaperBroker broker_;
  int64_t sequence_ = 0;
};

TEST_F(PaperBrokerTest, LimitBuyWaitsThenFillsPartlyByTickVolumeThenFully) {
  const int64_t id = Send(Order(1, 1, 5, 99.0));
  EXPECT_EQ(OrderOf(id).Status, kReported);
  EXPECT_EQ(OrderOf(id).ContractNo, "P00000001");
  // The ask 100.2 is above the limit: no fill.
  TickAt(100, 10);
  EXPECT_EQ(OrderOf(id).Filled, 0);
  // The ask 99.0 reaches the limit, but the tick traded 3 lots only.
  TickAt(98.8, 3);
  EXPECT_EQ(OrderOf(id).Status, kPartlyFilled);
  EXPECT_EQ(OrderOf(id).Filled, 3);
  EXPECT_EQ(broker_.Orders("acc", 0, "IF", true).size(), 1U);  // still working
  // A marketable price fills at the tick's ask, not at the limit.
  TickAt(98.0, 10);
  EXPECT_EQ(OrderOf(id).Status, kFilled);
  EXPECT_EQ(OrderOf(id).Filled, 5);
  // Average fill: (3 x 99.0 + 2 x 98.2) / 5 = 98.68.
  EXPECT_NEAR(OrderOf(id).FilledPrice, 98.68, 1e-9);
  ASSERT_EQ(broker_.AllFills().size(), 2U);
  EXPECT_NEAR(broker_.AllFills()[1].Price, 98.2, 1e-9);
  EXPECT_TRUE(broker_.Orders("acc", 0, "IF", true).empty());

  const Quill::ITradePosition position = broker_.Position("acc", 0, "IF");
  EXPECT_EQ(position.BuyPosition, 5);
  EXPECT_EQ(position.TodayBuyPosition, 5);
  EXPECT_NEAR(position.BuyAvgPrice, 98.68, 1e-9);
  // Last 98.0: (98.0 - 98.68) x 5 x 300 = -1020.
  EXPECT_NEAR(position.BuyProfitLoss, -1020, 1e-6);
  EXPECT_EQ(position.TotalPosition, 5);

  const Quill::ITradeAcctSummary summary = *broker_.Summary("acc");
  // Commission 5 x 5 = 25; equity 100000 - 25 - 1020 = 98955.
  EXPECT_NEAR(summary.CurrentEquity, 98955, 1e-6);
  // Margin at the last price: 5 x 98 x 300 x 0.1 = 14700.
  EXPECT_NEAR(summary.TotalMargin, 14700, 1e-6);
  EXPECT_NEAR(summary.FreeMargin, 98955 - 14700, 1e-6);
  EXPECT_EQ(summary.TotalFreeze, 0);
  // The account was opened today: its deposit is today's, the previous equity 0.
  EXPECT_EQ(summary.TodayDeposit, 100000);
  EXPECT_NEAR(summary.ProfitLoss, -1045, 1e-6);
}

TEST_F(PaperBrokerTest, CloseRealisesProfitAndTakesEarlierLotsFirst) {
  Send(Order(1, 1, 2, 101));
  TickAt(100, 0);  // no volume recorded: fills in full at the ask 100.2
  TickAt(100.6, 0, kNextDay);
  Send(Order(1, 1, 1, 101));
  TickAt(100.6, 0, kNextDay);  // at the ask 100.8
  Quill::ITradePosition position = broker_.Position("acc", 0, "IF");
  EXPECT_EQ(position.BuyPosition, 3);
  EXPECT_EQ(position.TodayBuyPosition, 1);
  // A close (7) of 2 takes the two lots of the day before.
  const int64_t close = Send(Order(2, 7, 2, 100));
  TickAt(101, 0, kNextDay);  // at the bid 101
  EXPECT_EQ(OrderOf(close).Status, kFilled);
  position = broker_.Position("acc", 0, "IF");
  EXPECT_EQ(position.BuyPosition, 1);
  EXPECT_EQ(position.TodayBuyPosition, 1);
  // Average (2 x 100.2 + 100.8) / 3 = 100.4; (101 - 100.4) x 2 x 300 = 360.
  EXPECT_NEAR(broker_.AllFills().back().Profit, 360, 1e-6);
  // A close-today of 2 asks for more than today's 1 lot: rejected, with its reason.
  const int64_t tooMuch = Send(Order(2, 5, 2, 100));
  EXPECT_EQ(OrderOf(tooMuch).Status, kRejected);
  EXPECT_EQ(OrderOf(tooMuch).Note, "closes more than is held");
}

TEST_F(PaperBrokerTest, WorkingClosesClaimThePosition) {
  Send(Order(2, 1, 2, 99));  // sell short 2
  TickAt(100, 0);
  EXPECT_EQ(broker_.Position("acc", 0, "IF").SellPosition, 2);
  const int64_t first = Send(Order(1, 7, 2, 90));  // buy to cover, far below: works
  EXPECT_EQ(OrderOf(first).Status, kReported);
  const int64_t second = Send(Order(1, 7, 1, 90));
  EXPECT_EQ(OrderOf(second).Status, kRejected);
}

TEST_F(PaperBrokerTest, CancelLeavesFilledPartAndExpiryEndsTheDay) {
  const int64_t partly = Send(Order(1, 1, 4, 100.2));
  TickAt(100, 1);
  EXPECT_TRUE(broker_.Cancel("acc", OrderOf(partly).ContractNo));
  EXPECT_EQ(OrderOf(partly).Status, kPartlyCancelled);
  EXPECT_EQ(OrderOf(partly).Filled, 1);
  EXPECT_FALSE(broker_.Cancel("acc", OrderOf(partly).ContractNo));  // no longer working
  const int64_t untouched = Send(Order(1, 1, 1, 90));
  // The entry freezes its margin: 1 x 90 x 300 x 0.1 = 2700.
  EXPECT_NEAR(broker_.Summary("acc")->TotalFreeze, 2700, 1e-6);
  TickAt(100, 1, kNextDay);
  EXPECT_EQ(OrderOf(untouched).Status, kCancelled);
  EXPECT_EQ(broker_.Position("acc", 0, "IF").TodayBuyPosition, 0);
  // The previous equity is the equity at the last price of the day before.
  const Quill::ITradeAcctSummary summary = *broker_.Summary("acc");
  EXPECT_EQ(summary.TodayDeposit, 0);
  // 100000 - 5 commission + (100 - 100.2) x 300 = 99935.
  EXPECT_NEAR(summary.PreviousEquity, 99935, 1e-6);
  // Today's orders only: the day before's are not listed any more.
  EXPECT_TRUE(broker_.Orders("acc", 0, "IF", false).empty());
}

TEST_F(PaperBrokerTest, EntryBeyondFreeMarginAndFractionalLotsAreRejected) {
  // 40 lots x 100 x 300 x 0.1 = 120000 of margin, more than the 100000 held.
  EXPECT_EQ(OrderOf(Send(Order(1, 1, 40, 100))).Note, "not enough free margin");
  // 30 lots need 90000: taken in (the order's own margin is not counted against it), and then
  // frozen, so that one more lot (3000) no longer fits the 10000 left.
  EXPECT_EQ(OrderOf(Send(Order(1, 1, 30, 100))).Status, kReported);
  EXPECT_EQ(OrderOf(Send(Order(1, 1, 4, 100))).Note, "not enough free margin");
  EXPECT_EQ(OrderOf(Send(Order(1, 1, 1.5, 100))).Note, "whole lots only");
  Quill::ITradeOrder stranger = Order(1, 1, 1, 100);
  stranger.AccountID = "nobody";
  EXPECT_EQ(OrderOf(Send(stranger)).Note, "unknown account");
}

// Answers each confirmation with the next of its answers.
class ScriptedConfirmer : public OrderConfirmer {
 public:
  explicit ScriptedConfirmer(std::string answers) : answers_(std::move(answers)) {}
  bool Confirm(const Quill::ITradeOrder&) override { return answers_[asked_++] == 'y'; }

 private:
  std::string answers_;
  size_t asked_ = 0;
};

TEST_F(PaperBrokerTest, RefusedOrdersAreNotSent) {
  ScriptedConfirmer confirmer("ny");
  OrderDesk desk(broker_, &confirmer, "s");
  Quill::ITradeOrder order = Order(1, 1, 1, 100.2);
  EXPECT_EQ(desk.Submit(&order), 0);
  EXPECT_TRUE(broker_.AllOrders().empty());
  EXPECT_EQ(desk.Refused(), 1);
  desk.SetSequence(7);
  EXPECT_EQ(desk.Submit(&order), 1);
  ASSERT_EQ(broker_.AllOrders().size(), 1U);
  EXPECT_EQ(broker_.AllOrders()[0].Sequence, 7);
  EXPECT_EQ(broker_.AllOrders()[0].Status, kReported);
}

TEST(ConfirmationPromptTest, TerminalAnswerDecides) {
  Quill::ITradeOrder order = Order(2, 5, 2, 3580.2);
  EXPECT_EQ(ConfirmationPrompt(order), "sell close today 2 IF at 3580.2 (account acc)? [y/n] ");
  struct Row {
    const char* Input;
    bool Confirmed;
  };
  const Row rows[] = {
      {"y\n", true}, {"YES\r\n", true}, {"n\n", false}, {"yep\n", false}, {"", false}};
  for (const Row& row : rows) {
    std::FILE* in = fmemopen(const_cast<char*>(row.Input), std::string(row.Input).size() + 1, "r");
    char written[256] = {};
    std::FILE* out = fmemopen(written, sizeof(written), "w");
    TerminalConfirmer confirmer(in, out);
    EXPECT_EQ(confirmer.Confirm(order), row.Confirmed) << row.Input;
    std::fclose(out);
    std::fclose(in);
    EXPECT_EQ(std::string(written), ConfirmationPrompt(order)) << row.Input;
  }
}

}  // namespace
}  // namespace qxrun
