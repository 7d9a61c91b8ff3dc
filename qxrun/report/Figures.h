// The figures of a run that a person comparing back-testers looks for, computed from the
// library's equity curve and trade list. Each is defined once, with its formula, below.
//
// Conventions: returns are fractions; per-bar returns are r[i] = E[i] / E[i-1] - 1 over the
// equity curve E (one point per bar, E[-1] = initial capital); a year holds B bars, where
// B = (bars - 1) / (years from the first to the last bar), so daily, intraday and session-only
// series annualise by their own spacing; the risk-free rate is 0; money figures are in the
// account's currency; trade figures count each closed trade record (an entry, or the part of an
// entry, matched against an exit) once.
#ifndef QXRUN_REPORT_FIGURES_H_
#define QXRUN_REPORT_FIGURES_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <vector>

namespace qxrun {

// Money and the excursions of one closed trade.
struct TradeFigures {
  double NetProfit = 0.0;
  double MaxAdverse = 0.0;     // worst open profit while held, <= 0
  double MaxFavourable = 0.0;  // best open profit while held, >= 0
  int64_t EntryTime = 0;
  int64_t ExitTime = 0;
  int32_t Bars = 0;  // exit bar - entry bar
};

struct PeriodReturn {
  int32_t Year = 0;
  int32_t Month = 0;  // 1-12; 0 for a whole year
  double Return = 0.0;
  double NetProfit = 0.0;
};

// The figures of one side (all, long or short trades).
struct TradeSide {
  int32_t Trades = 0;
  int32_t Winners = 0;
  int32_t Losers = 0;
  double NetProfit = 0.0;
  double GrossProfit = 0.0;
  double GrossLoss = 0.0;
  double ProfitFactor = 0.0;  // GrossProfit / -GrossLoss; 0 without a loss
  double WinRate = 0.0;       // Winners / Trades
  double AverageTrade = 0.0;  // NetProfit / Trades (the expectancy of a trade)
  double AverageWin = 0.0;    // GrossProfit / Winners
  double AverageLoss = 0.0;   // GrossLoss / Losers, <= 0
  double BestTrade = 0.0;     // largest net profit of a trade
  double WorstTrade = 0.0;    // smallest net profit of a trade
  double Sqn = 0.0;           // sqrt(Trades) x mean / sample deviation of trade profits
  double AverageBars = 0.0;   // mean of exit bar - entry bar
  double AverageDays = 0.0;   // mean of (exit time - entry time) in days
  double AverageMae = 0.0;    // mean of the trades' MaxAdverse
  double AverageMfe = 0.0;    // mean of the trades' MaxFavourable
  double WorstMae = 0.0;      // smallest MaxAdverse
  double BestMfe = 0.0;       // largest MaxFavourable
  int32_t MaxWinStreak = 0;   // most winners in a row, in exit order
  int32_t MaxLossStreak = 0;  // most losers in a row
};

struct RunFigures {
  int32_t Bars = 0;
  int64_t FirstTime = 0;
  int64_t LastTime = 0;
  double Years = 0.0;        // (last time - first time) / 365.25 days
  double BarsPerYear = 0.0;  // (Bars - 1) / Years; 0 within a day
  double InitCapital = 0.0;
  double FinalEquity = 0.0;
  double NetProfit = 0.0;            // FinalEquity - InitCapital
  double TotalReturn = 0.0;          // FinalEquity / InitCapital - 1
  double Cagr = 0.0;                 // (FinalEquity / InitCapital)^(1 / Years) - 1; 0 within a day
  double Volatility = 0.0;           // sample deviation of r x sqrt(BarsPerYear)
  double Sharpe = 0.0;               // mean(r) / sample deviation(r) x sqrt(BarsPerYear)
  double Sortino = 0.0;              // mean(r) / sqrt(mean(min(r, 0)^2)) x sqrt(BarsPerYear)
  double MaxDrawdown = 0.0;          // largest fall of E from its running peak, money, <= 0
  double MaxDrawdownPct = 0.0;       // largest fall of E over its running peak, fraction, >= 0
  double AverageDrawdownPct = 0.0;   // mean depth of the drawdown episodes, fraction
  int32_t MaxDrawdownBars = 0;       // longest episode: bars from a peak to the next new peak
  double MaxDrawdownDays = 0.0;      // the same in calendar days
  double AverageDrawdownBars = 0.0;  // mean episode length in bars
  double Calmar = 0.0;               // Cagr / MaxDrawdownPct; 0 without a drawdown
  double RecoveryFactor = 0.0;       // NetProfit / -MaxDrawdown; 0 without a drawdown
  double Exposure = 0.0;             // share of the bars with lots held after the checkout
  TradeSide All;
  TradeSide Long;
  TradeSide Short;
  std::vector<TradeFigures> Trades;       // in the account's trade order
  std::vector<PeriodReturn> Months;       // E at the month's last bar / E before it - 1
  std::vector<PeriodReturn> YearReturns;  // the same per calendar year
};

// The lot value of each data source, for the excursions of its trades: money per unit of price
// and lot (contract unit x big point value).
RunFigures ComputeFigures(const std::vector<QXDataSource>& sources,
                          const std::vector<double>& lotValues, const StrategyAccount& account,
                          double initCapital);

}  // namespace qxrun

#endif  // QXRUN_REPORT_FIGURES_H_
