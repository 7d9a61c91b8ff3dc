// The data of the report page, and the page written into the output folder.
#ifndef QXRUN_REPORT_PAGE_BUILDER_H_
#define QXRUN_REPORT_PAGE_BUILDER_H_

#include "sysfuncs/HostData.h"

#include "qxrun/page/ReportPage.h"
#include "qxrun/report/Figures.h"
#include "qxrun/report/OutputFolder.h"
#include "qxrun/report/Tables.h"

#include <string>
#include <vector>

namespace qxrun {

// A live order (sent to a broker), marked on the bar whose span holds its time, beside the
// strategy's signal orders.
struct LiveOrderMarker {
  int64_t Time = 0;  // milliseconds since 1970 UTC
  bool Buy = true;
  double Price = 0.0;
  double Lots = 0.0;
  std::string Text;
};

// The page's data: candles of the main series, the numeric plot series, the orders as markers,
// equity and drawdown per bar, the statistics table (its keys are report.json's), the monthly
// returns and the conventions of the figures.
PageData BuildPageData(const RunHeading& heading, const RunFigures& figures,
                       const CQXBaseData& data, const std::vector<LiveOrderMarker>& live = {});

// Writes report.html into the folder; true when written.
bool WriteReportPageFile(OutputFolder& folder, const RunHeading& heading, const RunFigures& figures,
                         const CQXBaseData& data, const std::vector<LiveOrderMarker>& live = {});

}  // namespace qxrun

#endif  // QXRUN_REPORT_PAGE_BUILDER_H_
