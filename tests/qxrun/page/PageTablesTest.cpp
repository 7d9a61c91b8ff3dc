// The statistics table, the monthly heatmap, the notes and the period line.
#include "page/PageTables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace qxrun {
namespace {

TEST(PageTables, YearTotalsCompoundTheirMonths) {
  const std::vector<PageMonthReturn> months = {
      {2024, 3, 0.10},
      {2023, 12, 0.05},
      {2024, 1, -0.10},
      {2024, 2, 0.5},
      {2024, 2, 0.0},  // given twice: the last return counts
      {2024, 13, 0.9},
      {2024, 0, 0.9},  // no such months
      {2024, 4, std::numeric_limits<double>::quiet_NaN()},
  };
  const std::vector<YearReturns> grid = MonthlyGrid(months);
  ASSERT_EQ(grid.size(), 2u);
  EXPECT_EQ(grid[0].Year, 2023);
  EXPECT_EQ(grid[0].Months[11], 0.05);
  EXPECT_FALSE(grid[0].Months[0].has_value());
  EXPECT_NEAR(grid[0].Total, 0.05, 1e-15);
  EXPECT_EQ(grid[1].Year, 2024);
  EXPECT_EQ(grid[1].Months[0], -0.10);
  EXPECT_EQ(grid[1].Months[1], 0.0);
  EXPECT_EQ(grid[1].Months[2], 0.10);
  EXPECT_FALSE(grid[1].Months[3].has_value());
  // (1 - 0.10) * (1 + 0) * (1 + 0.10) - 1 = 0.99 - 1 = -0.01, not the sum 0.
  EXPECT_NEAR(grid[1].Total, -0.01, 1e-15);
}

TEST(PageTables, HeatColourShowsSignAndSize) {
  EXPECT_EQ(HeatColor(0.02, 0.04), "rgba(22,163,74,0.46)");   // 0.12 + 0.68 * 0.5
  EXPECT_EQ(HeatColor(-0.04, 0.04), "rgba(220,38,38,0.80)");  // full strength
  EXPECT_EQ(HeatColor(-0.08, 0.04), "rgba(220,38,38,0.80)");  // capped
  EXPECT_EQ(HeatColor(0.0, 0.04), "");
  EXPECT_EQ(HeatColor(0.01, 0.0), "");
}

TEST(PageTables, StatsRowsCarryTheirKeyLabelAndOneCellPerColumn) {
  const std::string html = StatsTableHtml({"All", "Long", "Short"},
                                          {{"net_profit", "Net profit", {"1,234.50", "", "-5"}},
                                           {"trades", "Trades <closed>", {"7"}},
                                           {"extra", "Extra", {"1", "2", "3", "4"}}});
  EXPECT_EQ(
      html,
      "<table id=\"stats\">\n"
      "<thead><tr><th scope=\"col\"></th><th scope=\"col\">All</th><th scope=\"col\">Long</th>"
      "<th scope=\"col\">Short</th></tr></thead>\n<tbody>\n"
      "<tr data-key=\"net_profit\"><th scope=\"row\">Net profit</th><td>1,234.50</td><td></td>"
      "<td>-5</td></tr>\n"
      "<tr data-key=\"trades\"><th scope=\"row\">Trades &lt;closed&gt;</th><td>7</td>"
      "<td></td><td></td></tr>\n"
      "<tr data-key=\"extra\"><th scope=\"row\">Extra</th><td>1</td><td>2</td><td>3</td>"
      "<td>4</td></tr>\n"
      "</tbody>\n</table>\n");
}

TEST(PageTables, HeatmapHasYearsDownMonthsAcrossAndTheYear) {
  const std::string html = MonthlyTableHtml(MonthlyGrid({{2024, 1, 0.02}, {2024, 3, -0.04}}));
  // Months share one scale (0.04), the year total its own (|1.02 * 0.96 - 1| = 0.0208).
  EXPECT_NE(html.find("<th scope=\"col\">Jan</th>"), std::string::npos);
  EXPECT_NE(html.find("<th scope=\"col\">Dec</th><th scope=\"col\" class=\"total\">Year</th>"),
            std::string::npos);
  EXPECT_NE(html.find("<tr><th scope=\"row\">2024</th>"
                      "<td style=\"background:rgba(22,163,74,0.46)\">2.00%</td>"
                      "<td class=\"none\"></td>"
                      "<td style=\"background:rgba(220,38,38,0.80)\">-4.00%</td>"),
            std::string::npos)
      << html;
  EXPECT_NE(html.find("<td style=\"background:rgba(220,38,38,0.80)\">-2.08%</td></tr>"),
            std::string::npos)
      << html;
  EXPECT_EQ(MonthlyTableHtml({}), "<p class=\"empty\">No monthly returns.</p>\n");
}

TEST(PageTables, NotesAndPeriodLine) {
  EXPECT_EQ(NotesHtml({}), "");
  EXPECT_EQ(NotesHtml({"Sharpe uses 0 & the bar spacing"}),
            "<ul class=\"notes\">\n<li>Sharpe uses 0 &amp; the bar spacing</li>\n</ul>\n");
  ShownSeries shown;
  shown.SourceBars = 1000000;
  EXPECT_EQ(PeriodNote(shown), "");
  shown.Period = AggregationPeriod{14400, "4 hours"};
  EXPECT_EQ(PeriodNote(shown), "Shown at 4 hours per candle (1,000,000 bars aggregated)");
}

}  // namespace
}  // namespace qxrun
