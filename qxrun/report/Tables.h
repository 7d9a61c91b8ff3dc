// What a run reports: the table on the terminal, report.json and the CSV files.
#ifndef QXRUN_REPORT_TABLES_H_
#define QXRUN_REPORT_TABLES_H_

#include "sysfuncs/HostData.h"

#include "qxrun/report/Figures.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

// What the run was, for the report's heading.
struct RunHeading {
  std::string Formula;
  std::vector<std::pair<std::string, double>> Params;
  std::vector<std::string> Files;
  std::vector<std::string> Symbols;
  int32_t OutputMode = 2;
};

enum class StatUnit { kMoney, kPercent, kCount, kRatio, kBars, kDays };

// One row of the statistics table: a key for scripts, a label, and the all/long/short values
// (NaN where the figure has no side).
struct StatRow {
  std::string Key;
  std::string Label;
  double All = 0.0;
  double Long = 0.0;
  double Short = 0.0;
  bool HasSides = false;
  StatUnit Unit = StatUnit::kMoney;
};

// The rows of the statistics table, in the order they are shown.
std::vector<StatRow> StatRows(const RunFigures& figures);

// A figure as the table shows it ("12,345.67", "12.34%", "17", "1.23").
std::string FormatStat(const StatRow& row, double value);

// The table on the terminal: heading, figures with all/long/short columns, yearly returns.
void PrintReport(std::ostream& out, const RunHeading& heading, const RunFigures& figures);

// report.json: the heading, every figure of the table under its key (with "long" and "short"
// objects for the side figures), the library's report block, and the monthly and yearly returns.
void WriteReportJson(std::ostream& out, const RunHeading& heading, const RunFigures& figures,
                     const PerformanceReport& report);

// equity.csv: one row per bar.
void WriteEquityCsv(std::ostream& out, const StrategyAccount& account, double initCapital);
// trades.csv: one row per closed trade record, with its excursions.
void WriteTradesCsv(std::ostream& out, const StrategyAccount& account, const RunFigures& figures,
                    const std::vector<QXDataSource>& sources);
// orders.csv: every executed order of every data source, in bar order.
void WriteOrdersCsv(std::ostream& out, const CQXBaseData& data);
// plots.csv: one row per bar with a column per plot series (empty where nothing was plotted).
void WritePlotsCsv(std::ostream& out, const CQXBaseData& data);

// Local date and time of an instant: "YYYY-MM-DD HH:MM:SS".
std::string LocalDateTime(int64_t millis);

}  // namespace qxrun

#endif  // QXRUN_REPORT_TABLES_H_
