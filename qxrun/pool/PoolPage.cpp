#include "qxrun/pool/PoolPage.h"

#include "qxrun/report/PageBuilder.h"

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
  for (const std::vector<int8_t>& sides : book.Held) {
    PlotCell& cell = held.cells.emplace_back();
    cell.numericSet = true;
    for (const int8_t side : sides) cell.numericValue += side != 0 ? 1.0 : 0.0;
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

void WritePoolPage(std::ostream& out, const RunHeading& heading, const RunFigures& figures,
                   const std::vector<PoolSymbol>& symbols, const PoolBook& book) {
  WriteReportPage(BuildPoolPageData(heading, figures, symbols, book), out);
}

}  // namespace qxrun
