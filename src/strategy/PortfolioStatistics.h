// Portfolio statistics over every series of an instance: the pure rules. The functions that sum
// over the series are operations of SFImpl; the trade counts and results are the statistics of
// LedgerStatistics.h read from the account's block.
#ifndef SYSFUNCS_STRATEGY_PORTFOLIO_STATISTICS_H_
#define SYSFUNCS_STRATEGY_PORTFOLIO_STATISTICS_H_

#include "sysfuncs/HostData.h"

namespace sysfuncs {

// NumWin / TotalTrades in whole numbers, as a double: 1.0 when every trade won, else 0.0; 0.0 with
// no trades. (A series' PercentProfit divides as doubles.)
double PortfolioPercentProfit(const AccountStatistics& stats);

// MaxDrawDown, deepened to liveEquity - Peak when the live equity is below the Trough and above
// 0.0001: the drawdown of the bar in progress before its checkout records it. 0 with no drawdown.
double LiveMaxDrawDown(const AccountStatistics& stats, double liveEquity);

// In PercentMode LiveMaxDrawDown / 100; otherwise MaxDrawDownRatio, raised to
// (Peak - liveEquity) / Peak under the same condition as LiveMaxDrawDown. 0 with no drawdown.
double LiveMaxDrawDownRatio(const AccountStatistics& stats, double liveEquity, bool percentMode);

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_PORTFOLIO_STATISTICS_H_
