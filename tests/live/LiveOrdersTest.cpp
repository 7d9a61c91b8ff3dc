// Live orders: the preconditions of A_SendOrder, the record the trading front end receives, and
// the cancellation of open orders.
#include "live/LiveHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

// A front end that keeps every order it is shown and answers `answer`; the clock stands one hour
// after `now`.
struct FrontEnd {
  explicit FrontEnd(int64_t now, int answer = 1) {
    SysFuncsPlatform services;
    services.ShowConfirmOrder = [this, answer](Quill::ITradeOrder* order, int reserved1,
                                               int reserved2) {
      shown.push_back(*order);
      reserved.push_back(reserved1 + reserved2);
      return answer;
    };
    services.Now = [now] { return now + 3600000; };
    platform = std::make_unique<ScopedPlatform>(services);
  }
  std::vector<Quill::ITradeOrder> shown;
  std::vector<int> reserved;
  std::unique_ptr<ScopedPlatform> platform;
};

int64_t LastBarTime(const LiveHost& live) { return live.host.sources[0].Bars.back().Time; }

TEST(LiveOrders, TheFrontEndReceivesTheFilledRecord) {
  LiveHost live;
  FrontEnd front(LastBarTime(live));
  CSystemFuncs& f = live.AtLastBar();
  ASSERT_TRUE(f.A_SendOrder(1, 0, 2, 4000.05, -5, 7));
  ASSERT_EQ(front.shown.size(), 1u);
  const Quill::ITradeOrder& order = front.shown[0];
  EXPECT_EQ(std::tuple(order.BrokerNo, order.AccountID, order.CodeID.MarketId, order.CodeID.Code,
                       order.BuyOrSell, order.EntryOrExit, order.Lot, order.Status),
            std::tuple(8, "10086", 7, "rb2410", 1, 1, 2.0, 0));
  EXPECT_DOUBLE_EQ(order.Price, 4000.2);  // a buy goes up to the next 0.2 step
  EXPECT_EQ(std::tuple(order.Source, order.Comment, order.ContractNo, front.reserved[0]),
            std::tuple("A_SendOrder", "A_SendOrder#MA交叉", "", 0));
  // Exits: 1 is sent as the platform's 7, exit today as 5.
  ASSERT_TRUE(f.A_SendOrder(2, 1, 1, 4000, 0, 0));
  ASSERT_TRUE(f.A_SendOrder(2, 2, 1, 4000, 0, 0));
  EXPECT_EQ(front.shown[1].EntryOrExit, 7);
  EXPECT_EQ(front.shown[2].EntryOrExit, 5);
  EXPECT_EQ(front.shown[2].BuyOrSell, 2);
}

TEST(LiveOrders, EveryFailedPreconditionRefusesWithoutShowingTheOrder) {
  const struct {
    const char* row;
    int32_t buyOrSell, entryOrExit;
    double lots, price;
    bool bound, lastBar, tradable;
  } rows[] = {
      {"a valid order", 1, 0, 1, 10, true, true, true},
      {"no account", 1, 0, 1, 10, false, true, true},
      {"not the last bar", 1, 0, 1, 10, true, false, true},
      {"not tradable", 1, 0, 1, 10, true, true, false},
      {"direction 3", 3, 0, 1, 10, true, true, true},
      {"direction 0", 0, 0, 1, 10, true, true, true},
      {"entry or exit 3", 1, 3, 1, 10, true, true, true},
      {"entry or exit -1", 1, -1, 1, 10, true, true, true},
      {"lots 0.0001", 1, 0, 0.0001, 10, true, true, true},
      {"price 0", 1, 0, 1, 0, true, true, true},
      {"price 0.0001", 1, 0, 1, 0.0001, true, true, true},
      {"lots NaN", 1, 0, std::nan(""), 10, true, true, true},
      {"lots infinite", 1, 0, HUGE_VAL, 10, true, true, true},
      {"price infinite", 1, 0, 1, HUGE_VAL, true, true, true},
  };
  for (const auto& row : rows) {
    LiveHost live;
    live.adapter.properties["rb2410"].Tradable = row.tradable;
    FrontEnd front(LastBarTime(live));
    CSystemFuncs& f = live.Funcs(row.lastBar ? 2 : 1);
    if (!row.bound) live.host.data.AccountID = "";
    const bool valid = row.bound && row.lastBar && row.tradable && row.buyOrSell == 1 &&
                       row.entryOrExit == 0 && row.lots == 1 && row.price == 10;
    EXPECT_EQ(f.A_SendOrder(row.buyOrSell, row.entryOrExit, row.lots, row.price, 0, 0), valid)
        << row.row;
    EXPECT_EQ(front.shown.size(), valid ? 1u : 0u) << row.row;
  }
}

TEST(LiveOrders, PricesGoOnTheTickGridInTheOrdersDirection) {
  const struct {
    int32_t buyOrSell;
    double price, sent;
  } rows[] = {{1, 100.05, 100.2},  {2, 100.05, 100.0}, {1, 100.201, 100.2},
              {2, 100.199, 100.2}, {1, 100.4, 100.4},  {2, 100.39, 100.2}};
  for (const auto& row : rows) {
    LiveHost live;
    FrontEnd front(LastBarTime(live));
    ASSERT_TRUE(live.AtLastBar().A_SendOrder(row.buyOrSell, 0, 1, row.price, 0, 0));
    EXPECT_DOUBLE_EQ(front.shown[0].Price, row.sent) << row.buyOrSell << " at " << row.price;
  }
}

TEST(LiveOrders, TodaysLimitsClampThePriceAndTheLowerLimitWins) {
  const struct {
    const char* row;
    double upper, lower;
    bool today;
    double price, sent;
  } rows[] = {
      {"above the upper limit", 3900, 3700, true, 4000, 3900},
      {"yesterday's bar", 3900, 3700, false, 4000, 4000},
      {"below the lower limit", 4280, 3720, true, 3600, 3720},
      {"both apply", 3900, 3950, true, 4000, 3950},
      {"not rounded again", 3900.1, 3700, true, 4000, 3900.1},
      {"no upper limit", 0, 3700, true, 4000, 4000},
  };
  for (const auto& row : rows) {
    LiveHost live;
    Quill::ITickDeepLevel quote;
    quote.UpperLimit = row.upper;
    quote.LowerLimit = row.lower;
    live.adapter.quotes["rb2410"] = quote;
    const int64_t day = 86400000;
    FrontEnd front(LastBarTime(live) + (row.today ? 0 : day));
    live.host.At(0, live.LastBar());
    CSystemFuncs f(&live.host.data);  // built for the newest bar: the limits are cached
    ASSERT_TRUE(f.A_SendOrder(1, 0, 1, row.price, 0, 0)) << row.row;
    EXPECT_DOUBLE_EQ(front.shown[0].Price, row.sent) << row.row;
  }
}

TEST(LiveOrders, ShareLotsAreSentAsShareCountsOutsideMarketKind5) {
  const struct {
    int32_t marketKind, codeKind;
    double sent;
  } rows[] = {{1, 5, 20}, {1, 6, 20}, {5, 5, 2}, {1, 4, 2}, {5, 6, 2}};
  for (const auto& row : rows) {
    LiveHost live;  // 10 units per lot
    live.adapter.codeIds["rb2410"] = {
        .MarketKind = row.marketKind, .CodeKind = row.codeKind, .MarketId = 7, .Code = ""};
    FrontEnd front(LastBarTime(live));
    ASSERT_TRUE(live.AtLastBar().A_SendOrder(1, 0, 2, 4000, 0, 0));
    EXPECT_EQ(front.shown[0].Lot, row.sent) << row.marketKind << "/" << row.codeKind;
  }
}

TEST(LiveOrders, DeleteOrderCancelsTheMatchingOpenOrders) {
  const std::vector<std::string> numbers = {"X1", "", "X2", "X1"};
  const struct {
    const char* contractNo;
    std::vector<std::string> cancelled;
  } rows[] = {{"", {"X1", "X2", "X1"}}, {"X1", {"X1", "X1"}}, {"X", {}}, {"X2 ", {}}};
  for (const auto& row : rows) {
    LiveHost live;
    for (const std::string& number : numbers) {
      Quill::ITradeOrder order;
      order.ContractNo = number;
      live.adapter.openOrders["rb2410"].push_back(order);
    }
    EXPECT_TRUE(live.AtLastBar().A_DeleteOrder(row.contractNo)) << row.contractNo;
    std::vector<std::string> cancelled;
    for (const auto& [number, code] : live.adapter.cancelled) {
      cancelled.push_back(number);
      EXPECT_EQ(code, "rb2410");
    }
    EXPECT_EQ(cancelled, row.cancelled) << row.contractNo;
    EXPECT_EQ(live.adapter.lastBrokerNo, 8);
    EXPECT_EQ(live.adapter.lastAccountId, "10086");
  }
}

TEST(LiveOrders, DeleteOrderReportsOnlyWhetherTheOpenOrdersCouldBeRead) {
  LiveHost live;
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_FALSE(f.A_DeleteOrder("")) << "the adapter has no list";
  live.adapter.openOrders["rb2410"] = {};
  EXPECT_TRUE(f.A_DeleteOrder("")) << "an empty list";
  live.host.At(0, 1);
  EXPECT_FALSE(f.A_DeleteOrder(""));
  EXPECT_EQ(live.adapter.openOrderCalls, 2);
  // The front end's refusal of an order is a failure too.
  FrontEnd front(LastBarTime(live), 0);
  live.host.At(0, 2);
  EXPECT_FALSE(f.A_SendOrder(1, 0, 1, 4000, 0, 0));
  EXPECT_EQ(front.shown.size(), 1u);
}

}  // namespace
}  // namespace sysfuncs::testing
