#include "qxrun/report/RunFiles.h"

#include "qxrun/report/PageBuilder.h"

#include <chrono>

namespace qxrun {

std::vector<double> LotValues(const RunSettings& settings) {
  std::vector<double> values;
  values.reserve(settings.Symbols.size());
  for (const SymbolSettings& symbol : settings.Symbols) {
    values.push_back(symbol.Terms.ContractUnit *
                     static_cast<double>(static_cast<float>(symbol.Terms.BigPointValue)));
  }
  return values;
}

RunFigures ComputeRunFigures(const RunSettings& settings, const std::vector<QXDataSource>& sources,
                             const StrategyAccount& account) {
  return ComputeFigures(sources, LotValues(settings), account, settings.Strategy.InitCapital);
}

RunHeading MakeHeading(const FormulaInfo& info, const std::map<std::string, double>& params,
                       const RunSettings& settings, const std::vector<QXDataSource>& sources) {
  RunHeading heading;
  heading.Formula = info.Name;
  heading.Params.assign(params.begin(), params.end());
  for (size_t i = 0; i < sources.size(); ++i) {
    heading.Files.push_back(settings.Symbols[i].File.string());
    heading.Symbols.push_back(sources[i].Symbol);
  }
  heading.OutputMode = settings.Strategy.OutputMode;
  return heading;
}

double WriteRunFiles(OutputFolder& folder, const RunHeading& heading, const RunFigures& figures,
                     const CQXBaseData& data, const std::vector<QXDataSource>& sources,
                     double initCapital, bool page, const std::vector<LiveOrderMarker>& live) {
  const StrategyAccount& account = *data.Account;
  folder.Write("report.json", [&](std::ostream& file) {
    WriteReportJson(file, heading, figures, account.Report);
  });
  folder.Write("equity.csv",
               [&](std::ostream& file) { WriteEquityCsv(file, account, initCapital); });
  folder.Write("trades.csv",
               [&](std::ostream& file) { WriteTradesCsv(file, account, figures, sources); });
  folder.Write("orders.csv", [&](std::ostream& file) { WriteOrdersCsv(file, data); });
  folder.Write("plots.csv", [&](std::ostream& file) { WritePlotsCsv(file, data); });
  if (!page) return 0.0;
  const auto start = std::chrono::steady_clock::now();
  if (!WriteReportPageFile(folder, heading, figures, data, live)) return 0.0;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace qxrun
