// The results of a run as a person reads them: the heading and figures, and the files of the
// output folder. Every mode that runs a formula over a series reports through here.
#ifndef QXRUN_REPORT_RUN_FILES_H_
#define QXRUN_REPORT_RUN_FILES_H_

#include "sysfuncs/HostData.h"

#include "qxrun/Formula.h"
#include "qxrun/config/RunFile.h"
#include "qxrun/report/Figures.h"
#include "qxrun/report/OutputFolder.h"
#include "qxrun/report/PageBuilder.h"
#include "qxrun/report/Tables.h"

#include <map>
#include <string>
#include <vector>

namespace qxrun {

// Money per point per lot of each symbol: contract unit × big point value (the latter as the
// library keeps it, a float).
std::vector<double> LotValues(const RunSettings& settings);

// The figures of a finished run over `sources`.
RunFigures ComputeRunFigures(const RunSettings& settings, const std::vector<QXDataSource>& sources,
                             const StrategyAccount& account);

RunHeading MakeHeading(const FormulaInfo& info, const std::map<std::string, double>& params,
                       const RunSettings& settings, const std::vector<QXDataSource>& sources);

// Writes report.json, equity.csv, trades.csv, orders.csv, plots.csv and, when `page` is set,
// report.html (with `live` orders marked beside the signal orders). Returns the seconds the page
// took (0 without it).
double WriteRunFiles(OutputFolder& folder, const RunHeading& heading, const RunFigures& figures,
                     const CQXBaseData& data, const std::vector<QXDataSource>& sources,
                     double initCapital, bool page, const std::vector<LiveOrderMarker>& live = {});

}  // namespace qxrun

#endif  // QXRUN_REPORT_RUN_FILES_H_
