// Long series shrunk to what a page can draw: candles, lines, equity, drawdown and markers
// regrouped into buckets of one coarser "nice" period.
#ifndef QXRUN_PAGE_AGGREGATION_H_
#define QXRUN_PAGE_AGGREGATION_H_

#include "page/ReportPage.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qxrun {

// A period a candle of the page may stand for. Seconds is 0 for the calendar month.
struct AggregationPeriod {
  int64_t Seconds = 0;
  const char* Name = "";
};

// The candidate periods, finest first: 1, 5, 15, 30 min, 1, 2, 4 hours, 1 day, 1 week, 1 month.
std::span<const AggregationPeriod> AggregationPeriods();

// Start of the bucket of `period` holding `time`. Times are wall-clock seconds as if UTC: a day
// starts at midnight, a week on Monday, a month on its first day.
int64_t BucketStart(int64_t time, const AggregationPeriod& period);

// Number of buckets of `period` the ascending `candles` fall into.
size_t CountBuckets(std::span<const PageCandle> candles, const AggregationPeriod& period);

// The finest period that brings `candles` to at most `maxCandles`; nothing when they already fit.
// When even the coarsest period gives more, the coarsest is taken.
std::optional<AggregationPeriod> ChoosePeriod(std::span<const PageCandle> candles,
                                              size_t maxCandles);

// One marker as drawn: at the time of a shown candle, standing for Count orders.
struct ShownMarker {
  int64_t Time = 0;
  MarkerKind Kind = MarkerKind::kBuy;
  double Price = 0.0;
  double Lots = 0.0;
  int Count = 1;
  std::string Text;
};

// Above this many markers, markers of one candle and one direction are merged into one.
inline constexpr size_t kMaxSeparateMarkers = 3000;

// The series as the page draws them.
struct ShownSeries {
  std::optional<AggregationPeriod> Period;  // nothing: shown at full resolution
  size_t SourceBars = 0;                    // candles before aggregation
  std::vector<PageCandle> Candles;
  std::vector<PageLine> Lines;
  std::vector<ShownMarker> Markers;
  std::vector<PagePoint> Equity;
  std::vector<PagePoint> Drawdown;
};

// Candles merged per bucket (first open, highest high, lowest low, last close); a line and the
// equity keep the last value of a bucket, the drawdown its lowest. Values that are not finite
// are left out. Markers move to the shown candle they fall in (the last at or before them);
// above `maxSeparateMarkers`, those of one candle and one direction become one marker with a
// count. Markers keep their order otherwise.
ShownSeries ShapeSeries(const PageData& data, size_t maxCandles = kMaxPageCandles,
                        size_t maxSeparateMarkers = kMaxSeparateMarkers);

// The text beside a marker: its own text, else kind, lots and price ("Buy 2 @ 3512.5"); a merged
// marker gives its count and total lots ("3 orders, 5 lots").
std::string MarkerText(const ShownMarker& marker);

}  // namespace qxrun

#endif  // QXRUN_PAGE_AGGREGATION_H_
