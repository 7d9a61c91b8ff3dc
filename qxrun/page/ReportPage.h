// The report page: one self-contained HTML file that opens offline.
#ifndef QXRUN_PAGE_REPORT_PAGE_H_
#define QXRUN_PAGE_REPORT_PAGE_H_

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

// Times on the page are local wall-clock seconds since 1970-01-01 as if they were UTC, so the
// chart shows the bars' local times.
struct PageCandle {
  int64_t Time = 0;
  double Open = 0.0;
  double High = 0.0;
  double Low = 0.0;
  double Close = 0.0;
};

struct PagePoint {
  int64_t Time = 0;
  double Value = 0.0;
};

// A plot series of the formula.
struct PageLine {
  std::string Name;
  std::string Color;     // "#rrggbb"
  bool OwnPane = false;  // false: drawn over the candles
  std::vector<PagePoint> Points;
};

enum class MarkerKind { kBuy, kSell, kSellShort, kBuyToCover, kLiveBuy, kLiveSell };

struct PageMarker {
  int64_t Time = 0;
  MarkerKind Kind = MarkerKind::kBuy;
  double Price = 0.0;
  double Lots = 0.0;
  std::string Text;  // shown beside the marker; empty: made from kind, lots and price
};

// One row of the statistics table. Key names the figure for scripts ("net_profit"); Cells hold
// one formatted text per column of PageData::StatColumns ("" where a figure has no value).
struct PageStatRow {
  std::string Key;
  std::string Label;
  std::vector<std::string> Cells;
};

struct PageMonthReturn {
  int Year = 0;
  int Month = 0;        // 1-12
  double Return = 0.0;  // fraction of the equity at the month's start
};

struct PageData {
  std::string Title;
  std::string Subtitle;
  std::vector<PageCandle> Candles;  // the main series at full resolution, oldest first
  std::vector<PageLine> Lines;
  std::vector<PageMarker> Markers;
  std::vector<PagePoint> Equity;         // one point per bar
  std::vector<PagePoint> Drawdown;       // one point per bar, <= 0
  std::vector<std::string> StatColumns;  // e.g. {"All", "Long", "Short"}
  std::vector<PageStatRow> Stats;
  std::vector<PageMonthReturn> Monthly;
  std::vector<std::string> Notes;  // conventions of the figures, shown under the table
};

// At most this many candles are drawn; longer series are aggregated to a coarser period, which
// the page names.
inline constexpr size_t kMaxPageCandles = 10000;

// Writes the page to `out`, with the chart library inlined.
void WriteReportPage(const PageData& data, std::ostream& out);

}  // namespace qxrun

#endif  // QXRUN_PAGE_REPORT_PAGE_H_
