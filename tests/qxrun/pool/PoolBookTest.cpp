#include "qxrun/pool/PoolBook.h"
#include "qxrun/pool/PoolPage.h"

#include <gtest/gtest.h>

#include <vector>

namespace qxrun {
namespace {

constexpr int64_t kDay = 86400000;

std::vector<QXBar> Bars(const std::vector<std::pair<int, double>>& dayCloses) {
  std::vector<QXBar> bars;
  for (const auto& [day, close] : dayCloses) {
    QXBar& bar = bars.emplace_back();
    bar.Time = day * kDay;
    bar.Open = bar.High = bar.Low = bar.Close = close;
  }
  return bars;
}

CheckPointRecord Decision(int32_t signal, int32_t enabled = 1) {
  CheckPointRecord record;
  record.Signal = signal;
  record.Enabled = enabled;
  return record;
}

TEST(PoolBookTest, HoldingsEquityAndTradesFollowTheDecisionsAtTheClose) {
  // Days 1-4. A: 10 11 12 13; B: 20 _ 18 17 (no bar on day 2); C: 5 6 7 8.
  const std::vector<QXBar> a = Bars({{1, 10}, {2, 11}, {3, 12}, {4, 13}});
  const std::vector<QXBar> b = Bars({{1, 20}, {3, 18}, {4, 17}});
  const std::vector<QXBar> c = Bars({{1, 5}, {2, 6}, {3, 7}, {4, 8}});
  // A: long on day 1, no decision on day 2 (kept), flat on day 3.
  const std::map<int64_t, CheckPointRecord> aPoints = {
      {1 * kDay, Decision(1)}, {2 * kDay, Decision(-999)}, {3 * kDay, Decision(0)}};
  // B: short on day 1, held through its missing day, still short at the end.
  const std::map<int64_t, CheckPointRecord> bPoints = {{1 * kDay, Decision(-1)}};
  // C: a disabled long on day 2 holds nothing; long on day 3; a signal of 2 on day 4 is
  // neither long nor short: flat.
  const std::map<int64_t, CheckPointRecord> cPoints = {
      {2 * kDay, Decision(1, 0)}, {3 * kDay, Decision(1)}, {4 * kDay, Decision(2)}};
  const std::vector<PoolSymbol> symbols = {{"A", &a, &aPoints, nullptr, 1.0},
                                           {"B", &b, &bPoints, nullptr, 1.0},
                                           {"C", &c, &cPoints, nullptr, 10.0}};
  const PoolBook book = BookPool(symbols, 2.0, 1000.0);

  EXPECT_EQ(book.Times, (std::vector<int64_t>{kDay, 2 * kDay, 3 * kDay, 4 * kDay}));
  ASSERT_EQ(book.Held.size(), 4u);
  EXPECT_EQ(book.Held[0], (std::vector<int8_t>{1, -1, 0}));
  EXPECT_EQ(book.Held[1], (std::vector<int8_t>{1, -1, 0}));
  EXPECT_EQ(book.Held[2], (std::vector<int8_t>{0, -1, 1}));
  EXPECT_EQ(book.Held[3], (std::vector<int8_t>{0, -1, 0}));

  // 2 lots each. Day 1: nothing moved yet: 1000.
  // Day 2: A +1 x 2 = +2; B keeps its last close 20: 0. Equity 1002.
  // Day 3: A closed at 12: realised +4. B 18: short from 20, +2 x 2 = +4 open. C bought at 7.
  //   Equity 1004 + 4 = 1008.
  // Day 4: C sold at 8: +1 x 2 lots x 10 = +20 realised. B 17: +3 x 2 = +6 open. 1030.
  ASSERT_EQ(book.EquityCurve.size(), 4u);
  const double equity[] = {1000, 1002, 1008, 1030};
  const double capital[] = {1000, 1000, 1004, 1030};  // the last after B's final close: +6
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_DOUBLE_EQ(book.EquityCurve[i].Equity, equity[i]) << "day " << i + 1;
    EXPECT_DOUBLE_EQ(book.EquityCurve[i].Capital, capital[i]) << "day " << i + 1;
    EXPECT_EQ(book.EquityCurve[i].Bar, static_cast<int32_t>(i));
  }
  EXPECT_DOUBLE_EQ(book.EquityCurve[2].LongLots, 2.0);
  EXPECT_DOUBLE_EQ(book.EquityCurve[2].ShortLots, 2.0);

  // A long 10 -> 12; C long 7 -> 8; B short 20 -> 17 closed at the end of the run.
  ASSERT_EQ(book.Trades.size(), 3u);
  const TradeRecord& first = book.Trades[0];
  EXPECT_EQ(first.DataIndex, 0);
  EXPECT_EQ(first.EntryKind, kBuy);
  EXPECT_EQ(first.EntryBar, 0);
  EXPECT_EQ(first.ExitBar, 2);
  EXPECT_DOUBLE_EQ(first.NetProfit, 4.0);
  EXPECT_DOUBLE_EQ(first.Return, 4.0 / 20.0);  // on 2 lots x 10 at the entry
  EXPECT_EQ(book.Trades[1].DataIndex, 2);
  EXPECT_EQ(book.Trades[1].EntryBar, 2);
  EXPECT_EQ(book.Trades[1].ExitBar, 3);
  EXPECT_DOUBLE_EQ(book.Trades[1].NetProfit, 20.0);
  const TradeRecord& last = book.Trades[2];
  EXPECT_EQ(last.DataIndex, 1);
  EXPECT_EQ(last.EntryKind, kSellShort);
  EXPECT_EQ(last.ExitKind, static_cast<uint32_t>(kBuyToCover) | kOriginSettlement);
  EXPECT_EQ(last.ExitBar, 2);  // B's own last bar
  EXPECT_DOUBLE_EQ(last.ExitPrice, 17.0);
  EXPECT_DOUBLE_EQ(last.NetProfit, 6.0);

  // The holdings chart draws one bar per stretch held: A long on days 1-2, B short on all four
  // days, C long on day 3.
  const std::string svg = HoldingsSvg(symbols, book);
  size_t longs = 0;
  size_t shorts = 0;
  for (size_t at = svg.find("<rect"); at != std::string::npos; at = svg.find("<rect", at + 1)) {
    (svg.compare(at, 18, "<rect class=\"long\"") == 0 ? longs : shorts) += 1;
  }
  EXPECT_EQ(longs, 2u);
  EXPECT_EQ(shorts, 1u);
  // Four dates over 840 units from x = 160: A spans days 1-2, 420 wide.
  EXPECT_NE(svg.find("<rect class=\"long\" x=\"160\" y=\"3\" width=\"420\""), std::string::npos);
}

}  // namespace
}  // namespace qxrun
