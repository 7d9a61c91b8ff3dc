// The parts of the page that are plain HTML: the statistics table, the monthly-returns heatmap,
// the notes and the line naming the period of an aggregated chart.
#ifndef QXRUN_PAGE_PAGE_TABLES_H_
#define QXRUN_PAGE_PAGE_TABLES_H_

#include "page/Aggregation.h"
#include "page/ReportPage.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace qxrun {

// One year of the heatmap. Total compounds the months that have a return:
// (1 + r1) * (1 + r2) * ... - 1.
struct YearReturns {
  int Year = 0;
  std::array<std::optional<double>, 12> Months;
  double Total = 0.0;
};

// The years that have a month, oldest first. A month given twice keeps its last return; months
// outside 1-12 and returns that are not finite are left out.
std::vector<YearReturns> MonthlyGrid(const std::vector<PageMonthReturn>& months);

// Background of a heatmap cell: green for a gain, red for a loss, the stronger the nearer
// |value| is to `scale`; "" for zero or a scale of zero.
std::string HeatColor(double value, double scale);

// <table id="stats">: a header row with the column names, then per figure
// <tr data-key="KEY"><th scope="row">LABEL</th><td>CELL</td>...</tr>.
std::string StatsTableHtml(const std::vector<std::string>& columns,
                           const std::vector<PageStatRow>& rows);

// <table id="monthly">: years down, months across, then the compounded year.
std::string MonthlyTableHtml(const std::vector<YearReturns>& grid);

// <ul class="notes">, or "" without notes.
std::string NotesHtml(const std::vector<std::string>& notes);

// "Shown at 1 day per candle (1,000,000 bars aggregated)", or "" at full resolution.
std::string PeriodNote(const ShownSeries& shown);

}  // namespace qxrun

#endif  // QXRUN_PAGE_PAGE_TABLES_H_
