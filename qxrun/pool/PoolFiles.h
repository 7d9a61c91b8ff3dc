// The files of a pool run besides those of a back-test: the holdings over time and every
// decision with its sort values and ranks.
#ifndef QXRUN_POOL_POOL_FILES_H_
#define QXRUN_POOL_POOL_FILES_H_

#include "qxrun/pool/PoolBook.h"

#include <ostream>
#include <vector>

namespace qxrun {

// holdings.csv: per date, the symbols held ("held") and a column per symbol (1 long, -1 short,
// 0 flat).
void WriteHoldingsCsv(std::ostream& out, const std::vector<PoolSymbol>& symbols,
                      const PoolBook& book);

// decisions.csv: per symbol and bar with a check point: the decision, whether it counted, and
// each criterion's sort value and rank ("criterion:value" and "criterion:rank" lists, ';' apart).
void WriteDecisionsCsv(std::ostream& out, const std::vector<PoolSymbol>& symbols);

}  // namespace qxrun

#endif  // QXRUN_POOL_POOL_FILES_H_
