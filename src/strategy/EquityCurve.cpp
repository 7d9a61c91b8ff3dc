#include "strategy/EquityCurve.h"

#include "strategy/MoneyRules.h"

#include <algorithm>

namespace sysfuncs {
namespace {

bool UsesMargin(const EquityPoint& point) {
  return point.LongMargin + point.ShortMargin > kAmountTolerance;
}

}  // namespace

void RaiseDrawDownPeak(AccountStatistics& stats, double basis) {
  stats.Peak = basis;
  stats.Trough = basis;
  if (stats.EpisodeDrawDown < 0.0) stats.EpisodeDrawDowns.push_back(stats.EpisodeDrawDown);
  stats.EpisodeDrawDown = 0.0;
}

void DeepenDrawDown(AccountStatistics& stats, double basis, int64_t time, bool percentMode,
                    ReportDetail* detail) {
  stats.Trough = basis;
  const double drawDown = stats.Peak - basis;
  // The ratio is taken against the peak of the episode in progress.
  const double ratio = drawDown / stats.Peak;
  stats.EpisodeDrawDown = std::min(stats.EpisodeDrawDown, -drawDown);
  if (-drawDown < stats.MaxDrawDown) {
    stats.MaxDrawDown = -drawDown;
    if (detail != nullptr) {
      detail->MaxDrawDownTime = time;
      detail->MaxDrawDownPeakRatio = ratio;
    }
  }
  if (!percentMode && ratio > stats.MaxDrawDownRatio) stats.MaxDrawDownRatio = ratio;
}

void UpdateReportDetail(ReportDetail& detail, const EquityPoint& point, double basis,
                        const std::optional<EquityPoint>& replaced) {
  if (replaced && UsesMargin(*replaced)) --detail.MarginBars;
  if (UsesMargin(point)) ++detail.MarginBars;
  detail.MaxTotalMargin = std::max(detail.MaxTotalMargin, point.LongMargin + point.ShortMargin);
  detail.MaxLongMargin = std::max(detail.MaxLongMargin, point.LongMargin);
  detail.MaxShortMargin = std::max(detail.MaxShortMargin, point.ShortMargin);
  detail.MaxTotalLots = std::max(detail.MaxTotalLots, point.LongLots + point.ShortLots);
  detail.MaxLongLots = std::max(detail.MaxLongLots, point.LongLots);
  detail.MaxShortLots = std::max(detail.MaxShortLots, point.ShortLots);
  detail.HighestEquity = std::max(detail.HighestEquity, point.Equity);
  detail.LowestEquity = std::min(detail.LowestEquity, point.Equity);
  if (basis > detail.HighestBasis) {
    detail.HighestBasis = basis;
    detail.HighestBasisTime = point.Time;
  }
  detail.LowestBasis = std::min(detail.LowestBasis, basis);
}

}  // namespace sysfuncs
