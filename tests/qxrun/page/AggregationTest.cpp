// Candles, lines, equity, drawdown and markers regrouped for the page.
#include "page/Aggregation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace qxrun {
namespace {

// 2024-01-02 00:00 (a Tuesday) = 19724 days * 86400 s since 1970-01-01.
constexpr int64_t kJan2 = 1704153600;

constexpr int64_t At(int hour, int minute, int second = 0) {
  return kJan2 + hour * 3600 + minute * 60 + second;
}

AggregationPeriod Period(const std::string& name) {
  for (const AggregationPeriod& period : AggregationPeriods()) {
    if (name == period.Name) return period;
  }
  ADD_FAILURE() << "no period " << name;
  return {};
}

TEST(Aggregation, BucketStartsOnTheWallClock) {
  struct Case {
    const char* period;
    int64_t time;
    int64_t start;
  } const cases[] = {
      {"1 min", At(9, 7, 30), At(9, 7)},
      {"1 min", At(9, 7), At(9, 7)},  // a boundary opens its own bucket
      {"5 min", At(9, 7, 30), At(9, 5)},
      {"5 min", At(9, 4, 59), At(9, 0)},
      {"15 min", At(9, 29, 59), At(9, 15)},
      {"30 min", At(13, 30), At(13, 30)},
      {"1 hour", At(14, 59), At(14, 0)},
      {"2 hours", At(9, 7), At(8, 0)},
      {"4 hours", At(9, 7), At(8, 0)},
      {"4 hours", At(23, 59, 59), At(20, 0)},
      {"1 day", At(23, 59, 59), kJan2},
      // Weeks start on Monday: Tuesday 2024-01-02 and Sunday 2024-01-07 noon belong to Monday
      // 2024-01-01 (kJan2 - 86400); Monday 2024-01-08 opens the next week.
      {"1 week", At(9, 0), kJan2 - 86400},
      {"1 week", kJan2 + 5 * 86400 + 12 * 3600, kJan2 - 86400},
      {"1 week", kJan2 + 6 * 86400, kJan2 + 6 * 86400},
      // Leap day 2024-02-29 13:00 -> 2024-02-01 = 19723 + 31 days; 2024-03-01 = 19754 + 29 days.
      {"1 month", 19754 * 86400LL + 28 * 86400 + 13 * 3600, 19754 * 86400LL},
      {"1 month", 19783 * 86400LL, 19783 * 86400LL},
      // Before 1970 the floor still goes down: 1969-12-31 23:59:59 is day -1.
      {"1 min", -1, -60},
      {"1 day", -1, -86400},
      {"1 week", -1, -3 * 86400},        // Monday 1969-12-29
      {"1 month", -43200, -31 * 86400},  // 1969-12-01
  };
  for (const Case& c : cases) {
    EXPECT_EQ(BucketStart(c.time, Period(c.period)), c.start) << c.period << " at " << c.time;
  }
}

std::vector<PageCandle> MinuteCandles(int64_t from, size_t count) {
  std::vector<PageCandle> candles;
  for (size_t i = 0; i < count; ++i) {
    candles.push_back({from + static_cast<int64_t>(i) * 60, 1.0, 1.0, 1.0, 1.0});
  }
  return candles;
}

TEST(Aggregation, ChoosesTheFinestPeriodThatFits) {
  // 3,000 minutes from 00:00 are 50 hours: 600 five-minute, 200 quarter-hour, 100 half-hour and
  // 50 hourly buckets.
  const std::vector<PageCandle> candles = MinuteCandles(kJan2, 3000);
  EXPECT_EQ(CountBuckets(candles, Period("5 min")), 600u);
  EXPECT_EQ(CountBuckets(candles, Period("4 hours")), 13u);  // 48 h = 12 buckets, then 2 h more
  struct Case {
    size_t maxCandles;
    const char* period;
  } const cases[] = {
      {2999, "5 min"}, {600, "5 min"}, {599, "15 min"}, {100, "30 min"},
      {99, "1 hour"},  {3, "1 day"},   {2, "1 week"},   {1, "1 week"},
  };
  for (const Case& c : cases) {
    const std::optional<AggregationPeriod> chosen = ChoosePeriod(candles, c.maxCandles);
    ASSERT_TRUE(chosen.has_value()) << c.maxCandles;
    EXPECT_STREQ(chosen->Name, c.period) << "at most " << c.maxCandles;
  }
  EXPECT_FALSE(ChoosePeriod(candles, 3000).has_value()) << "candles that fit are not regrouped";
  EXPECT_FALSE(ChoosePeriod({}, 0).has_value());
  // When none fits, the coarsest: two bars two months apart still make two monthly candles.
  const std::optional<AggregationPeriod> coarsest = ChoosePeriod(
      std::vector<PageCandle>{{kJan2, 1, 1, 1, 1}, {kJan2 + 60 * 86400, 1, 1, 1, 1}}, 1);
  ASSERT_TRUE(coarsest.has_value());
  EXPECT_STREQ(coarsest->Name, "1 month");
}

// Six minute bars 09:00-09:05 shown as at most three candles: five-minute buckets 09:00 and 09:05.
PageData SixMinutes() {
  PageData data;
  data.Candles = {{At(9, 0), 10, 12, 9, 11}, {At(9, 1), 11, 15, 10, 14}, {At(9, 2), 14, 14, 8, 9},
                  {At(9, 3), 9, 10, 9, 10},  {At(9, 4), 10, 11, 7, 8},   {At(9, 5), 8, 9, 6, 7}};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  data.Lines = {
      {"ma", "#112233", false, {{At(9, 0), 1}, {At(9, 2), 2}, {At(9, 4), nan}, {At(9, 5), 4}}}};
  data.Equity = {{At(9, 0), 100}, {At(9, 1), 103}, {At(9, 2), 101},
                 {At(9, 3), 99},  {At(9, 4), 102}, {At(9, 5), 104}};
  data.Drawdown = {{At(9, 0), 0},  {At(9, 1), 0},  {At(9, 2), -2},
                   {At(9, 3), -4}, {At(9, 4), -1}, {At(9, 5), 0}};
  return data;
}

void ExpectPoints(const std::vector<PagePoint>& points,
                  const std::vector<std::pair<int64_t, double>>& expected, const char* what) {
  ASSERT_EQ(points.size(), expected.size()) << what;
  for (size_t i = 0; i < points.size(); ++i) {
    EXPECT_EQ(points[i].Time, expected[i].first) << what << " #" << i;
    EXPECT_EQ(points[i].Value, expected[i].second) << what << " #" << i;
  }
}

TEST(Aggregation, BucketsKeepFirstOpenExtremesLastCloseLastValueAndLowestDrawdown) {
  const ShownSeries shown = ShapeSeries(SixMinutes(), 3);
  ASSERT_TRUE(shown.Period.has_value());
  EXPECT_STREQ(shown.Period->Name, "5 min");
  EXPECT_EQ(shown.SourceBars, 6u);
  ASSERT_EQ(shown.Candles.size(), 2u);
  const PageCandle& first = shown.Candles[0];
  EXPECT_EQ(first.Time, At(9, 0));
  EXPECT_EQ(first.Open, 10);  // the 09:00 open
  EXPECT_EQ(first.High, 15);  // 09:01
  EXPECT_EQ(first.Low, 7);    // 09:04
  EXPECT_EQ(first.Close, 8);  // the 09:04 close
  const PageCandle& second = shown.Candles[1];
  EXPECT_EQ(second.Time, At(9, 5));
  EXPECT_EQ(second.Open, 8);
  EXPECT_EQ(second.High, 9);
  EXPECT_EQ(second.Low, 6);
  EXPECT_EQ(second.Close, 7);
  ASSERT_EQ(shown.Lines.size(), 1u);
  EXPECT_EQ(shown.Lines[0].Name, "ma");
  // The 09:04 value is not a number: the bucket's last value is the 09:02 one.
  ExpectPoints(shown.Lines[0].Points, {{At(9, 0), 2}, {At(9, 5), 4}}, "line");
  ExpectPoints(shown.Equity, {{At(9, 0), 102}, {At(9, 5), 104}}, "equity");
  ExpectPoints(shown.Drawdown, {{At(9, 0), -4}, {At(9, 5), 0}}, "drawdown");
}

TEST(Aggregation, FullResolutionKeepsEveryBarButMergesRepeatedTimes) {
  PageData data = SixMinutes();
  data.Lines[0].Points = {{At(9, 2), 5}, {At(9, 1), 3}, {At(9, 1), 4}};  // out of order, repeated
  data.Equity = {{At(9, 0), 100}, {At(9, 0), 101}};
  data.Drawdown = {{At(9, 0), -3}, {At(9, 0), -1}};
  const ShownSeries shown = ShapeSeries(data, 6);
  EXPECT_FALSE(shown.Period.has_value());
  ASSERT_EQ(shown.Candles.size(), 6u);
  EXPECT_EQ(shown.Candles[2].Time, At(9, 2));
  EXPECT_EQ(shown.Candles[2].Low, 8);
  ExpectPoints(shown.Lines[0].Points, {{At(9, 1), 4}, {At(9, 2), 5}}, "line");
  ExpectPoints(shown.Equity, {{At(9, 0), 101}}, "equity");
  ExpectPoints(shown.Drawdown, {{At(9, 0), -3}}, "drawdown");
}

TEST(Aggregation, MarkersMoveToTheCandleTheyFallIn) {
  PageData data = SixMinutes();
  data.Markers = {{At(9, 3), MarkerKind::kBuy, 9.5, 1, ""},
                  {At(8, 59), MarkerKind::kLiveBuy, 9, 1, ""},  // before the first candle
                  {At(9, 5, 30), MarkerKind::kSell, 7, 1, ""},
                  {At(9, 4, 59), MarkerKind::kSellShort, 8, 2, ""}};
  const ShownSeries aggregated = ShapeSeries(data, 3);
  ASSERT_EQ(aggregated.Markers.size(), 4u);
  // Sorted by the time they are shown at; equal times keep their order.
  const std::vector<std::pair<int64_t, MarkerKind>> expected = {{At(9, 0), MarkerKind::kBuy},
                                                                {At(9, 0), MarkerKind::kLiveBuy},
                                                                {At(9, 0), MarkerKind::kSellShort},
                                                                {At(9, 5), MarkerKind::kSell}};
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(aggregated.Markers[i].Time, expected[i].first) << i;
    EXPECT_EQ(aggregated.Markers[i].Kind, expected[i].second) << i;
    EXPECT_EQ(aggregated.Markers[i].Count, 1) << i;
  }
  // At full resolution a marker between bars goes to the bar before it.
  const ShownSeries full = ShapeSeries(data, 6);
  ASSERT_EQ(full.Markers.size(), 4u);
  EXPECT_EQ(full.Markers[0].Time, At(9, 0));  // the live order before the first bar
  EXPECT_EQ(full.Markers[1].Time, At(9, 3));
  EXPECT_EQ(full.Markers[2].Time, At(9, 4));
  EXPECT_EQ(full.Markers[3].Time, At(9, 5));
}

TEST(Aggregation, ManyMarkersMergePerCandleAndDirection) {
  PageData data = SixMinutes();
  data.Markers = {{At(9, 1), MarkerKind::kBuy, 11, 1, "first"},
                  {At(9, 2), MarkerKind::kSell, 9, 3, ""},
                  {At(9, 2), MarkerKind::kBuyToCover, 9, 2, ""},  // buys and covers both point up
                  {At(9, 3), MarkerKind::kSellShort, 10, 1, ""},
                  {At(9, 4), MarkerKind::kLiveBuy, 8, 4, ""},  // live orders stay apart
                  {At(9, 5), MarkerKind::kBuy, 7, 1, ""}};
  // Six markers fit under a limit of six: none is merged.
  EXPECT_EQ(ShapeSeries(data, 3, 6).Markers.size(), 6u);

  const ShownSeries shown = ShapeSeries(data, 3, 5);
  struct Expected {
    int64_t time;
    MarkerKind kind;
    int count;
    double lots;
    const char* text;
  } const expected[] = {
      {At(9, 0), MarkerKind::kBuy, 2, 3, "2 orders, 3 lots"},
      {At(9, 0), MarkerKind::kSell, 2, 4, "2 orders, 4 lots"},
      {At(9, 0), MarkerKind::kLiveBuy, 1, 4, "Live buy 4 @ 8"},
      {At(9, 5), MarkerKind::kBuy, 1, 1, "Buy 1 @ 7"},
  };
  ASSERT_EQ(shown.Markers.size(), std::size(expected));
  for (size_t i = 0; i < std::size(expected); ++i) {
    const ShownMarker& marker = shown.Markers[i];
    EXPECT_EQ(marker.Time, expected[i].time) << i;
    EXPECT_EQ(marker.Kind, expected[i].kind) << i;
    EXPECT_EQ(marker.Count, expected[i].count) << i;
    EXPECT_EQ(marker.Lots, expected[i].lots) << i;
    EXPECT_EQ(MarkerText(marker), expected[i].text) << i;
  }
}

TEST(Aggregation, MarkerTextIsTheMarkersOwnOrMadeFromKindLotsAndPrice) {
  struct Case {
    ShownMarker marker;
    const char* text;
  } const cases[] = {
      {{0, MarkerKind::kBuy, 3512.5, 2, 1, ""}, "Buy 2 @ 3512.5"},
      {{0, MarkerKind::kSellShort, 0.1 + 0.2, 1, 1, ""}, "SellShort 1 @ 0.3"},  // ten digits
      {{0, MarkerKind::kBuyToCover, 100, 0.5, 1, ""}, "BuyToCover 0.5 @ 100"},
      {{0, MarkerKind::kLiveSell, 7, 1, 1, ""}, "Live sell 1 @ 7"},
      {{0, MarkerKind::kSell, 7, 1, 1, "stop hit"}, "stop hit"},
      {{0, MarkerKind::kSell, 7, 6, 3, "stop hit"}, "3 orders, 6 lots"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MarkerText(c.marker), c.text);
  }
}

TEST(Aggregation, NothingToShowIsNotAnError) {
  const ShownSeries shown = ShapeSeries(PageData{});
  EXPECT_FALSE(shown.Period.has_value());
  EXPECT_TRUE(shown.Candles.empty());
  EXPECT_TRUE(shown.Markers.empty());
  // Markers without candles keep their own times.
  PageData data;
  data.Markers = {{42, MarkerKind::kBuy, 1, 1, ""}};
  EXPECT_EQ(ShapeSeries(data).Markers.at(0).Time, 42);
}

}  // namespace
}  // namespace qxrun
