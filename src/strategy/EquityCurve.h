// The equity curve of the account: one point per bar, the drawdown state and the detail figures
// of report runs.
#ifndef SYSFUNCS_STRATEGY_EQUITY_CURVE_H_
#define SYSFUNCS_STRATEGY_EQUITY_CURVE_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace sysfuncs {

// Puts the point of a bar on the curve: it replaces the last point when that is of the same bar
// (a bar checked out again), else it is appended. The account's running sum of PercentEquity
// counts each bar once. Returns the point replaced, if any. Inline: a caller that ignores the
// result makes no copy.
inline std::optional<EquityPoint> PutEquityPoint(StrategyAccount& account,
                                                 const EquityPoint& point) {
  std::vector<EquityPoint>& curve = account.EquityCurve;
  if (!curve.empty() && curve.back().Bar == point.Bar) {
    const EquityPoint replaced = curve.back();
    curve.back() = point;
    account.PercentEquitySum += point.PercentEquity - replaced.PercentEquity;
    return replaced;
  }
  curve.push_back(point);
  account.PercentEquitySum += point.PercentEquity;
  return std::nullopt;
}

// The two moves of UpdateDrawDown below: a new peak, and a new trough.
void RaiseDrawDownPeak(AccountStatistics& stats, double basis);
void DeepenDrawDown(AccountStatistics& stats, double basis, int64_t time, bool percentMode,
                    ReportDetail* detail);

// Follows the drawdown basis `basis` of the bar at `time`:
// - above the Peak: a new peak (Peak = Trough = basis); a drawdown episode in progress is
//   finished and listed;
// - below the Trough: a new trough; the drawdown Peak - basis deepens the episode and the
//   maximum drawdown, and unless in PercentMode its ratio to the episode's Peak the maximum
//   ratio;
// - otherwise, equal values included, nothing changes.
// `detail`, when given, records the time and peak ratio of a new maximum drawdown.
inline void UpdateDrawDown(AccountStatistics& stats, double basis, int64_t time, bool percentMode,
                           ReportDetail* detail) {
  if (basis > stats.Peak) {
    RaiseDrawDownPeak(stats, basis);
  } else if (basis < stats.Trough) {
    DeepenDrawDown(stats, basis, time, percentMode, detail);
  }
}

// Adds a checked-out bar to the detail figures of a report run; `replaced` is the earlier point
// of the same bar, if it was checked out before.
void UpdateReportDetail(ReportDetail& detail, const EquityPoint& point, double basis,
                        const std::optional<EquityPoint>& replaced);

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_EQUITY_CURVE_H_
