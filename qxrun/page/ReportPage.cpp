#include "page/ReportPage.h"

#include "page/Aggregation.h"
#include "page/PageAssets.h"
#include "page/PageJson.h"
#include "page/PageTables.h"
#include "page/PageText.h"

#include <string_view>

namespace qxrun {

// The page: the template with each @NAME@ slot filled. Inserted text is never scanned for
// slots, so a title holding "@STATS@" stays a title.
void WriteReportPage(const PageData& data, std::ostream& out) {
  const ShownSeries shown = ShapeSeries(data);
  const std::string period = PeriodNote(shown);
  const auto fill = [&](std::string_view name) -> std::string {
    if (name == "TITLE") return EscapeHtml(data.Title);
    if (name == "SUBTITLE") return EscapeHtml(data.Subtitle);
    if (name == "PERIOD") return EscapeHtml(period);
    if (name == "STATS") return StatsTableHtml(data.StatColumns, data.Stats);
    if (name == "NOTES") return NotesHtml(data.Notes);
    if (name == "MONTHLY") return MonthlyTableHtml(MonthlyGrid(data.Monthly));
    if (name == "DATA") return PageDataJson(shown);
    if (name == "STYLE") return std::string(page_assets::PageStyle());
    if (name == "LIBRARY") return ScriptSafeCode(page_assets::ChartLibrary());
    if (name == "SCRIPT") return ScriptSafeCode(page_assets::PageScript());
    std::string unknown(1, '@');  // not a slot: the text stays as it was
    unknown.append(name);
    unknown += '@';
    return unknown;
  };
  const std::string_view page = page_assets::PageTemplate();
  size_t at = 0;
  while (at < page.size()) {
    const size_t open = page.find('@', at);
    const size_t close = open == std::string_view::npos ? open : page.find('@', open + 1);
    if (close == std::string_view::npos) {
      out << page.substr(at);
      break;
    }
    const std::string_view name = page.substr(open + 1, close - open - 1);
    const bool isSlot = !name.empty() && name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_") ==
                                             std::string_view::npos;
    if (!isSlot) {
      out << page.substr(at, close - at);
      at = close;
      continue;
    }
    out << page.substr(at, open - at) << fill(name);
    at = close + 1;
  }
}

}  // namespace qxrun
