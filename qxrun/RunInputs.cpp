#include "qxrun/RunInputs.h"

#include "qxrun/InputError.h"
#include "qxrun/data/BarFile.h"
#include "qxrun/formulas/Bundled.h"
#include "qxrun/host/FileAdapter.h"

#include <cstdlib>

namespace qxrun {

RunInputs::RunInputs() = default;
RunInputs::~RunInputs() = default;
RunInputs::RunInputs(RunInputs&&) noexcept = default;
RunInputs& RunInputs::operator=(RunInputs&&) noexcept = default;

void NameLocalZone() { setenv("TZ", ":/etc/localtime", 0); }

std::filesystem::path DefaultUserDir() {
  if (const char* home = std::getenv("QXRUN_HOME"); home != nullptr && *home != '\0') return home;
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    return std::filesystem::path(home) / ".qxrun";
  }
  return ".qxrun";
}

RunInputs PrepareRun(const RunOptions& options) {
  RunInputs inputs;
  RunSettings& settings = inputs.Settings;
  settings = options.RunFile.empty() ? DefaultRunSettings() : LoadRunFile(options.RunFile);
  std::vector<std::filesystem::path> dataFiles(options.DataFiles.begin(), options.DataFiles.end());
  ApplyDataFiles(settings, dataFiles);
  if (options.Capital) {
    if (!(*options.Capital > 0.0)) throw InputError("--capital: must be positive");
    settings.Strategy.InitCapital = *options.Capital;
  }
  if (options.Lots) {
    if (*options.Lots < 0) throw InputError("--lots: must not be negative");
    settings.Strategy.DefaultLotsValue = *options.Lots;
  }
  inputs.Info = &FindFormula(options.Formula, inputs.Library);
  const FormulaInfo& info = *inputs.Info;
  inputs.Params = ResolveParameters(info, settings.Params, options.Params);
  if (static_cast<int32_t>(settings.Symbols.size()) < info.DataSources) {
    throw InputError("--data: " + info.Name + " needs " + std::to_string(info.DataSources) +
                     " bar files, " + std::to_string(settings.Symbols.size()) + " given");
  }
  if (!options.OutFolder.empty()) inputs.Folder.emplace(options.OutFolder);
  if (!settings.Quotes.empty()) inputs.Quotes = LoadQuoteSnapshot(settings.Quotes);
  inputs.UserDir = settings.UserDir.empty() ? DefaultUserDir() : settings.UserDir;
  return inputs;
}

std::vector<QXDataSource> LoadSources(const RunSettings& settings) {
  std::vector<QXDataSource> sources(settings.Symbols.size());
  for (size_t i = 0; i < sources.size(); ++i) {
    const SymbolSettings& symbol = settings.Symbols[i];
    LoadBarFile(symbol.File, symbol.Columns, sources[i]);
    if (sources[i].Bars.empty()) throw InputError(symbol.File.string() + ": holds no bars");
    sources[i].MarketId = symbol.Terms.Market;
    sources[i].Symbol = symbol.Terms.Code;
  }
  return sources;
}

}  // namespace qxrun
