#include "qxrun/report/Figures.h"

#include "qxrun/data/DateParsing.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace qxrun {
namespace {

constexpr double kMillisPerDay = 86400000.0;
constexpr double kDaysPerYear = 365.25;

// Mean and sample deviation of a list.
struct Moments {
  double Mean = 0.0;
  double Deviation = 0.0;
};
template <typename Values>
Moments MomentsOf(const Values& values) {
  Moments moments;
  const size_t count = values.size();
  if (count == 0) return moments;
  double sum = 0.0;
  for (double value : values) sum += value;
  moments.Mean = sum / static_cast<double>(count);
  if (count < 2) return moments;
  double squares = 0.0;
  for (double value : values) squares += (value - moments.Mean) * (value - moments.Mean);
  moments.Deviation = std::sqrt(squares / static_cast<double>(count - 1));
  return moments;
}

// Local year and month of instants in ascending order. No zone's offset is more than 26 hours
// from UTC, so an instant further than that from both ends of a month lies in that month whatever
// the offset: those are answered by arithmetic. Near the ends of a month an instant is converted;
// when it follows the last conversion closely (intraday bars), the bounds of its month are found
// too, so the many bars that follow need no conversion, while sparse bars (daily) would pay more
// for the bounds than for converting their few bars near a month's end.
class MonthOf {
 public:
  // YYYY * 100 + MM of `time` (milliseconds).
  int32_t operator()(int64_t time) {
    const int64_t seconds = time >= 0 ? time / 1000 : (time - 999) / 1000;
    if (seconds >= start_ && seconds < end_) return month_;
    const CivilDate early = DateOfLocalSeconds(seconds - kLargestOffset);
    const CivilDate late = DateOfLocalSeconds(seconds + kLargestOffset);
    if (early.Year == late.Year && early.Month == late.Month) {
      month_ = early.Year * 100 + early.Month;
      start_ = DaysFromCivil({early.Year, early.Month, 1}) * 86400 + kLargestOffset;
      end_ = DaysFromCivil(NextMonth(early)) * 86400 - kLargestOffset;
      return month_;
    }
    const std::time_t when = static_cast<std::time_t>(seconds);
    std::tm local{};
    localtime_r(&when, &local);
    month_ = (local.tm_year + 1900) * 100 + local.tm_mon + 1;
    const bool dense = converted_ && seconds > lastConverted_ && seconds - lastConverted_ < kDense;
    converted_ = true;
    lastConverted_ = seconds;
    if (!dense) {
      start_ = end_ = 0;  // no bounds: the next instant is looked at anew
      return month_;
    }
    std::tm first{};
    first.tm_year = local.tm_year;
    first.tm_mon = local.tm_mon;
    first.tm_mday = 1;
    first.tm_isdst = -1;
    start_ = std::mktime(&first);
    first = std::tm{};
    first.tm_year = local.tm_year + (local.tm_mon == 11 ? 1 : 0);
    first.tm_mon = (local.tm_mon + 1) % 12;
    first.tm_mday = 1;
    first.tm_isdst = -1;
    end_ = std::mktime(&first);
    return month_;
  }

 private:
  static constexpr int64_t kLargestOffset = 26 * 3600;
  static constexpr int64_t kDense = 6 * 3600;

  static CivilDate DateOfLocalSeconds(int64_t seconds) {
    return CivilFromDays(seconds >= 0 ? seconds / 86400 : (seconds - 86399) / 86400);
  }
  static CivilDate NextMonth(const CivilDate& date) {
    return date.Month == 12 ? CivilDate{date.Year + 1, 1, 1}
                            : CivilDate{date.Year, date.Month + 1, 1};
  }

  int64_t start_ = 1;  // [start_, end_) lies in month_
  int64_t end_ = 0;
  int32_t month_ = 0;
  bool converted_ = false;
  int64_t lastConverted_ = 0;
};

// The per-bar returns of an equity curve, r[i] = E[i] / E[i-1] - 1 for every bar whose previous
// equity is positive, read from the curve as they are iterated rather than held: a list of them
// would cost 8 bytes a bar at the run's peak memory.
class CurveReturns {
 public:
  CurveReturns(const std::vector<EquityPoint>& curve, double initCapital, size_t count)
      : curve_(curve), initCapital_(initCapital), count_(count) {}

  class Iterator {
   public:
    Iterator(const CurveReturns& owner, size_t index) : owner_(owner), index_(index) { Skip(); }
    double operator*() const { return owner_.curve_[index_].Equity / Previous() - 1.0; }
    Iterator& operator++() {
      ++index_;
      Skip();
      return *this;
    }
    bool operator!=(const Iterator& other) const { return index_ != other.index_; }

   private:
    double Previous() const {
      return index_ == 0 ? owner_.initCapital_ : owner_.curve_[index_ - 1].Equity;
    }
    void Skip() {
      while (index_ < owner_.curve_.size() && !(Previous() > 0.0)) ++index_;
    }
    const CurveReturns& owner_;
    size_t index_;
  };

  Iterator begin() const { return Iterator(*this, 0); }
  Iterator end() const { return Iterator(*this, curve_.size()); }
  size_t size() const { return count_; }  // the returns the iteration yields

 private:
  const std::vector<EquityPoint>& curve_;
  double initCapital_;
  size_t count_;
};

void FinishSide(TradeSide& side, const std::vector<double>& profits, double bars, double days,
                double mae, double mfe) {
  const double count = side.Trades;
  if (side.Trades == 0) return;
  side.ProfitFactor = side.GrossLoss < 0.0 ? side.GrossProfit / -side.GrossLoss : 0.0;
  side.WinRate = side.Winners / count;
  side.AverageTrade = side.NetProfit / count;
  side.AverageWin = side.Winners > 0 ? side.GrossProfit / side.Winners : 0.0;
  side.AverageLoss = side.Losers > 0 ? side.GrossLoss / side.Losers : 0.0;
  const Moments moments = MomentsOf(profits);
  side.Sqn = moments.Deviation > 0.0 ? std::sqrt(count) * moments.Mean / moments.Deviation : 0.0;
  side.AverageBars = bars / count;
  side.AverageDays = days / count;
  side.AverageMae = mae / count;
  side.AverageMfe = mfe / count;
}

// The side figures of the trades for which `take` holds.
template <typename Take>
TradeSide SideFigures(const std::vector<TradeRecord>& records,
                      const std::vector<TradeFigures>& trades, Take take) {
  TradeSide side;
  std::vector<double> profits;
  double bars = 0.0;
  double days = 0.0;
  double mae = 0.0;
  double mfe = 0.0;
  int32_t wins = 0;
  int32_t losses = 0;
  for (size_t i = 0; i < records.size(); ++i) {
    if (!take(records[i])) continue;
    const TradeFigures& trade = trades[i];
    const double net = trade.NetProfit;
    if (side.Trades == 0) side.BestTrade = side.WorstTrade = net;
    side.BestTrade = std::max(side.BestTrade, net);
    side.WorstTrade = std::min(side.WorstTrade, net);
    if (side.Trades == 0) side.WorstMae = trade.MaxAdverse, side.BestMfe = trade.MaxFavourable;
    side.WorstMae = std::min(side.WorstMae, trade.MaxAdverse);
    side.BestMfe = std::max(side.BestMfe, trade.MaxFavourable);
    ++side.Trades;
    side.NetProfit += net;
    profits.push_back(net);
    // A trade of zero net profit is even: it breaks both streaks.
    if (net > 0.0) {
      ++side.Winners;
      side.GrossProfit += net;
      ++wins;
      losses = 0;
    } else if (net < 0.0) {
      ++side.Losers;
      side.GrossLoss += net;
      ++losses;
      wins = 0;
    } else {
      wins = losses = 0;
    }
    side.MaxWinStreak = std::max(side.MaxWinStreak, wins);
    side.MaxLossStreak = std::max(side.MaxLossStreak, losses);
    bars += trade.Bars;
    days += static_cast<double>(trade.ExitTime - trade.EntryTime) / kMillisPerDay;
    mae += trade.MaxAdverse;
    mfe += trade.MaxFavourable;
  }
  FinishSide(side, profits, bars, days, mae, mfe);
  return side;
}

TradeFigures TradeOf(const TradeRecord& record, const std::vector<QXDataSource>& sources,
                     const std::vector<double>& lotValues) {
  TradeFigures trade;
  trade.NetProfit = record.NetProfit;
  trade.Bars = record.ExitBar - record.EntryBar;
  const size_t index = static_cast<size_t>(record.DataIndex);
  if (index >= sources.size()) return trade;
  const std::vector<QXBar>& bars = sources[index].Bars;
  const auto timeOf = [&bars](int32_t bar) {
    return bars.empty()
               ? 0
               : bars[std::clamp<size_t>(static_cast<size_t>(std::max(bar, 0)), 0, bars.size() - 1)]
                     .Time;
  };
  trade.EntryTime = timeOf(record.EntryBar);
  trade.ExitTime = timeOf(record.ExitBar);
  // Excursions over the bars after the entry bar up to the exit bar (the entry bar's range may
  // lie before the entry), bounded by the exit price.
  const bool isLong = (record.EntryKind & 0xFF) == kBuy;
  const double scale = (index < lotValues.size() ? lotValues[index] : 1.0) * record.Lots;
  double best = (record.ExitPrice - record.EntryPrice) * (isLong ? 1.0 : -1.0);
  double worst = best;
  const size_t last = std::min(static_cast<size_t>(std::max(record.ExitBar, 0)), bars.size() - 1);
  for (size_t bar = static_cast<size_t>(record.EntryBar) + 1; bar <= last && !bars.empty(); ++bar) {
    const double up = (bars[bar].High - record.EntryPrice) * (isLong ? 1.0 : -1.0);
    const double down = (bars[bar].Low - record.EntryPrice) * (isLong ? 1.0 : -1.0);
    best = std::max({best, up, down});
    worst = std::min({worst, up, down});
  }
  trade.MaxFavourable = std::max(best, 0.0) * scale;
  trade.MaxAdverse = std::min(worst, 0.0) * scale;
  return trade;
}

}  // namespace

RunFigures ComputeFigures(const std::vector<QXDataSource>& sources,
                          const std::vector<double>& lotValues, const StrategyAccount& account,
                          double initCapital) {
  RunFigures figures;
  figures.InitCapital = initCapital;
  figures.FinalEquity = initCapital;
  const std::vector<EquityPoint>& curve = account.EquityCurve;
  figures.Bars = static_cast<int32_t>(curve.size());
  if (!curve.empty()) {
    figures.FirstTime = curve.front().Time;
    figures.LastTime = curve.back().Time;
    figures.FinalEquity = curve.back().Equity;
  }
  figures.NetProfit = figures.FinalEquity - initCapital;
  figures.Years =
      static_cast<double>(figures.LastTime - figures.FirstTime) / kMillisPerDay / kDaysPerYear;
  const bool overADay = figures.LastTime - figures.FirstTime >= 86400000;
  if (overADay && figures.Bars > 1) figures.BarsPerYear = (figures.Bars - 1) / figures.Years;
  if (initCapital > 0.0) {
    figures.TotalReturn = figures.FinalEquity / initCapital - 1.0;
    if (overADay && figures.FinalEquity > 0.0) {
      figures.Cagr = std::pow(figures.FinalEquity / initCapital, 1.0 / figures.Years) - 1.0;
    }
  }

  // Returns, drawdown episodes, exposure and periods in one pass over the curve.
  size_t returnCount = 0;
  double downsideSquares = 0.0;
  double previous = initCapital;
  double peak = initCapital;
  size_t peakIndex = 0;
  int64_t peakTime = figures.FirstTime;
  double episodeDepth = 0.0;  // deepest fall of the open episode, fraction
  double depthSum = 0.0;
  double lengthSum = 0.0;
  int32_t episodes = 0;
  int32_t barsHeld = 0;
  MonthOf monthOf;
  int32_t month = 0;
  double monthStart = initCapital;
  double yearStart = initCapital;
  const auto closeEpisode = [&](size_t endIndex, int64_t endTime) {
    const int32_t length = static_cast<int32_t>(endIndex - peakIndex);
    if (length > figures.MaxDrawdownBars) {
      figures.MaxDrawdownBars = length;
      figures.MaxDrawdownDays = static_cast<double>(endTime - peakTime) / kMillisPerDay;
    }
    depthSum += episodeDepth;
    lengthSum += length;
    ++episodes;
    episodeDepth = 0.0;
  };
  for (size_t i = 0; i < curve.size(); ++i) {
    const double equity = curve[i].Equity;
    if (previous > 0.0) {
      const double r = equity / previous - 1.0;
      ++returnCount;
      if (r < 0.0) downsideSquares += r * r;
    }
    previous = equity;
    if (equity > peak) {
      if (episodeDepth > 0.0) closeEpisode(i, curve[i].Time);
      peak = equity;
      peakIndex = i;
      peakTime = curve[i].Time;
    } else if (equity < peak) {
      figures.MaxDrawdown = std::min(figures.MaxDrawdown, equity - peak);
      if (peak > 0.0) {
        const double depth = (peak - equity) / peak;
        episodeDepth = std::max(episodeDepth, depth);
        figures.MaxDrawdownPct = std::max(figures.MaxDrawdownPct, depth);
      }
    }
    if (curve[i].LongLots + curve[i].ShortLots > 0.0) ++barsHeld;
    // Periods: a month ends at its last bar.
    const int32_t thisMonth = monthOf(curve[i].Time);
    if (i + 1 == curve.size() || monthOf(curve[i + 1].Time) != thisMonth) {
      month = thisMonth;
      PeriodReturn period{month / 100, month % 100, 0.0, equity - monthStart};
      period.Return = monthStart > 0.0 ? equity / monthStart - 1.0 : 0.0;
      figures.Months.push_back(period);
      monthStart = equity;
      if (i + 1 == curve.size() || monthOf(curve[i + 1].Time) / 100 != thisMonth / 100) {
        PeriodReturn year{thisMonth / 100, 0, 0.0, equity - yearStart};
        year.Return = yearStart > 0.0 ? equity / yearStart - 1.0 : 0.0;
        figures.YearReturns.push_back(year);
        yearStart = equity;
      }
      // Back to the month of this bar for the next call.
      monthOf(curve[i].Time);
    }
  }
  if (episodeDepth > 0.0 && !curve.empty()) closeEpisode(curve.size() - 1, curve.back().Time);
  if (episodes > 0) {
    figures.AverageDrawdownPct = depthSum / episodes;
    figures.AverageDrawdownBars = lengthSum / episodes;
  }
  if (!curve.empty()) figures.Exposure = static_cast<double>(barsHeld) / curve.size();

  const Moments moments = MomentsOf(CurveReturns(curve, initCapital, returnCount));
  const double annual = std::sqrt(figures.BarsPerYear);
  figures.Volatility = moments.Deviation * annual;
  if (moments.Deviation > 0.0) figures.Sharpe = moments.Mean / moments.Deviation * annual;
  if (downsideSquares > 0.0) {
    figures.Sortino = moments.Mean / std::sqrt(downsideSquares / returnCount) * annual;
  }
  if (figures.MaxDrawdownPct > 0.0) figures.Calmar = figures.Cagr / figures.MaxDrawdownPct;
  if (figures.MaxDrawdown < 0.0) figures.RecoveryFactor = figures.NetProfit / -figures.MaxDrawdown;

  const std::vector<TradeRecord>& records = account.Trades;
  figures.Trades.reserve(records.size());
  for (const TradeRecord& record : records) {
    figures.Trades.push_back(TradeOf(record, sources, lotValues));
  }
  figures.All = SideFigures(records, figures.Trades, [](const TradeRecord&) { return true; });
  figures.Long = SideFigures(records, figures.Trades,
                             [](const TradeRecord& r) { return (r.EntryKind & 0xFF) == kBuy; });
  figures.Short = SideFigures(records, figures.Trades, [](const TradeRecord& r) {
    return (r.EntryKind & 0xFF) == kSellShort;
  });
  return figures;
}

}  // namespace qxrun
