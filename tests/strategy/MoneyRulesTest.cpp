#include "strategy/MoneyRules.h"

#include <gtest/gtest.h>

namespace sysfuncs {
namespace {

// ContractSize 10, LotValue 300, tick 0.2. All rows: 2 lots at 50, margin rate 0.1, rate 3.
ContractTerms Terms(int32_t kind) { return ContractTerms{kind, 10.0, 300.0, 0.2}; }

TEST(MoneyRules, MarginAndCommissionByKind) {
  struct Row {
    int32_t marginKind;
    uint32_t commissionKind;
    double margin, commission;
  } rows[] = {
      {1, 1, 100.0, 600.0},    // 10 x 2 x 50 x 0.1; ticks 0.2 x 3 x 2 x 10 x 50
      {2, 1, 2.0, 12.0},       // 10 x 2 x 0.1; 0.2 x 3 x 2 x 10
      {3, 1, 2.0, 12.0},       //
      {4, 1, 3000.0, 360.0},   // 300 x 2 x 50 x 0.1; 0.2 x 3 x 2 x 300
      {5, 1, 30000.0, 360.0},  // the full value 300 x 2 x 50: no rate
      {7, 1, 0.0, 0.0},        //
      {1, 2, 100.0, 9.0},      // turnover 300 x 2 x 50 x 3 / 10000, any margin kind
      {4, 0, 3000.0, 6.0},     // money per lot 3 x 2
  };
  for (const Row& row : rows) {
    CostSetting cost;
    cost.MarginRate = 0.1;
    cost.CommissionKind = row.commissionKind;
    cost.CommissionRate = 3.0;
    const ContractTerms terms = Terms(row.marginKind);
    EXPECT_DOUBLE_EQ(Margin(terms, cost, 2.0, 50.0), row.margin)
        << "margin kind " << row.marginKind;
    EXPECT_DOUBLE_EQ(Commission(terms, cost, 2.0, 50.0), row.commission)
        << "margin kind " << row.marginKind << ", commission kind " << row.commissionKind;
  }
}

TEST(MoneyRules, SlippageAndTheCommissionWaivers) {
  CostSetting cost;  // commission 3 x 2 = 6, slippage 1.5 x 2 = 3
  cost.CommissionRate = 3.0;
  cost.Slippage = 1.5;
  EXPECT_DOUBLE_EQ(Slippage(Terms(4), cost, 2.7), 3.0);  // whole lots only
  EXPECT_DOUBLE_EQ(EntryCost(Terms(4), cost, 2.0, 50.0), 9.0);
  EXPECT_DOUBLE_EQ(ExitCost(Terms(4), cost, 2.0, 50.0, true), 9.0);  // waiver not enabled
  cost.NoEntryCommission = true;
  cost.SameDayExitFree = true;
  EXPECT_DOUBLE_EQ(EntryCost(Terms(4), cost, 2.0, 50.0), 3.0);
  EXPECT_DOUBLE_EQ(ExitCost(Terms(4), cost, 2.0, 50.0, true), 3.0);
  EXPECT_DOUBLE_EQ(ExitCost(Terms(4), cost, 2.0, 50.0, false), 9.0);
  cost.SlippageKind = 1;
  EXPECT_DOUBLE_EQ(Slippage(Terms(4), cost, 2.7), 180.0);  // 2 x 1.5 ticks x 300 x 0.2
}

TEST(MoneyRules, PerLotProfitByKindAndSide) {
  struct Row {
    int32_t kind;
    bool isLong;
    double profit;  // entry 40, price 50
  } rows[] = {{4, true, 3000.0}, {5, false, -3000.0}, {1, true, 100.0},
              {2, true, 2.0},    {3, false, -2.0},    {8, true, 0.0}};
  for (const Row& row : rows) {
    EXPECT_DOUBLE_EQ(PerLotProfit(Terms(row.kind), row.isLong, 40.0, 50.0), row.profit)
        << "kind " << row.kind << (row.isLong ? " long" : " short");
  }
  EXPECT_EQ(PerLotProfit(Terms(2), true, 40.0, 0.0), 0.0);  // relative to a price of 0: none
}

TEST(MoneyRules, TickRoundingWithinOnePercentOfATick) {
  constexpr auto kBuy = PriceDirection::kBuy;
  constexpr auto kSell = PriceDirection::kSell;
  struct Row {
    double price;
    PriceDirection direction;
    double rounded;
  } rows[] = {
      {10.004, kBuy, 10.01},     // 0.4 tick above 10.00: up
      {10.00005, kBuy, 10.00},   // 0.5% of a tick above: stays
      {10.009, kSell, 10.00},    // 0.1 tick below 10.01: down
      {10.00995, kSell, 10.01},  // 0.5% of a tick below 10.01: up
      {10.02, kBuy, 10.02},     {10.02, kSell, 10.02},
  };
  for (const Row& row : rows) {
    EXPECT_NEAR(RoundToTick(row.price, 0.01, row.direction), row.rounded, 1e-9)
        << row.price << (row.direction == kBuy ? " buy" : " sell");
  }
  EXPECT_EQ(RoundToTick(10.004, 0.0, kBuy), 10.004);  // no grid: unchanged
}

}  // namespace
}  // namespace sysfuncs
