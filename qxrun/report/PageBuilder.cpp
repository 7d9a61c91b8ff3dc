#include "qxrun/report/PageBuilder.h"

#include <algorithm>
#include <climits>
#include <ctime>
#include <string>

namespace qxrun {
namespace {

// Page times are local wall-clock seconds as if they were UTC.
class WallClock {
 public:
  int64_t operator()(int64_t millis) {
    const int64_t seconds = millis >= 0 ? millis / 1000 : (millis - 999) / 1000;
    const int64_t block = seconds >= 0 ? seconds / 900 : (seconds - 899) / 900;
    if (block != block_) {
      block_ = block;
      const std::time_t start = static_cast<std::time_t>(block * 900);
      std::tm local{};
      localtime_r(&start, &local);
      offset_ = local.tm_gmtoff;
    }
    return seconds + offset_;
  }

 private:
  int64_t block_ = INT64_MIN;
  int64_t offset_ = 0;
};

constexpr const char* kColours[] = {"#2962ff", "#ff6d00", "#00897b", "#d81b60",
                                    "#6d4c41", "#8e24aa", "#43a047", "#fdd835"};

MarkerKind MarkerOf(uint32_t kind) {
  switch (kind & 0xFF) {
    case kSell:
      return MarkerKind::kSell;
    case kSellShort:
      return MarkerKind::kSellShort;
    case kBuyToCover:
      return MarkerKind::kBuyToCover;
    default:
      return MarkerKind::kBuy;
  }
}

}  // namespace

PageData BuildPageData(const RunHeading& heading, const RunFigures& figures,
                       const CQXBaseData& data, const std::vector<LiveOrderMarker>& live) {
  PageData page;
  WallClock wall;
  page.Title = heading.Formula + " on " + (heading.Symbols.empty() ? "" : heading.Symbols[0]);
  for (const auto& [name, value] : heading.Params) {
    page.Subtitle +=
        name + "=" +
        std::to_string(value).substr(0, std::to_string(value).find_last_not_of('0') + 1) + " ";
  }
  const std::vector<QXBar>& bars = (*data.DataSources)[0].Bars;
  page.Candles.reserve(bars.size());
  for (const QXBar& bar : bars) {
    page.Candles.push_back({wall(bar.Time), bar.Open, bar.High, bar.Low, bar.Close});
  }
  size_t colour = 0;
  for (const PlotSeries& series : data.Plots) {
    PageLine line;
    line.Name = series.name;
    line.Color = kColours[colour++ % (sizeof(kColours) / sizeof(kColours[0]))];
    // A series far from the prices (an oscillator) gets a pane of its own.
    double sum = 0.0;
    size_t count = 0;
    for (size_t bar = 0; bar < series.Size() && bar < bars.size(); ++bar) {
      if (!series.NumericSet(bar)) continue;
      const double value = series.NumericValue(bar);
      line.Points.push_back({page.Candles[bar].Time, value});
      sum += value / (bars[bar].Close != 0.0 ? bars[bar].Close : 1.0);
      ++count;
    }
    const double meanRatio = count > 0 ? sum / static_cast<double>(count) : 1.0;
    line.OwnPane = meanRatio < 0.5 || meanRatio > 2.0;
    if (!line.Points.empty()) page.Lines.push_back(std::move(line));
  }
  for (const StrategyLedger& ledger : data.Ledgers) {
    for (const OrderRecord& order : ledger.Orders) {
      if (order.DataIndex != 0) continue;
      page.Markers.push_back({page.Candles[static_cast<size_t>(order.Bar)].Time,
                              MarkerOf(order.Kind), order.Price, order.Lots, ""});
    }
  }
  for (const LiveOrderMarker& order : live) {
    // Bars are stamped at their end: the order belongs to the first bar stamped at or after it.
    const auto bar = std::lower_bound(bars.begin(), bars.end(), order.Time,
                                      [](const QXBar& b, int64_t time) { return b.Time < time; });
    if (bar == bars.end()) continue;
    page.Markers.push_back({page.Candles[static_cast<size_t>(bar - bars.begin())].Time,
                            order.Buy ? MarkerKind::kLiveBuy : MarkerKind::kLiveSell, order.Price,
                            order.Lots, order.Text});
  }
  std::sort(page.Markers.begin(), page.Markers.end(),
            [](const PageMarker& a, const PageMarker& b) { return a.Time < b.Time; });
  const std::vector<EquityPoint>& curve = data.Account->EquityCurve;
  page.Equity.reserve(curve.size());
  page.Drawdown.reserve(curve.size());
  double peak = figures.InitCapital;
  for (const EquityPoint& point : curve) {
    const int64_t time = wall(point.Time);
    peak = std::max(peak, point.Equity);
    page.Equity.push_back({time, point.Equity});
    page.Drawdown.push_back({time, point.Equity - peak});
  }
  page.StatColumns = {"All", "Long", "Short"};
  for (const StatRow& row : StatRows(figures)) {
    page.Stats.push_back(
        {row.Key,
         row.Label,
         {FormatStat(row, row.All), FormatStat(row, row.Long), FormatStat(row, row.Short)}});
  }
  for (const PeriodReturn& month : figures.Months) {
    page.Monthly.push_back({month.Year, month.Month, month.Return});
  }
  page.Notes = {
      "Returns are fractions of the equity before them; per-bar returns r = E[i] / E[i-1] - 1.",
      "A year holds (bars - 1) / years bars, from the series' own spacing and sessions; the "
      "risk-free rate is 0.",
      "CAGR = (final / initial equity)^(1 / years) - 1; Sharpe = mean(r) / sd(r) x sqrt(bars "
      "per year); Sortino uses sqrt(mean(min(r, 0)^2)).",
      "Drawdowns are measured on the equity at each bar's close against its running peak; an "
      "episode ends at a new peak.",
      "Market orders fill at the bar's close rounded to the tick; the end of a report run closes "
      "open positions at the last close.",
      "Trade figures count each closed trade record once; excursions use the bars after the "
      "entry bar up to the exit."};
  return page;
}

bool WriteReportPageFile(OutputFolder& folder, const RunHeading& heading, const RunFigures& figures,
                         const CQXBaseData& data, const std::vector<LiveOrderMarker>& live) {
  const PageData page = BuildPageData(heading, figures, data, live);
  folder.Write("report.html", [&page](std::ostream& out) { WriteReportPage(page, out); });
  return true;
}

}  // namespace qxrun
