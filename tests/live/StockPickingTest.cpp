// Stock picking: sort values and decisions recorded by bar time, ranks read from the host's
// table, and the simulated position moved to match a decision.
#include "live/LiveHost.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace sysfuncs::testing {
namespace {

// Four daily bars: Open 100 + 10 i, Close 105 + 10 i.
std::vector<QXBar> FourDays() {
  std::vector<QXBar> bars;
  for (int i = 0; i < 4; ++i) {
    bars.push_back(MakeBar(ShanghaiInstant(2024, 3, 4 + i, 15), 100 + 10 * i, 120 + 10 * i,
                           95 + 10 * i, 105 + 10 * i, 1000));
  }
  return bars;
}

struct OrderRow {
  uint32_t kind;
  int32_t bar;
  double lots, price;
};

// The orders of the ledger from the `from`th on.
void ExpectOrders(const LiveHost& live, const std::vector<OrderRow>& want, size_t from = 0) {
  const std::vector<OrderRecord>& orders = live.host.data.Ledgers[0].Orders;
  ASSERT_EQ(orders.size(), from + want.size());
  for (size_t i = 0; i < want.size(); ++i) {
    const OrderRecord& order = orders[from + i];
    EXPECT_EQ(order.Kind, want[i].kind) << "order " << i;
    EXPECT_EQ(order.Bar, want[i].bar) << "order " << i;
    EXPECT_EQ(order.Lots, want[i].lots) << "order " << i;
    EXPECT_DOUBLE_EQ(order.Price, want[i].price) << "order " << i;
  }
}

constexpr uint32_t kPickBuy = uint32_t{kBuy} | kOriginStockPicking;
constexpr uint32_t kPickSell = uint32_t{kSell} | kOriginStockPicking;
constexpr uint32_t kPickSellShort = uint32_t{kSellShort} | kOriginStockPicking;
constexpr uint32_t kPickCover = uint32_t{kBuyToCover} | kOriginStockPicking;

// A pool run as a host drives it: before each bar the host ranks the pool and writes this
// symbol's rank; the formula records its close as criterion 1 and holds the symbol while it
// ranks in the top two.
TEST(StockPicking, APoolRunHoldsTheSymbolWhileItRanksInTheTopTwo) {
  LiveHost live(FourDays());
  StrategyAccount* account = nullptr;
  const int32_t ranks[] = {1, 1, 5, 2};
  for (int32_t bar = 0; bar < 4; ++bar) {
    CSystemFuncs& f = live.Funcs(bar);
    if (bar == 0) {
      account = live.host.data.Account.get();
      account->PoolMode = true;
      account->PoolSize = 30;
    }
    const int64_t time = live.host.sources[0].Bars[bar].Time;
    account->RankingTable[time][1] = ranks[bar];
    f.SetSPSortValue(1, f.Close(), true);
    EXPECT_EQ(f.StockPoolSize(), 30);
    EXPECT_EQ(f.GetSPSortRanking(2), kNoInteger) << "no rank for criterion 2";
    const int32_t rank = f.GetSPSortRanking(1);
    EXPECT_EQ(rank, ranks[bar]);
    EXPECT_TRUE(f.StockPickingCheckPoint(rank <= 2 ? 1 : 0, true));
    f.BarCheckout();
  }
  // Bar 0 decides to hold: the checkout buys at bar 1's Open. Bar 2 drops out of the top two:
  // the check point sells at once at bar 2's Close. Bar 3, the newest, is back in: it buys at
  // its Close.
  ExpectOrders(live, {{kPickBuy, 1, 1, 110}, {kPickSell, 2, 1, 125}, {kPickBuy, 3, 1, 135}});
  ASSERT_EQ(account->CheckPoints.size(), 4u);
  int32_t bar = 0;
  for (const auto& [time, record] : account->CheckPoints) {
    EXPECT_EQ(time, live.host.sources[0].Bars[bar].Time);
    EXPECT_EQ(record.Bar, bar);
    EXPECT_EQ(record.Signal, ranks[bar] <= 2 ? 1 : 0);
    EXPECT_EQ(record.Enabled, 1);
    ASSERT_EQ(record.SortValues.size(), 1u);
    EXPECT_EQ(record.SortValues.at(1).first, 105 + 10 * bar);
    EXPECT_TRUE(record.SortValues.at(1).second);
    ++bar;
  }
}

TEST(StockPicking, SortValuesKeepTheLastPairAndRanksAnswerOnlyInAPool) {
  LiveHost live(FourDays());
  CSystemFuncs& f = live.Funcs(1);
  f.SetSPSortValue(7, 1.5, true);
  f.SetSPSortValue(3, 2.5, false);
  f.SetSPSortValue(7, -4.0, false);
  StrategyAccount& account = *live.host.data.Account;
  ASSERT_EQ(account.CheckPoints.size(), 1u);
  const CheckPointRecord& record = account.CheckPoints.at(live.host.sources[0].Bars[1].Time);
  EXPECT_EQ(record.Bar, 1);
  EXPECT_EQ(record.Signal, 0);
  EXPECT_EQ(record.Enabled, 0);
  EXPECT_EQ(record.SortValues.at(7), std::make_pair(-4.0, false));
  EXPECT_EQ(record.SortValues.at(3), std::make_pair(2.5, false));

  account.RankingTable[live.host.sources[0].Bars[1].Time][4] = 9;
  EXPECT_EQ(f.GetSPSortRanking(4), kNoInteger) << "outside a pool";
  account.PoolMode = true;
  EXPECT_EQ(f.GetSPSortRanking(4), 9);
  live.host.At(0, 2);
  EXPECT_EQ(f.GetSPSortRanking(4), kNoInteger) << "no entry at this bar's time";
}

TEST(StockPicking, CheckPointsMoveThePositionToTheDecision) {
  const struct {
    const char* row;
    bool pool;
    int32_t startLots;  // a formula position before the check point: + long, - short
    bool lastBar;
    int32_t signal;
    bool flag;
    int32_t position;  // afterwards
    std::vector<OrderRow> picks;
  } rows[] = {
      {"no decision leaves a long position", true, 2, true, -999, true, 1, {}},
      {"disabled in a pool: it closes", true, 2, true, 1, false, 0, {{kPickSell, 3, 2, 135}}},
      {"outside a pool the flag is ignored", false, 0, true, 1, false, 1, {{kPickBuy, 3, 1, 135}}},
      {"a historical bar opens nothing", false, 0, false, 1, true, 0, {}},
      {"a historical bar still closes", false, -1, false, 1, true, 0, {{kPickCover, 2, 1, 125}}},
      {"long to short on the last bar",
       false,
       2,
       true,
       -1,
       true,
       -1,
       {{kPickSell, 3, 2, 135}, {kPickSellShort, 3, 1, 135}}},
      {"an unknown signal opens nothing", false, 0, true, 3, true, 0, {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.row);
    LiveHost live(FourDays());
    CSystemFuncs& f = live.Funcs(row.lastBar ? 3 : 2);
    live.host.data.Account->PoolMode = row.pool;
    if (row.startLots > 0) {
      ASSERT_TRUE(f.Buy(row.startLots, 0)) << row.row;
    } else if (row.startLots < 0) {
      ASSERT_TRUE(f.SellShort(-row.startLots, 0)) << row.row;
    }
    const size_t before = live.host.data.Ledgers[0].Orders.size();
    EXPECT_TRUE(f.StockPickingCheckPoint(row.signal, row.flag)) << row.row;
    EXPECT_EQ(f.MarketPosition(), row.position) << row.row;
    ExpectOrders(live, row.picks, before);
    const CheckPointRecord& record = live.host.data.Account->CheckPoints.rbegin()->second;
    EXPECT_EQ(record.Signal, row.signal) << row.row;
    EXPECT_EQ(record.Enabled, row.pool ? int32_t{row.flag} : 1) << row.row;
  }
}

}  // namespace
}  // namespace sysfuncs::testing
