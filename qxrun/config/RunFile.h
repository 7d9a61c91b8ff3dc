// The run file: contract terms and costs per symbol, and the strategy settings.
//
// A run file is JSON. Every key is optional; a bare `--data FILE` runs with the defaults
// below. Unknown keys and wrong types are errors naming the key's path ("/symbols/0/costs").
#ifndef QXRUN_CONFIG_RUN_FILE_H_
#define QXRUN_CONFIG_RUN_FILE_H_

#include "sysfuncs/HostData.h"

#include "qxrun/data/BarFile.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace qxrun {

// Contract terms of one symbol, as the adapter reports them to the library.
struct SymbolTerms {
  uint32_t Market = 0;
  std::string Code;  // empty: the bar file's name without its extension
  std::string Name;
  int32_t MinMove = 1;       // the tick is MinMove x PriceScale
  double PriceScale = 0.01;  // price of one price-scale unit
  int32_t ContractUnit = 1;
  double BigPointValue = 1.0;
  int32_t MarginKind = 4;    // 1-5: the money rule of the contract
  double MarginRatio = 0.0;  // shown as the symbol's margin ratio
  std::string Sessions;      // "HH:MM-HH:MM,HH:MM-HH:MM"
  std::string Expiry;        // "YYYY-MM-DD"; empty: none
  std::string Currency = "CNY";
  std::string CurrencySymbol;
  bool Tradable = true;
  bool MarketOrders = true;
  bool StopOrders = true;
  bool ShortSelling = true;
  int32_t MaxSingleTradeSize = 0;
};

// One data source: its bar file, its layout, its terms and its costs.
struct SymbolSettings {
  std::filesystem::path File;  // empty: given by --data
  ColumnMap Columns;
  SymbolTerms Terms;
  CostSetting Costs;
};

struct StrategySettings {
  double InitCapital = 1000000.0;
  uint32_t DefaultLotsMode = 0;  // 0 fixed lots, 1 percent of capital, 2 fixed money
  int32_t DefaultLotsValue = 1;
  int32_t MaxOpenEntries = 1;
  int32_t MaxPositionLots = 100;
  bool LifoExits = false;
  bool PercentMode = false;
  int32_t OutputMode = 2;  // 0 chart run, 1 report run, 2 detailed report run
};

struct RunSettings {
  std::vector<SymbolSettings> Symbols;  // one per data source, in --data order
  StrategySettings Strategy;
  std::filesystem::path Quotes;          // optional quote snapshot file
  std::filesystem::path UserDir;         // where the profile store lives; empty: ~/.qxrun
  std::map<std::string, double> Params;  // formula parameters given in the run file
};

// The trading sessions of the run file ("09:30-11:30,13:00-15:00") in the 12-character items
// of the platform ("09:30-11:30,13:00-15:00,"). Throws InputError naming `where` when an item
// is not "HH:MM-HH:MM".
std::string SessionItems(const std::string& sessions, const std::string& where);

// Reads a run file. Throws InputError naming the file and the key path (or the line of a JSON
// syntax error). Relative paths in it are taken from the run file's folder.
RunSettings LoadRunFile(const std::filesystem::path& file);

// The settings of a run without a run file.
RunSettings DefaultRunSettings();

// Fits the settings to the bar files of the command line: `dataFiles` (possibly empty) replace
// the files of the run file in order; every symbol without a file is an error; a symbol without
// a code takes its file's stem. Throws InputError.
void ApplyDataFiles(RunSettings& settings, const std::vector<std::filesystem::path>& dataFiles);

}  // namespace qxrun

#endif  // QXRUN_CONFIG_RUN_FILE_H_
