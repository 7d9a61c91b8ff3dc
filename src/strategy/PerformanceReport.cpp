#include "strategy/PerformanceReport.h"

#include "strategy/LedgerStatistics.h"
#include "strategy/MoneyRules.h"
#include "strategy/TradeMatching.h"
#include "util/LocalCalendar.h"

#include <cmath>

namespace sysfuncs {
namespace {

constexpr double kMillisPerDay = 86400000.0;
constexpr double kDaysPerYear = 365.0;

// a / b, or 0 when b is 0.
double Share(double a, double b) { return b != 0.0 ? a / b : 0.0; }

}  // namespace

double ProfitFactor(const AccountStatistics& stats) {
  if (stats.GrossLoss > -kAmountTolerance) return 0.0;
  return stats.GrossProfit / -stats.GrossLoss;
}

double FinalEquity(const StrategyAccount& account, double initCapital) {
  return account.EquityCurve.empty() ? initCapital : account.EquityCurve.back().Equity;
}

double ReturnOnInitialCapital(const StrategyAccount& account, double initCapital) {
  if (initCapital <= 0.0) return 0.0;
  return (FinalEquity(account, initCapital) - initCapital) / initCapital;
}

double AnnualReturn(const StrategyAccount& account, double initCapital) {
  const std::vector<EquityPoint>& curve = account.EquityCurve;
  if (curve.empty()) return 0.0;
  const double days = static_cast<double>(curve.back().Time - curve.front().Time) / kMillisPerDay;
  if (days < 1.0) return 0.0;
  return ReturnOnInitialCapital(account, initCapital) * kDaysPerYear / days;
}

double SharpeRatio(const StrategyAccount& account) {
  const std::vector<EquityPoint>& curve = account.EquityCurve;
  // Welford's running mean and sum of squared deviations.
  int64_t count = 0;
  double mean = 0.0;
  double squares = 0.0;
  for (size_t index = 1; index < curve.size(); ++index) {
    const double previous = curve[index - 1].Equity;
    if (previous <= 0.0) continue;
    const double value = curve[index].Equity / previous - 1.0;
    ++count;
    const double delta = value - mean;
    mean += delta / static_cast<double>(count);
    squares += delta * (value - mean);
  }
  if (count < 2) return 0.0;
  const double deviation = std::sqrt(squares / static_cast<double>(count - 1));
  return Share(mean, deviation);
}

double TimeInMarket(const StrategyAccount& account) {
  int64_t held = 0;
  for (const EquityPoint& point : account.EquityCurve) {
    if (point.LongLots + point.ShortLots > 0.0) ++held;
  }
  return Share(static_cast<double>(held), static_cast<double>(account.EquityCurve.size()));
}

double AverageTrade(const AccountStatistics& stats) {
  return Share(NetProfit(stats), TotalTrades(stats));
}

double AverageWin(const AccountStatistics& stats) { return Share(stats.GrossProfit, stats.NumWin); }

double AverageLoss(const AccountStatistics& stats) { return Share(stats.GrossLoss, stats.NumLos); }

double WinLossRatio(const AccountStatistics& stats) {
  return Share(AverageWin(stats), -AverageLoss(stats));
}

double AverageBarsWinners(const AccountStatistics& stats) {
  return Share(stats.TotalBarsWin, stats.NumWin);
}

double AverageBarsLosers(const AccountStatistics& stats) {
  return Share(stats.TotalBarsLos, stats.NumLos);
}

SideResult SideOf(const std::vector<TradeRecord>& trades, bool longSide, bool percentMode) {
  SideResult side;
  for (const TradeRecord& trade : trades) {
    if (IsLongKind(trade.EntryKind) != longSide) continue;
    const int32_t lots = static_cast<int32_t>(trade.Lots);
    const double value = BookedValue(trade, percentMode);
    side.Trades += lots;
    if (value > kAmountTolerance) {
      side.WinningTrades += lots;
      side.GrossProfit += value;
    } else if (value < -kAmountTolerance) {
      side.GrossLoss += value;
    }
  }
  side.NetProfit = side.GrossProfit + side.GrossLoss;
  return side;
}

namespace {

// The periods of the curve, point by point: each new period starts from the capital the last one
// ended with.
class PeriodTally {
 public:
  PeriodTally(std::vector<PeriodResult>& periods, double initCapital)
      : periods_(periods), startCapital_(initCapital) {
    periods_.clear();
  }

  void Add(int32_t period, double capital) {
    if (periods_.empty() || periods_.back().Period != period) {
      if (!periods_.empty()) startCapital_ = lastCapital_;
      periods_.push_back({period, 0.0, 0.0});
    }
    lastCapital_ = capital;
    PeriodResult& current = periods_.back();
    current.NetProfit = lastCapital_ - startCapital_;
    current.Return = startCapital_ > 0.0 ? current.NetProfit / startCapital_ : 0.0;
  }

 private:
  std::vector<PeriodResult>& periods_;
  double startCapital_;
  double lastCapital_ = startCapital_;
};

}  // namespace

void PeriodResults(const StrategyAccount& account, double initCapital,
                   std::vector<PeriodResult>& years, std::vector<PeriodResult>& months) {
  PeriodTally yearTally(years, initCapital);
  PeriodTally monthTally(months, initCapital);
  // The local month of a point serves both lists.
  LocalCalendar calendar;
  for (const EquityPoint& point : account.EquityCurve) {
    const int32_t month = calendar.YearMonth(InstantSeconds(point.Time));
    yearTally.Add(month / 100, point.Capital);
    monthTally.Add(month, point.Capital);
  }
}

double MarginUse(const StrategyAccount& account) {
  return Share(account.Detail.MarginBars, static_cast<double>(account.EquityCurve.size()));
}

PerformanceReport ComputeReport(const StrategyAccount& account, const CQXBaseData& settings) {
  PerformanceReport report;
  const int32_t mode = settings.OutputMode;
  const double initCapital = settings.InitCapital;
  const AccountStatistics& stats = account.Stats;
  report.HasSummary = mode == 2 || (mode == 1 && !settings.SuppressSummary);
  report.HasTradeAnalysis = mode >= 1;
  report.HasDetail = mode == 2;
  if (report.HasSummary) {
    report.InitCapital = initCapital;
    report.FinalEquity = FinalEquity(account, initCapital);
    report.NetProfit = NetProfit(stats);
    report.GrossProfit = GrossProfit(stats);
    report.GrossLoss = GrossLoss(stats);
    report.ProfitFactor = ProfitFactor(stats);
    report.MaxDrawDown = stats.MaxDrawDown;
    report.MaxDrawDownRatio = stats.MaxDrawDownRatio;
    report.ReturnOnInitialCapital = ReturnOnInitialCapital(account, initCapital);
    report.AnnualReturn = AnnualReturn(account, initCapital);
    report.SharpeRatio = SharpeRatio(account);
    report.TimeInMarket = TimeInMarket(account);
  }
  if (report.HasTradeAnalysis) {
    report.TotalTrades = TotalTrades(stats);
    report.WinningTrades = NumWinTrades(stats);
    report.LosingTrades = NumLosTrades(stats);
    report.EvenTrades = NumEvenTrades(stats);
    report.PercentProfitable = PercentProfit(stats);
    report.AvgTrade = AverageTrade(stats);
    report.AvgWin = AverageWin(stats);
    report.AvgLoss = AverageLoss(stats);
    report.WinLossRatio = WinLossRatio(stats);
    report.LargestWin = LargestWinTrade(stats);
    report.LargestLoss = LargestLosTrade(stats);
    report.MaxConsecWinners = MaxConsecWinners(stats);
    report.MaxConsecLosers = MaxConsecLosers(stats);
    report.AvgBarsWinners = AverageBarsWinners(stats);
    report.AvgBarsLosers = AverageBarsLosers(stats);
    report.Long = SideOf(account.Trades, true, settings.PercentMode);
    report.Short = SideOf(account.Trades, false, settings.PercentMode);
  }
  if (report.HasDetail) {
    report.MarginUse = MarginUse(account);
    report.MaxMarginUsed = account.Detail.MaxTotalMargin;
    report.MaxLotsHeld = account.Detail.MaxTotalLots;
    PeriodResults(account, initCapital, report.Years, report.Months);
  }
  return report;
}

}  // namespace sysfuncs
