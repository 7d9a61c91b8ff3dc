// The bound account: identity, summary figures (failures asked again) and positions (failures
// read 0 for the instance's life).
#include "live/LiveHost.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

namespace sysfuncs::testing {
namespace {

using Real = std::function<double(CSystemFuncs&)>;

TEST(Account, ABrokerKeyOfOtherThanTwoPiecesPassesAccountNumber0) {
  LiveHost live;
  live.host.data.BrokerID = "8|a|b";
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.A_CurrentEquity(), 0);
  EXPECT_EQ(live.adapter.lastBrokerNo, 0);
  EXPECT_EQ(live.adapter.lastAccountId, "10086");
  EXPECT_EQ(f.A_BrokerID(), "8|a|b");
}

TEST(Account, SummaryFiguresComeFromTheirFieldsAndAreFetchedOnce) {
  LiveHost live;
  live.adapter.summary = {1000, 20, 1020, 700, 30, 290, 5, 6};  // all different
  CSystemFuncs& f = live.AtLastBar();
  const std::tuple<const char*, Real, double> rows[] = {
      {"A_PreviousEquity", &CSystemFuncs::A_PreviousEquity, 1000},
      {"A_ProfitLoss", &CSystemFuncs::A_ProfitLoss, 20},
      {"A_CurrentEquity", &CSystemFuncs::A_CurrentEquity, 1020},
      {"A_FreeMargin", &CSystemFuncs::A_FreeMargin, 700},
      {"A_TotalFreeze", &CSystemFuncs::A_TotalFreeze, 30},
      {"A_TotalMargin", &CSystemFuncs::A_TotalMargin, 290},
      {"A_TodayDeposit", &CSystemFuncs::A_TodayDeposit, 5},
      {"A_TodayDrawing", &CSystemFuncs::A_TodayDrawing, 6}};
  for (const auto& [name, read, want] : rows) {
    EXPECT_EQ(read(f), want) << name;
    EXPECT_EQ(read(f), want) << name;
  }
  EXPECT_EQ(live.adapter.summaryCalls, 8);
  EXPECT_EQ(live.adapter.lastBrokerNo, 8);
  EXPECT_EQ(live.adapter.lastAccountId, "10086");
  // The account does not depend on the data source: another series reads the same entries.
  live.host.AddSource("cu2410", ThreeBars());
  live.host.At(1, 2);
  EXPECT_EQ(f.A_CurrentEquity(), 1020);
  EXPECT_EQ(live.adapter.summaryCalls, 8);
  EXPECT_TRUE(f.AccountDataExist());
}

TEST(Account, AFailedSummaryIsAskedAgainUntilItAnswers) {
  LiveHost live;
  live.adapter.summaryAnswers = false;
  live.adapter.summary.FreeMargin = 700;
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.A_FreeMargin(), kNoNumber);
  EXPECT_EQ(f.A_FreeMargin(), kNoNumber);
  live.adapter.summaryAnswers = true;
  EXPECT_EQ(f.A_FreeMargin(), 700);
  EXPECT_EQ(f.A_FreeMargin(), 700);
  EXPECT_EQ(live.adapter.summaryCalls, 3);
}

TEST(Account, PositionFiguresAreReadPerSymbolAndLotsWidenToNumbers) {
  LiveHost live;
  live.adapter.codeIds["rb2410"] = {.MarketKind = 1, .CodeKind = 2, .MarketId = 7, .Code = ""};
  live.adapter.positions["rb2410"] = {3, 1, 4012.5, 100, 2, 2, 4030, -30, 5, 4019.5};
  CSystemFuncs& f = live.AtLastBar();
  const std::tuple<const char*, Real, double> rows[] = {
      {"A_BuyPosition", &CSystemFuncs::A_BuyPosition, 3},
      {"A_BuyAvgPrice", &CSystemFuncs::A_BuyAvgPrice, 4012.5},
      {"A_BuyProfitLoss", &CSystemFuncs::A_BuyProfitLoss, 100},
      {"A_TodayBuyPosition", &CSystemFuncs::A_TodayBuyPosition, 1},
      {"A_SellPosition", &CSystemFuncs::A_SellPosition, 2},
      {"A_SellAvgPrice", &CSystemFuncs::A_SellAvgPrice, 4030},
      {"A_SellProfitLoss", &CSystemFuncs::A_SellProfitLoss, -30},
      {"A_TodaySellPosition", &CSystemFuncs::A_TodaySellPosition, 2},
      {"A_TotalPosition", &CSystemFuncs::A_TotalPosition, 5},
      {"A_TotalAvgPrice", &CSystemFuncs::A_TotalAvgPrice, 4019.5},
      {"A_PositionProfitLoss", &CSystemFuncs::A_PositionProfitLoss, 70}};  // 100 + (-30)
  for (const auto& [name, read, want] : rows) {
    EXPECT_EQ(read(f), want) << name;
    EXPECT_EQ(read(f), want) << name;
  }
  EXPECT_EQ(live.adapter.positionCalls, 11);
  EXPECT_EQ(live.adapter.codeIdCalls, 11) << "the identity is asked before each position query";
}

TEST(Account, AFailedPositionQueryReadsZeroForTheLifeOfTheInstance) {
  LiveHost live;
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.A_BuyPosition(), 0);
  live.adapter.positions["rb2410"].BuyPosition = 4;  // the platform answers now
  EXPECT_EQ(f.A_BuyPosition(), 0);
  EXPECT_EQ(live.adapter.positionCalls, 1);
  EXPECT_EQ(f.A_SellPosition(), 0) << "another figure is another key";
  EXPECT_EQ(live.adapter.positionCalls, 2);
  live.host.AddSource("rb2410", ThreeBars());  // another series of the same symbol
  live.host.At(1, 2);
  EXPECT_EQ(f.A_BuyPosition(), 4);
  EXPECT_EQ(live.adapter.positionCalls, 3);
}

TEST(Account, WithoutABoundAccountOrOffTheLastBarNothingIsAsked) {
  LiveHost live;
  live.adapter.summary.CurrentEquity = 1020;
  live.host.data.AccountID = "";
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_FALSE(f.AccountDataExist());
  EXPECT_EQ(f.A_CurrentEquity(), kNoNumber);
  EXPECT_EQ(f.A_BuyPosition(), kNoNumber);
  EXPECT_EQ(f.A_PositionProfitLoss(), kNoNumber);
  EXPECT_EQ(f.A_BrokerID(), "8|abc");
  EXPECT_EQ(f.A_AccountID(), "");

  // A binding given after construction counts for the tests, not for the adapter's arguments.
  live.host.data.AccountID = "20010";
  EXPECT_TRUE(f.AccountDataExist());
  EXPECT_EQ(f.A_AccountID(), "20010");
  EXPECT_EQ(f.A_CurrentEquity(), 1020);
  EXPECT_EQ(live.adapter.lastAccountId, "");
  live.adapter.summaryCalls = 0;

  live.host.data.BrokerID = "";
  EXPECT_EQ(f.A_TodayDrawing(), kNoNumber);
  live.host.data.BrokerID = "8|abc";
  live.host.At(0, 1);
  EXPECT_FALSE(f.AccountDataExist());
  EXPECT_EQ(f.A_TodayDrawing(), kNoNumber);
  EXPECT_EQ(f.A_SellAvgPrice(), kNoNumber);
  EXPECT_EQ(live.adapter.LiveCalls(), 0);
}

}  // namespace
}  // namespace sysfuncs::testing
