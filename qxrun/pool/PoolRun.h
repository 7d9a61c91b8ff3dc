// A stock pool run: one formula instance per symbol, each over its own host data object, sharing
// nothing but the ranking.
//
// The pool walks the dates of all its symbols in order. On each date, the symbols with a bar
// then are evaluated twice: a first run of every body gives the sort values (no rank is there
// yet, so a picker reads none); the host ranks the pool by them (PoolRanking.h) and writes each
// symbol's ranks into its ranking table under the bar's time; a second run of every body reads
// them and decides, and the bar is checked out. A symbol without a bar on a date is not evaluated
// and takes no rank. The check point of the first run is dropped, so only the second run's
// decision counts.
#ifndef QXRUN_POOL_POOL_RUN_H_
#define QXRUN_POOL_POOL_RUN_H_

#include "sysfuncs/HostData.h"

#include "qxrun/Formula.h"
#include "qxrun/config/RunFile.h"
#include "qxrun/host/HostRun.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qxrun {

struct PoolMember {
  RunSettings Settings;               // the member's symbol alone
  std::vector<QXDataSource> Sources;  // its bar series, one
  std::unique_ptr<HostInstance> Instance;
};

// Runs `info` on every member (PoolSize: the members; PoolMode set). `progress` receives the
// dates done.
void RunPool(std::vector<PoolMember>& members, const FormulaInfo& info,
             const std::map<std::string, double>& params,
             const std::function<void(int64_t done, int64_t total)>& progress = {});

}  // namespace qxrun

#endif  // QXRUN_POOL_POOL_RUN_H_
