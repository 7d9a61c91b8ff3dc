// The report page of a pool: the pool's equal-weight index as candles, the number of symbols
// held, equity and drawdown, the statistics table.
#ifndef QXRUN_POOL_POOL_PAGE_H_
#define QXRUN_POOL_POOL_PAGE_H_

#include "qxrun/page/ReportPage.h"
#include "qxrun/pool/PoolBook.h"
#include "qxrun/report/Figures.h"
#include "qxrun/report/Tables.h"

#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

// The pool's index on each date: the mean over the symbols with a bar that day of its open,
// high, low and close as percentages of the symbol's first close.
std::vector<QXBar> PoolIndex(const std::vector<PoolSymbol>& symbols, const PoolBook& book);

// The holdings chart: an SVG with a row per symbol and a bar over each stretch of dates it was
// held (blue long, red short), dates from left to right.
std::string HoldingsSvg(const std::vector<PoolSymbol>& symbols, const PoolBook& book);

PageData BuildPoolPageData(const RunHeading& heading, const RunFigures& figures,
                           const std::vector<PoolSymbol>& symbols, const PoolBook& book);

void WritePoolPage(std::ostream& out, const RunHeading& heading, const RunFigures& figures,
                   const std::vector<PoolSymbol>& symbols, const PoolBook& book);

}  // namespace qxrun

#endif  // QXRUN_POOL_POOL_PAGE_H_
