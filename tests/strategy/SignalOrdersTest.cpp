#include "sysfuncs/SFImpl.h"

#include "strategy/SignalOrders.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

namespace sysfuncs::testing {
namespace {

TEST(SignalOrders, ExecutionPriceOfMarketLastBarAndHistoricalOrders) {
  const QXBar bar = MakeBar(0, 10.0, 10.5, 9.5, 10.2, 100.0);
  const QXBar noTrade = MakeBar(0, 10.0, 10.0, 10.0, 10.0, 0.0);
  const PriceLimits limits{10.8, 9.2};
  constexpr auto kBuy = PriceDirection::kBuy;
  constexpr auto kSell = PriceDirection::kSell;
  struct Row {
    const char* name;
    double price;
    PriceDirection direction;
    const QXBar& bar;
    PriceRules rules;  // tick, last bar, single price
    const PriceLimits* limits;
    double expected;
  } rows[] = {
      {"market: the Close", 0.00005, kBuy, bar, {0.01, true, false}, &limits, 10.2},
      {"buy above the High", 11.0, kBuy, bar, {0.01, false, false}, nullptr, 10.5},
      {"sell below the Low", 9.0, kSell, bar, {0.01, false, false}, nullptr, 9.5},
      {"single-price bar", 11.0, kBuy, bar, {0.01, false, true}, nullptr, 10.2},
      {"last bar: no range", 11.0, kBuy, bar, {0.01, true, false}, nullptr, 11.0},
      {"last bar: upper limit", 11.0, kBuy, bar, {0.01, true, false}, &limits, 10.8},
      {"last bar: lower limit", 9.0, kSell, bar, {0.01, true, false}, &limits, 9.2},
      {"no-trade bar", 10.0, kBuy, noTrade, {0.01, false, false}, nullptr, 0.0},
      {"no-trade bar, market", 0.0, kBuy, noTrade, {0.01, false, false}, nullptr, 10.0},
      {"no-trade single price", 10.0, kBuy, noTrade, {0.01, false, true}, nullptr, 10.0},
  };
  for (const Row& row : rows) {
    EXPECT_NEAR(ExecutionPrice(row.price, row.direction, row.bar, row.rules, row.limits),
                row.expected, 1e-9)
        << row.name;
  }
}

TEST(SignalOrders, LotCountsAffordabilityAndDefaultLots) {
  EXPECT_EQ(WholeLots(2.5), 2.0);  // truncated: 1.995 and -0.005 are met through Buy below
  EXPECT_EQ(AffordableLots(299.0, 300.0), 0.0);
  EXPECT_EQ(AffordableLots(1e9, 1.0), 10000.0);
  EXPECT_EQ(AffordableLots(1000.0, 0.0), 0.0);  // a lot without margin cannot be sized
  struct Row {
    uint32_t mode;
    int32_t value;
    double capital, lots;  // one lot's margin is 300
  } rows[] = {{0, 3, 1000.0, 3.0},   {0, 3, 800.0, 0.0},     {1, 50, 1000.0, 1.0},
              {2, 700, 1000.0, 2.0}, {2, 1200, 1000.0, 0.0}, {3, 1, 1000.0, 0.0}};
  for (const Row& row : rows) {
    CQXBaseData settings;
    settings.DefaultLotsMode = row.mode;
    settings.DefaultLotsValue = row.value;
    EXPECT_EQ(DefaultLots(settings, row.capital, 300.0), row.lots)
        << "mode " << row.mode << ", value " << row.value << ", capital " << row.capital;
  }
}

// A series of an unknown symbol (margin kind 4, lot value 1, tick 1), margin rate 0.1: one lot at
// the Close 101 needs 10.1.
struct Desk {
  explicit Desk(std::vector<QXBar> bars = std::vector<QXBar>(3,
                                                             MakeBar(0, 100, 102, 98, 101, 10))) {
    host.AddSource("s", std::move(bars));
    host.data.CostSettings[0].MarginRate = 0.1;
    host.data.InitCapital = 100000.0;
    host.data.MaxOpenEntries = 10;
    host.data.MaxPositionLots = 100;
    host.At(0, 0);
    funcs = std::make_unique<CSystemFuncs>(&host.data);
  }
  const StrategyLedger& ledger() const { return host.data.Ledgers[0]; }
  TestHost host;
  std::unique_ptr<CSystemFuncs> funcs;
};

TEST(SignalOrders, ValidationAndExitsOfAtMostThePosition) {
  Desk desk;
  CSystemFuncs& f = *desk.funcs;
  EXPECT_FALSE(f.Buy(kInvalidNumber, 0.0));
  EXPECT_FALSE(f.Buy(1.0, kInvalidNumber));
  EXPECT_FALSE(f.Buy(-0.02, 0.0));
  EXPECT_FALSE(f.Sell(0.0, 0.0));  // flat
  EXPECT_TRUE(desk.ledger().Orders.empty());
  EXPECT_TRUE(f.Buy(-0.005, 0.0));       // 0 lots: the default, 1 lot
  EXPECT_TRUE(f.Buy(1.995, 0.0));        // 2 lots
  EXPECT_FALSE(f.BuyToCover(0.0, 0.0));  // long
  EXPECT_TRUE(f.Sell(1.0, 0.0));
  EXPECT_EQ(f.MaxContracts(), 0.0);  // any exit ends the record, a partial one too
  EXPECT_EQ(f.CurrentContracts(), 2.0);
  EXPECT_EQ(f.MaxContractsHeld(), 3.0);
  EXPECT_TRUE(f.Sell(5.0, 0.0));
  EXPECT_EQ(desk.ledger().Trades.back().Lots, 2.0);
}

// NaN and the infinities are refused like the invalid number, by every signal order and on either
// side of a position, and leave the ledger and the capital as they were. (Without the rule, NaN
// lots open an entry of NaN lots and infinite lots exit the whole position.)
TEST(SignalOrders, NonFiniteLotsAndPricesAreRefusedLikeTheInvalidNumber) {
  using Order = bool (CSystemFuncs::*)(double, double);
  const struct {
    const char* name;
    Order order;
  } orders[] = {{"Buy", &CSystemFuncs::Buy},
                {"Sell", &CSystemFuncs::Sell},
                {"SellShort", &CSystemFuncs::SellShort},
                {"BuyToCover", &CSystemFuncs::BuyToCover}};
  const double inf = HUGE_VAL;
  const double nan = std::nan("");
  const struct {
    double lots, price;
  } arguments[] = {{nan, 0.0}, {inf, 0.0}, {-inf, 0.0}, {1.0, nan}, {1.0, inf}, {1.0, -inf}};
  for (double opening : {2.0, -2.0}) {  // long, then short 2 lots
    Desk desk;
    CSystemFuncs& f = *desk.funcs;
    ASSERT_TRUE(opening > 0 ? f.Buy(opening, 0.0) : f.SellShort(-opening, 0.0));
    const double capital = desk.host.data.Account->Capital;
    for (const auto& order : orders) {
      for (const auto& argument : arguments) {
        EXPECT_FALSE((f.*order.order)(argument.lots, argument.price))
            << order.name << "(" << argument.lots << ", " << argument.price << ") at " << opening;
      }
    }
    EXPECT_EQ(desk.ledger().Orders.size(), 1u) << opening;
    EXPECT_TRUE(desk.ledger().Trades.empty()) << opening;
    EXPECT_EQ(f.CurrentContracts(), opening);
    EXPECT_EQ(desk.host.data.Account->Capital, capital);
  }
}

// Found by fuzzing: a limit price on the last bar is not held to the bar's range, so an exit far
// enough out booked money past the largest double (infinite statistics), or amounts whose squares
// overflow in the report. An exit that would book more than 1e18 is refused and books nothing.
TEST(SignalOrders, AnExitOfMoreThanAQuintillionIsRefused) {
  Desk desk;  // tick 1, lot value 1: a lot's profit is the price difference
  CSystemFuncs& f = *desk.funcs;
  ASSERT_TRUE(f.Buy(3.0, 0.0));  // 3 lots at 101
  desk.host.At(0, 2);            // the last bar, of a day long past: no limits
  const double capital = desk.host.data.Account->Capital;
  EXPECT_FALSE(f.Sell(0.0, 1e308));        // 3 x (1e308 - 101) overflows
  EXPECT_FALSE(f.Sell(1.0, 1e18 + 1024));  // 1e18 + 923 (the nearest doubles are 128 apart)
  EXPECT_FALSE(f.SellShort(1.0, 1e300));   // a reversal's exit leg too
  EXPECT_EQ(f.CurrentContracts(), 3.0);
  EXPECT_TRUE(desk.ledger().Trades.empty());
  EXPECT_EQ(desk.host.data.Account->Capital, capital);
  EXPECT_TRUE(f.Sell(1.0, 1e17));  // 1e17 - 101 is within the bound
  EXPECT_EQ(desk.host.data.Account->Capital, capital + (1e17 - 101));
  EXPECT_TRUE(f.Sell(0.0, 0.0));  // the rest at the market
  EXPECT_EQ(f.CurrentContracts(), 0.0);
}

TEST(SignalOrders, ReversalKeepsTheFirstLegWhenTheSecondIsRefused) {
  Desk desk;
  CSystemFuncs& f = *desk.funcs;
  ASSERT_TRUE(f.SellShort(2.0, 0.0));
  EXPECT_TRUE(f.Buy(1.0, 0.0));  // covers 2, then buys 1
  EXPECT_EQ(f.CurrentContracts(), 1.0);
  desk.host.data.MaxPositionLots = 0;
  EXPECT_FALSE(f.SellShort(1.0, 0.0));
  EXPECT_EQ(f.MarketPosition(), 0);
  ASSERT_EQ(desk.ledger().Trades.size(), 2u);
  EXPECT_EQ(desk.ledger().Trades[1].ExitKind, uint32_t{kSell});
}

TEST(SignalOrders, EntryCountPositionSizeAndCapitalCapAnEntry) {
  Desk desk;
  CSystemFuncs& f = *desk.funcs;
  desk.host.data.MaxOpenEntries = 0;
  ASSERT_TRUE(f.Buy(1.0, 0.0));  // a flat position is never refused by the entry count
  EXPECT_FALSE(f.Buy(1.0, 0.0));
  desk.host.data.MaxOpenEntries = 10;
  desk.host.data.MaxPositionLots = 5;
  ASSERT_TRUE(f.Buy(3.0, 0.0));
  EXPECT_TRUE(f.Buy(3.0, 0.0));  // 4 held: 1 more
  EXPECT_EQ(desk.ledger().OpenEntries.back().Lots, 1.0);
  EXPECT_FALSE(f.Buy(1.0, 0.0));
  EXPECT_EQ(f.MaxEntries(), 3);

  Desk poor;
  poor.host.data.Account->Capital = 30.2;
  EXPECT_TRUE(poor.funcs->SellShort(5.0, 0.0));  // 30.2 pays 2 lots of 10.1
  EXPECT_EQ(poor.funcs->CurrentContracts(), -2.0);
  // Margins at the Open: 30.2 - 2 x 100 x 0.1 = 10.2 pays 1 more (at the Close 101: 10.0 not).
  EXPECT_TRUE(poor.funcs->SellShort(5.0, 0.0));
  EXPECT_EQ(poor.funcs->CurrentContracts(), -3.0);
}

TEST(SignalOrders, ExitOrderCostDiffersBetweenSellAndBuyToCover) {
  Desk desk;
  CostSetting& cost = desk.host.data.CostSettings[0];
  cost.CommissionRate = 2.0;  // money per lot
  cost.Slippage = 1.0;
  cost.NoEntryCommission = true;
  CSystemFuncs& f = *desk.funcs;
  ASSERT_TRUE(f.Buy(2.0, 0.0) && f.Sell(0.0, 0.0) && f.SellShort(2.0, 0.0));
  ASSERT_TRUE(f.BuyToCover(0.0, 0.0));
  const std::vector<OrderRecord>& orders = desk.ledger().Orders;
  EXPECT_EQ(orders[0].Cost, 2.0);  // entry: slippage 2 x 1 only
  EXPECT_EQ(orders[1].Cost, 6.0);  // Sell: its trade's exit cost, 2 x 1 + 2 x 2
  EXPECT_EQ(orders[3].Cost, 2.0);  // BuyToCover: the entry rule, slippage only
  EXPECT_EQ(desk.ledger().Trades[1].ExitCost, 6.0);
}

TEST(SignalOrders, ExitCostsOfEachTradeAndOfTheExitOrder) {
  Desk desk;  // every bar at time 0: one trading day
  CostSetting& cost = desk.host.data.CostSettings[0];
  cost.CommissionRate = 2.0;  // money per lot
  cost.Slippage = 1.0;
  CSystemFuncs& f = *desk.funcs;
  // One exit over two entries: each trade pays for its own lots.
  ASSERT_TRUE(f.Buy(1.0, 0.0) && f.Buy(2.0, 0.0) && f.Sell(0.0, 0.0));
  // Short 3 lots, covered whole: the cover's order cost is the entry rule on 3 lots.
  ASSERT_TRUE(f.SellShort(3.0, 0.0) && f.BuyToCover(0.0, 0.0));
  // Same-day exits free: a reversal's exit and a cover pay slippage only on their trades, the
  // cover's order still the entry rule with commission.
  cost.SameDayExitFree = true;
  ASSERT_TRUE(f.Buy(2.0, 0.0) && f.SellShort(1.0, 0.0) && f.BuyToCover(0.0, 0.0));
  const StrategyLedger& ledger = desk.ledger();
  ASSERT_EQ(ledger.Trades.size(), 5u);
  ASSERT_EQ(ledger.Orders.size(), 9u);
  EXPECT_EQ(ledger.Trades[0].ExitCost, 3.0);  // 1 x 1 + 1 x 2
  EXPECT_EQ(ledger.Trades[1].ExitCost, 6.0);  // 2 x 1 + 2 x 2
  EXPECT_EQ(ledger.Orders[2].Cost, 9.0);      // the Sell: its trades' exit costs
  EXPECT_EQ(ledger.Trades[2].ExitCost, 9.0);  // 3 x 1 + 3 x 2
  EXPECT_EQ(ledger.Orders[4].Cost, 9.0);      // the BuyToCover: 3 x 1 + 3 x 2
  EXPECT_EQ(ledger.Trades[3].ExitCost, 2.0);  // 2 x 1, commission waived
  EXPECT_EQ(ledger.Orders[6].Cost, 2.0);      // the reversal's Sell
  EXPECT_EQ(ledger.Trades[4].ExitCost, 1.0);  // 1 x 1, commission waived
  EXPECT_EQ(ledger.Orders[8].Cost, 3.0);      // the BuyToCover: 1 x 1 + 1 x 2
}

TEST(SignalOrders, LimitsClampOnTheLastBarOnlyFromTodayOn) {
  const int64_t lastBarTime = ShanghaiInstant(2024, 3, 4, 10);  // 02:00 UTC
  Desk desk({MakeBar(lastBarTime - 60000, 100, 102, 98, 101, 10),
             MakeBar(lastBarTime, 100, 102, 98, 101, 10)});
  SFImpl impl(&desk.host.data);
  impl.m_dUpperLimit = 120.0;
  desk.host.At(0, 1);
  int64_t now = lastBarTime + 3600000;
  SysFuncsPlatform clock;
  clock.Now = [&now] { return now; };
  ScopedPlatform platform(clock);
  ASSERT_TRUE(impl.Buy(1.0, 150.0, kOriginFormula));
  EXPECT_EQ(desk.ledger().OpenEntries.back().Price, 120.0);
  now = UtcInstant(2024, 3, 5);  // the next day by the clock: no limits
  ASSERT_TRUE(impl.Buy(1.0, 150.0, kOriginFormula));
  EXPECT_EQ(desk.ledger().OpenEntries.back().Price, 150.0);
}

TEST(SignalOrders, AHostThatSetsNoCostsCanTrade) {
  // Default costs: margin of the full value (rate 1), no commission, no slippage. An unknown
  // symbol trades as kind 4 with lot value 1: one lot at 100 needs 100 of the 1000.
  TestHost host;
  host.AddSource("s", EvenBars(0, 60000, 3));
  host.data.InitCapital = 1000.0;
  host.data.MaxPositionLots = 20;
  host.data.MaxOpenEntries = 2;
  CSystemFuncs funcs(&host.data);
  host.At(0, 1);
  EXPECT_TRUE(funcs.Buy(0, 0));  // one default lot
  EXPECT_TRUE(funcs.Buy(20, 0));
  // Available capital 1000 - 100 (one lot's margin at the Open) = 900: 9 more lots.
  EXPECT_EQ(funcs.CurrentContracts(), 10.0);
}

}  // namespace
}  // namespace sysfuncs::testing
