// The page of a sweep: a heatmap of a figure over any two swept parameters (the best value over
// the other parameters in each cell), and the table of the best points. One self-contained HTML
// file that opens offline.
#ifndef QXRUN_REPORT_SWEEP_PAGE_H_
#define QXRUN_REPORT_SWEEP_PAGE_H_

#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

struct SweepPageData {
  std::string Title;
  std::vector<std::string> Parameters;       // the swept parameters
  std::vector<std::vector<double>> Points;   // one value per parameter
  std::vector<std::string> Figures;          // the figure columns
  std::vector<std::vector<double>> Rows;     // one value per figure column, per point
  std::string Objective;                     // shown first
  std::vector<std::string> SmallerIsBetter;  // figures whose best value is the least
};

// The page's data as JSON (NaN as null).
std::string SweepPageJson(const SweepPageData& data);

void WriteSweepPage(std::ostream& out, const SweepPageData& data);

}  // namespace qxrun

#endif  // QXRUN_REPORT_SWEEP_PAGE_H_
