#include "page/PageTables.h"

#include "page/PageText.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace qxrun {
namespace {

constexpr std::array<const char*, 12> kMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

void AppendCell(std::string& html, const std::optional<double>& value, double scale) {
  if (!value) {
    html += "<td class=\"none\"></td>";
    return;
  }
  const std::string color = HeatColor(*value, scale);
  html += color.empty() ? "<td>" : "<td style=\"background:" + color + "\">";
  html += FormatPercent(*value);
  html += "</td>";
}

}  // namespace

std::vector<YearReturns> MonthlyGrid(const std::vector<PageMonthReturn>& months) {
  std::map<int, YearReturns> years;
  for (const PageMonthReturn& month : months) {
    if (month.Month < 1 || month.Month > 12 || !std::isfinite(month.Return)) {
      continue;
    }
    YearReturns& year = years[month.Year];
    year.Year = month.Year;
    year.Months[static_cast<size_t>(month.Month - 1)] = month.Return;
  }
  std::vector<YearReturns> grid;
  grid.reserve(years.size());
  for (auto& [number, year] : years) {
    double growth = 1.0;
    for (const std::optional<double>& month : year.Months) {
      if (month) {
        growth *= 1.0 + *month;
      }
    }
    year.Total = growth - 1.0;
    grid.push_back(year);
  }
  return grid;
}

std::string HeatColor(double value, double scale) {
  if (value == 0.0 || !(scale > 0.0) || !std::isfinite(value)) {
    return "";
  }
  // Even a tiny move is tinted, so its sign reads at a glance.
  const double alpha = 0.12 + 0.68 * std::min(1.0, std::fabs(value) / scale);
  char color[48];
  std::snprintf(color, sizeof color, value > 0.0 ? "rgba(22,163,74,%.2f)" : "rgba(220,38,38,%.2f)",
                alpha);
  return color;
}

std::string StatsTableHtml(const std::vector<std::string>& columns,
                           const std::vector<PageStatRow>& rows) {
  std::string html = "<table id=\"stats\">\n<thead><tr><th scope=\"col\"></th>";
  for (const std::string& column : columns) {
    html += "<th scope=\"col\">" + EscapeHtml(column) + "</th>";
  }
  html += "</tr></thead>\n<tbody>\n";
  for (const PageStatRow& row : rows) {
    html += "<tr data-key=\"" + EscapeHtml(row.Key) + "\"><th scope=\"row\">" +
            EscapeHtml(row.Label) + "</th>";
    // A row never loses a cell, and a short row is padded so the columns stay aligned.
    const size_t cells = std::max(columns.size(), row.Cells.size());
    for (size_t i = 0; i < cells; ++i) {
      html += "<td>";
      if (i < row.Cells.size()) {
        html += EscapeHtml(row.Cells[i]);
      }
      html += "</td>";
    }
    html += "</tr>\n";
  }
  html += "</tbody>\n</table>\n";
  return html;
}

std::string MonthlyTableHtml(const std::vector<YearReturns>& grid) {
  if (grid.empty()) {
    return "<p class=\"empty\">No monthly returns.</p>\n";
  }
  // Months share one colour scale and year totals another, so a big year does not wash out
  // the months.
  double monthScale = 0.0;
  double yearScale = 0.0;
  for (const YearReturns& year : grid) {
    for (const std::optional<double>& month : year.Months) {
      if (month) {
        monthScale = std::max(monthScale, std::fabs(*month));
      }
    }
    yearScale = std::max(yearScale, std::fabs(year.Total));
  }
  std::string html = "<table id=\"monthly\">\n<thead><tr><th scope=\"col\">Year</th>";
  for (const char* name : kMonthNames) {
    html += std::string("<th scope=\"col\">") + name + "</th>";
  }
  html += "<th scope=\"col\" class=\"total\">Year</th></tr></thead>\n<tbody>\n";
  for (const YearReturns& year : grid) {
    html += "<tr><th scope=\"row\">" + std::to_string(year.Year) + "</th>";
    for (const std::optional<double>& month : year.Months) {
      AppendCell(html, month, monthScale);
    }
    AppendCell(html, year.Total, yearScale);
    html += "</tr>\n";
  }
  html += "</tbody>\n</table>\n";
  return html;
}

std::string NotesHtml(const std::vector<std::string>& notes) {
  if (notes.empty()) {
    return "";
  }
  std::string html = "<ul class=\"notes\">\n";
  for (const std::string& note : notes) {
    html += "<li>" + EscapeHtml(note) + "</li>\n";
  }
  html += "</ul>\n";
  return html;
}

std::string PeriodNote(const ShownSeries& shown) {
  if (!shown.Period) {
    return "";
  }
  return std::string("Shown at ") + shown.Period->Name + " per candle (" +
         GroupThousands(shown.SourceBars) + " bars aggregated)";
}

}  // namespace qxrun
