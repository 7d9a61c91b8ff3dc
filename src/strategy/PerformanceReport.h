// The end-of-run performance report. Each figure is one function of the account (and of the
// host's settings) with its formula in a one-line comment; ComputeReport fills the parts the
// output mode asks for.
//
// Trade figures are booked values: money, or returns in percent in PercentMode. Figures of the
// equity curve are money.
#ifndef SYSFUNCS_STRATEGY_PERFORMANCE_REPORT_H_
#define SYSFUNCS_STRATEGY_PERFORMANCE_REPORT_H_

#include "sysfuncs/HostData.h"

#include <vector>

namespace sysfuncs {

// --- Summary.

// GrossProfit / -GrossLoss; 0 without a losing trade.
double ProfitFactor(const AccountStatistics& stats);
// Equity of the last point of the curve; InitCapital with no point.
double FinalEquity(const StrategyAccount& account, double initCapital);
// (final equity - InitCapital) / InitCapital; 0 when InitCapital <= 0.
double ReturnOnInitialCapital(const StrategyAccount& account, double initCapital);
// Return on initial capital x 365 / days from the first to the last point; 0 within a day.
double AnnualReturn(const StrategyAccount& account, double initCapital);
// Mean / sample deviation of the bar returns E[i] / E[i-1] - 1 (E[i-1] > 0); 0 below 2 returns.
double SharpeRatio(const StrategyAccount& account);
// Share of the bars with lots held, between 0 and 1; 0 with no point.
double TimeInMarket(const StrategyAccount& account);

// --- Trade analysis.

// NetProfit / TotalTrades; 0 with no trades.
double AverageTrade(const AccountStatistics& stats);
// GrossProfit / NumWin; 0 without a winning trade.
double AverageWin(const AccountStatistics& stats);
// GrossLoss / NumLos (<= 0); 0 without a losing trade.
double AverageLoss(const AccountStatistics& stats);
// AverageWin / -AverageLoss; 0 without a losing trade.
double WinLossRatio(const AccountStatistics& stats);
// TotalBarsWin / NumWin as a fraction; 0 without a winning trade.
double AverageBarsWinners(const AccountStatistics& stats);
// TotalBarsLos / NumLos as a fraction; 0 without a losing trade.
double AverageBarsLosers(const AccountStatistics& stats);
// Lot-weighted counts and booked results of the closed long (or short) trades; 0 without.
SideResult SideOf(const std::vector<TradeRecord>& trades, bool longSide, bool percentMode);

// --- Detail.

// Per year (YYYY) and per month (YYYYMM) of the curve: capital at its end - capital at its
// start, and that / capital at its start (0 when that is 0 or below); empty with no point. One
// pass over the curve fills both lists.
void PeriodResults(const StrategyAccount& account, double initCapital,
                   std::vector<PeriodResult>& years, std::vector<PeriodResult>& months);
// Share of the bars with margin in use, between 0 and 1; 0 with no point.
double MarginUse(const StrategyAccount& account);

// The report of a run: the summary when OutputMode is 2, or 1 with SuppressSummary clear; the
// trade analysis when OutputMode is 1 or more; the detail (periods and margin figures) when it is
// 2. Nothing with OutputMode 0.
PerformanceReport ComputeReport(const StrategyAccount& account, const CQXBaseData& settings);

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_PERFORMANCE_REPORT_H_
