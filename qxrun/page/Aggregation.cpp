#include "page/Aggregation.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace qxrun {
namespace {

constexpr int64_t kMinute = 60;
constexpr int64_t kHour = 60 * kMinute;
constexpr int64_t kDay = 24 * kHour;
constexpr int64_t kWeek = 7 * kDay;
// 1970-01-01 was a Thursday: the first Monday is four days later.
constexpr int64_t kFirstMonday = 4 * kDay;

constexpr std::array<AggregationPeriod, 10> kPeriods = {{
    {kMinute, "1 min"},
    {5 * kMinute, "5 min"},
    {15 * kMinute, "15 min"},
    {30 * kMinute, "30 min"},
    {kHour, "1 hour"},
    {2 * kHour, "2 hours"},
    {4 * kHour, "4 hours"},
    {kDay, "1 day"},
    {kWeek, "1 week"},
    {0, "1 month"},
}};

int64_t FloorTo(int64_t value, int64_t step) {
  int64_t quotient = value / step;
  if (value % step != 0 && value < 0) {
    --quotient;
  }
  return quotient * step;
}

bool IsFinite(const PageCandle& candle) {
  return std::isfinite(candle.Open) && std::isfinite(candle.High) && std::isfinite(candle.Low) &&
         std::isfinite(candle.Close);
}

bool IsFinite(const PagePoint& point) { return std::isfinite(point.Value); }

// Items restamped with their bucket's time and merged per bucket; non-finite ones are dropped.
// Input out of order is sorted first (stable, so "last" stays the last given).
template <typename Item, typename Merge>
std::vector<Item> Regroup(const std::vector<Item>& items,
                          const std::optional<AggregationPeriod>& period, Merge merge) {
  std::vector<Item> stamped;
  stamped.reserve(items.size());
  for (const Item& item : items) {
    if (!IsFinite(item)) {
      continue;
    }
    Item copy = item;
    if (period) {
      copy.Time = BucketStart(item.Time, *period);
    }
    stamped.push_back(copy);
  }
  auto byTime = [](const Item& a, const Item& b) { return a.Time < b.Time; };
  if (!std::is_sorted(stamped.begin(), stamped.end(), byTime)) {
    std::stable_sort(stamped.begin(), stamped.end(), byTime);
  }
  std::vector<Item> grouped;
  for (const Item& item : stamped) {
    if (!grouped.empty() && grouped.back().Time == item.Time) {
      merge(grouped.back(), item);
    } else {
      grouped.push_back(item);
    }
  }
  return grouped;
}

void MergeCandle(PageCandle& into, const PageCandle& later) {
  into.High = std::max(into.High, later.High);
  into.Low = std::min(into.Low, later.Low);
  into.Close = later.Close;
}

void KeepLast(PagePoint& into, const PagePoint& later) { into.Value = later.Value; }

void KeepLowest(PagePoint& into, const PagePoint& later) {
  into.Value = std::min(into.Value, later.Value);
}

// Buy and cover point up, sell and short point down; live orders are kept apart from both.
int Direction(MarkerKind kind) {
  switch (kind) {
    case MarkerKind::kBuy:
    case MarkerKind::kBuyToCover:
      return 0;
    case MarkerKind::kSell:
    case MarkerKind::kSellShort:
      return 1;
    case MarkerKind::kLiveBuy:
      return 2;
    case MarkerKind::kLiveSell:
      return 3;
  }
  return 0;
}

const char* KindName(MarkerKind kind) {
  switch (kind) {
    case MarkerKind::kBuy:
      return "Buy";
    case MarkerKind::kSell:
      return "Sell";
    case MarkerKind::kSellShort:
      return "SellShort";
    case MarkerKind::kBuyToCover:
      return "BuyToCover";
    case MarkerKind::kLiveBuy:
      return "Live buy";
    case MarkerKind::kLiveSell:
      return "Live sell";
  }
  return "";
}

std::string Compact(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", value);
  return text;
}

std::vector<ShownMarker> PlaceMarkers(const std::vector<PageMarker>& markers,
                                      const std::vector<PageCandle>& candles) {
  std::vector<ShownMarker> shown;
  shown.reserve(markers.size());
  for (const PageMarker& marker : markers) {
    int64_t time = marker.Time;
    if (!candles.empty()) {
      auto after = std::upper_bound(candles.begin(), candles.end(), marker.Time,
                                    [](int64_t t, const PageCandle& c) { return t < c.Time; });
      time = after == candles.begin() ? candles.front().Time : std::prev(after)->Time;
    }
    shown.push_back({time, marker.Kind, marker.Price, marker.Lots, 1, marker.Text});
  }
  std::stable_sort(shown.begin(), shown.end(),
                   [](const ShownMarker& a, const ShownMarker& b) { return a.Time < b.Time; });
  return shown;
}

// Markers of one time and one direction become one, in the order each direction first appears.
std::vector<ShownMarker> MergeMarkers(std::vector<ShownMarker> markers) {
  std::vector<ShownMarker> merged;
  size_t timeStart = 0;  // index in `merged` of the first marker at the current time
  for (ShownMarker& marker : markers) {
    if (merged.empty() || merged.back().Time != marker.Time) {
      timeStart = merged.size();
    }
    auto same = std::find_if(
        merged.begin() + static_cast<std::ptrdiff_t>(timeStart), merged.end(),
        [&](const ShownMarker& m) { return Direction(m.Kind) == Direction(marker.Kind); });
    if (same == merged.end()) {
      merged.push_back(std::move(marker));
    } else {
      same->Count += marker.Count;
      same->Lots += marker.Lots;
    }
  }
  return merged;
}

}  // namespace

std::span<const AggregationPeriod> AggregationPeriods() { return kPeriods; }

int64_t BucketStart(int64_t time, const AggregationPeriod& period) {
  if (period.Seconds == kWeek) {
    return FloorTo(time - kFirstMonday, kWeek) + kFirstMonday;
  }
  if (period.Seconds > 0) {
    return FloorTo(time, period.Seconds);
  }
  using namespace std::chrono;
  const sys_days day{days{FloorTo(time, kDay) / kDay}};
  const year_month_day date{day};
  const sys_days first{date.year() / date.month() / 1};
  return first.time_since_epoch().count() * kDay;
}

size_t CountBuckets(std::span<const PageCandle> candles, const AggregationPeriod& period) {
  size_t count = 0;
  int64_t current = 0;
  for (const PageCandle& candle : candles) {
    const int64_t bucket = BucketStart(candle.Time, period);
    if (count == 0 || bucket != current) {
      ++count;
      current = bucket;
    }
  }
  return count;
}

std::optional<AggregationPeriod> ChoosePeriod(std::span<const PageCandle> candles,
                                              size_t maxCandles) {
  if (candles.size() <= maxCandles) {
    return std::nullopt;
  }
  for (const AggregationPeriod& period : kPeriods) {
    if (CountBuckets(candles, period) <= maxCandles) {
      return period;
    }
  }
  return kPeriods.back();
}

ShownSeries ShapeSeries(const PageData& data, size_t maxCandles, size_t maxSeparateMarkers) {
  ShownSeries shown;
  shown.SourceBars = data.Candles.size();
  shown.Period = ChoosePeriod(data.Candles, maxCandles);
  shown.Candles = Regroup(data.Candles, shown.Period, MergeCandle);
  shown.Lines.reserve(data.Lines.size());
  for (const PageLine& line : data.Lines) {
    PageLine copy{line.Name, line.Color, line.OwnPane, {}};
    copy.Points = Regroup(line.Points, shown.Period, KeepLast);
    shown.Lines.push_back(std::move(copy));
  }
  shown.Equity = Regroup(data.Equity, shown.Period, KeepLast);
  shown.Drawdown = Regroup(data.Drawdown, shown.Period, KeepLowest);
  shown.Markers = PlaceMarkers(data.Markers, shown.Candles);
  if (shown.Markers.size() > maxSeparateMarkers) {
    shown.Markers = MergeMarkers(std::move(shown.Markers));
  }
  return shown;
}

std::string MarkerText(const ShownMarker& marker) {
  if (marker.Count > 1) {
    return std::to_string(marker.Count) + " orders, " + Compact(marker.Lots) + " lots";
  }
  if (!marker.Text.empty()) {
    return marker.Text;
  }
  return std::string(KindName(marker.Kind)) + " " + Compact(marker.Lots) + " @ " +
         Compact(marker.Price);
}

}  // namespace qxrun
