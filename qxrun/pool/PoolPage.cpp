#include "qxrun/pool/PoolPage.h"

#include "qxrun/page/PageText.h"
#include "qxrun/report/PageBuilder.h"

#include <algorithm>
#include <sstream>

namespace qxrun {

std::vector<QXBar> PoolIndex(const std::vector<PoolSymbol>& symbols, const PoolBook& book) {
  std::vector<QXBar> index(book.Times.size());
  std::vector<size_t> next(symbols.size(), 0);
  for (size_t date = 0; date < book.Times.size(); ++date) {
    QXBar& bar = index[date];
    bar.Time = book.Times[date];
    int count = 0;
    for (size_t s = 0; s < symbols.size(); ++s) {
      const std::vector<QXBar>& bars = *symbols[s].Bars;
      if (next[s] >= bars.size() || bars[next[s]].Time != bar.Time) continue;
      const QXBar& own = bars[next[s]++];
      const double base = bars.front().Close != 0.0 ? 100.0 / bars.front().Close : 0.0;
      bar.Open += own.Open * base;
      bar.High += own.High * base;
      bar.Low += own.Low * base;
      bar.Close += own.Close * base;
      ++count;
    }
    if (count > 0) {
      bar.Open /= count;
      bar.High /= count;
      bar.Low /= count;
      bar.Close /= count;
    }
  }
  return index;
}

PageData BuildPoolPageData(const RunHeading& heading, const RunFigures& figures,
                           const std::vector<PoolSymbol>& symbols, const PoolBook& book) {
  // A data object of the index series, whose plot is the number of symbols held, and whose
  // account holds the pool's equity: the page of a run draws it.
  std::vector<QXDataSource> index(1);
  index[0].Bars = PoolIndex(symbols, book);
  index[0].Symbol = "pool index";
  CQXBaseData data;
  data.DataSources = &index;
  data.DataCount = 1;
  data.BarCount = static_cast<int32_t>(index[0].Bars.size());
  PlotSeries& held = data.Plots.emplace_back();
  held.name = "symbols held";
  held.Resize(book.Held.size());
  for (size_t bar = 0; bar < book.Held.size(); ++bar) {
    PlotCell cell;
    cell.numericSet = true;
    for (const int8_t side : book.Held[bar]) cell.numericValue += side != 0 ? 1.0 : 0.0;
    held.SetCell(bar, cell);
  }
  data.Account = new StrategyAccount;
  data.Account->EquityCurve = book.EquityCurve;
  RunHeading pool = heading;
  pool.Symbols = {"a pool of " + std::to_string(symbols.size()) + " symbols"};
  PageData page = BuildPageData(pool, figures, data);
  page.Notes.insert(
      page.Notes.begin(),
      "The candles are the pool's equal-weight index: each symbol's prices as a "
      "percentage of its first close, averaged over the symbols with a bar that day.");
  page.Notes.insert(page.Notes.begin() + 1,
                    "A decision takes effect at the close of its bar; each held symbol holds the "
                    "same lots; no costs.");
  for (const PoolSymbol& symbol : symbols) {
    if (symbol.Code.find("resampled") != std::string::npos) {
      page.Notes.insert(page.Notes.begin(),
                        "Symbols named \"resampled\" are not market data: they are generated from "
                        "the real daily bars of the bundled stock by resampling its daily moves.");
      break;
    }
  }
  return page;
}

std::string HoldingsSvg(const std::vector<PoolSymbol>& symbols, const PoolBook& book) {
  constexpr int kLabel = 160;  // width of the symbols' names
  constexpr int kWidth = 1000;
  constexpr int kRow = 18;
  const size_t dates = std::max<size_t>(book.Times.size(), 1);
  const auto x = [&](size_t date) {
    return kLabel + static_cast<double>(date) * (kWidth - kLabel) / static_cast<double>(dates);
  };
  std::ostringstream svg;
  svg << "<svg id=\"holdings\" xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth << ' '
      << kRow * symbols.size() << "\" width=\"100%\" font-size=\"11\">";
  for (size_t s = 0; s < symbols.size(); ++s) {
    const double y = static_cast<double>(s * kRow);
    svg << "<text x=\"0\" y=\"" << y + 13 << "\">" << EscapeHtml(symbols[s].Code) << "</text>";
    // One bar per stretch of dates with the same holding.
    size_t start = 0;
    for (size_t date = 0; date <= book.Held.size(); ++date) {
      const int8_t side = date < book.Held.size() ? book.Held[date][s] : 0;
      const int8_t before = date > 0 ? book.Held[date - 1][s] : 0;
      if (date > 0 && side == before) continue;
      if (before != 0) {
        svg << "<rect class=\"" << (before > 0 ? "long" : "short") << "\" x=\"" << x(start)
            << "\" y=\"" << y + 3 << "\" width=\"" << x(date) - x(start) << "\" height=\""
            << kRow - 6 << "\" fill=\"" << (before > 0 ? "#2962ff" : "#dc2626") << "\"/>";
      }
      start = date;
    }
  }
  svg << "</svg>";
  return svg.str();
}

void WritePoolPage(std::ostream& out, const RunHeading& heading, const RunFigures& figures,
                   const std::vector<PoolSymbol>& symbols, const PoolBook& book) {
  std::ostringstream page;
  WriteReportPage(BuildPoolPageData(heading, figures, symbols, book), page);
  // The holdings chart goes after the page's other sections.
  std::string html = page.str();
  const size_t end = html.rfind("</main>");
  const std::string section = "<section id=\"holdings-section\"><h2>Holdings</h2>" +
                              HoldingsSvg(symbols, book) + "</section>\n";
  if (end != std::string::npos) html.insert(end, section);
  out << html;
}

}  // namespace qxrun
