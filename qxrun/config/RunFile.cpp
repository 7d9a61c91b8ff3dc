#include "qxrun/config/RunFile.h"

#include "qxrun/InputError.h"
#include "qxrun/config/JsonFile.h"

#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

namespace qxrun {
namespace {

using nlohmann::json;

// "HH:MM" with HH < 24 (or "24:00") and MM < 60.
bool IsClock(const std::string& text) {
  if (text.size() != 5 || text[2] != ':') return false;
  for (size_t i : {0, 1, 3, 4}) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  const int hours = (text[0] - '0') * 10 + (text[1] - '0');
  const int minutes = (text[3] - '0') * 10 + (text[4] - '0');
  return minutes < 60 && (hours < 24 || (hours == 24 && minutes == 0));
}

// Reads the members of one JSON object: each getter checks the member's type; Finish refuses
// members no getter asked for.
class ObjectReader {
 public:
  ObjectReader(const json& value, std::string path, std::string file)
      : value_(value), path_(std::move(path)), file_(std::move(file)) {
    if (!value_.is_object()) Fail(path_.empty() ? "/" : path_, "must be an object");
  }

  void Number(const char* key, double& out) {
    if (const json* member = Find(key)) {
      if (!member->is_number()) Fail(Path(key), "must be a number");
      out = member->get<double>();
      if (!std::isfinite(out)) Fail(Path(key), "must be finite");
    }
  }
  template <typename Int>
  void Integer(const char* key, Int& out, int64_t min, int64_t max) {
    if (const json* member = Find(key)) {
      if (!member->is_number_integer()) Fail(Path(key), "must be a whole number");
      const int64_t value = member->get<int64_t>();
      if (value < min || value > max) {
        Fail(Path(key), "must lie in [" + std::to_string(min) + ", " + std::to_string(max) +
                            "], not " + std::to_string(value));
      }
      out = static_cast<Int>(value);
    }
  }
  void NonNegative(const char* key, double& out) {
    Number(key, out);
    if (out < 0.0) Fail(Path(key), "must not be negative");
  }
  void Positive(const char* key, double& out) {
    Number(key, out);
    if (!(out > 0.0)) Fail(Path(key), "must be positive");
  }
  void Bool(const char* key, bool& out) {
    if (const json* member = Find(key)) {
      if (!member->is_boolean()) Fail(Path(key), "must be true or false");
      out = member->get<bool>();
    }
  }
  void String(const char* key, std::string& out) {
    if (const json* member = Find(key)) {
      if (!member->is_string()) Fail(Path(key), "must be a string");
      out = member->get<std::string>();
    }
  }
  // A string naming one of `choices`; `out` becomes its index.
  template <typename Int>
  void Choice(const char* key, Int& out, const std::vector<std::string>& choices) {
    if (const json* member = Find(key)) {
      if (!member->is_string()) Fail(Path(key), "must be a string");
      const std::string text = member->get<std::string>();
      std::string all;
      for (size_t i = 0; i < choices.size(); ++i) {
        if (text == choices[i]) {
          out = static_cast<Int>(i);
          return;
        }
        all += (i == 0 ? "" : ", ") + choices[i];
      }
      Fail(Path(key), "must be one of " + all + ", not \"" + text + "\"");
    }
  }
  // A member read by `read` (an object or array reader of its own), if present.
  void Member(const char* key, const std::function<void(const json&, const std::string&)>& read) {
    if (const json* member = Find(key)) read(*member, Path(key));
  }

  void Finish() const {
    for (const auto& [key, member] : value_.items()) {
      if (seen_.count(key) == 0) Fail(Path(key), "unknown key");
    }
  }

  [[noreturn]] void Fail(const std::string& path, const std::string& what) const {
    throw InputError(file_ + ": " + path + ": " + what);
  }

 private:
  const json* Find(const char* key) {
    seen_.insert(key);
    const auto found = value_.find(key);
    return found == value_.end() ? nullptr : &*found;
  }
  std::string Path(const std::string& key) const { return path_ + "/" + key; }

  const json& value_;
  std::string path_;
  std::string file_;
  std::set<std::string> seen_;
};

void ReadCosts(const json& value, const std::string& path, const std::string& file,
               CostSetting& costs) {
  ObjectReader reader(value, path, file);
  reader.NonNegative("margin_rate", costs.MarginRate);
  reader.Choice("commission_kind", costs.CommissionKind,
                {"money", "ticks", "turnover"});  // per lot, ticks per lot, 1/10000 of turnover
  reader.NonNegative("commission", costs.CommissionRate);
  reader.Bool("no_entry_commission", costs.NoEntryCommission);
  reader.Bool("same_day_exit_free", costs.SameDayExitFree);
  reader.Choice("slippage_kind", costs.SlippageKind, {"money", "ticks"});
  reader.NonNegative("slippage", costs.Slippage);
  reader.Finish();
}

void ReadSymbol(const json& value, const std::string& path, const std::string& file,
                const std::filesystem::path& folder, SymbolSettings& symbol) {
  ObjectReader reader(value, path, file);
  SymbolTerms& terms = symbol.Terms;
  std::string dataFile;
  reader.String("file", dataFile);
  if (!dataFile.empty()) symbol.File = folder / dataFile;
  reader.Member("columns", [&](const json& columns, const std::string& columnsPath) {
    try {
      symbol.Columns = ColumnMapFromJson(columns, columnsPath);
    } catch (const InputError& error) {
      throw InputError(file + ": " + error.what());
    }
  });
  reader.Integer("market", terms.Market, 0, 65535);
  reader.String("code", terms.Code);
  if (terms.Code.size() >= 32) reader.Fail(path + "/code", "must be shorter than 32 characters");
  reader.String("name", terms.Name);
  reader.Integer("min_move", terms.MinMove, 1, 1000000);
  reader.Positive("price_scale", terms.PriceScale);
  reader.Integer("contract_unit", terms.ContractUnit, 1, 100000000);
  reader.Positive("big_point_value", terms.BigPointValue);
  reader.Integer("margin_kind", terms.MarginKind, 1, 5);
  reader.NonNegative("margin_ratio", terms.MarginRatio);
  reader.String("sessions", terms.Sessions);
  terms.Sessions = SessionItems(terms.Sessions, file + ": " + path + "/sessions");
  reader.String("expiry", terms.Expiry);
  reader.String("currency", terms.Currency);
  reader.String("currency_symbol", terms.CurrencySymbol);
  reader.Bool("tradable", terms.Tradable);
  reader.Bool("market_orders", terms.MarketOrders);
  reader.Bool("stop_orders", terms.StopOrders);
  reader.Bool("short_selling", terms.ShortSelling);
  reader.Integer("max_single_trade_size", terms.MaxSingleTradeSize, 0, 100000000);
  reader.Member("costs", [&](const json& costs, const std::string& costsPath) {
    ReadCosts(costs, costsPath, file, symbol.Costs);
  });
  reader.Finish();
}

void ReadStrategy(const json& value, const std::string& path, const std::string& file,
                  StrategySettings& strategy) {
  ObjectReader reader(value, path, file);
  reader.Positive("initial_capital", strategy.InitCapital);
  reader.Choice("default_lots_mode", strategy.DefaultLotsMode, {"lots", "percent", "money"});
  reader.Integer("default_lots", strategy.DefaultLotsValue, 0, 2147483647);
  reader.Integer("max_open_entries", strategy.MaxOpenEntries, 1, 2147483647);
  reader.Integer("max_position_lots", strategy.MaxPositionLots, 1, 2147483647);
  int32_t exits = strategy.LifoExits ? 1 : 0;
  reader.Choice("exits", exits, {"fifo", "lifo"});
  strategy.LifoExits = exits == 1;
  reader.Bool("percent_mode", strategy.PercentMode);
  reader.Integer("output_mode", strategy.OutputMode, 0, 2);
  reader.Finish();
}

}  // namespace

std::string SessionItems(const std::string& sessions, const std::string& where) {
  std::string items;
  size_t start = 0;
  while (start < sessions.size()) {
    size_t end = sessions.find(',', start);
    if (end == std::string::npos) end = sessions.size();
    const std::string item = sessions.substr(start, end - start);
    if (item.size() != 11 || item[5] != '-' || !IsClock(item.substr(0, 5)) ||
        !IsClock(item.substr(6, 5))) {
      throw InputError(where + ": session \"" + item + "\" is not HH:MM-HH:MM");
    }
    items += item + ",";
    start = end + 1;
  }
  return items;
}

RunSettings DefaultRunSettings() {
  RunSettings settings;
  return settings;
}

RunSettings LoadRunFile(const std::filesystem::path& path) {
  const std::string file = path.string();
  const json root = ReadJsonFile(path, "run file");

  RunSettings settings = DefaultRunSettings();
  const std::filesystem::path folder = path.parent_path();
  ObjectReader reader(root, "", file);
  reader.Member("symbols", [&](const json& symbols, const std::string& symbolsPath) {
    if (!symbols.is_array()) reader.Fail(symbolsPath, "must be an array");
    for (size_t i = 0; i < symbols.size(); ++i) {
      ReadSymbol(symbols[i], symbolsPath + "/" + std::to_string(i), file, folder,
                 settings.Symbols.emplace_back());
    }
  });
  reader.Member("strategy", [&](const json& strategy, const std::string& strategyPath) {
    ReadStrategy(strategy, strategyPath, file, settings.Strategy);
  });
  reader.Member("params", [&](const json& params, const std::string& paramsPath) {
    ObjectReader paramsReader(params, paramsPath, file);
    for (const auto& [key, value] : params.items()) {
      double number = 0.0;
      paramsReader.Number(key.c_str(), number);
      settings.Params[key] = number;
    }
  });
  std::string quotes;
  reader.String("quotes", quotes);
  if (!quotes.empty()) settings.Quotes = folder / quotes;
  std::string userDir;
  reader.String("user_dir", userDir);
  if (!userDir.empty()) settings.UserDir = folder / userDir;
  reader.Finish();
  return settings;
}

void ApplyDataFiles(RunSettings& settings, const std::vector<std::filesystem::path>& dataFiles) {
  if (settings.Symbols.size() < dataFiles.size()) settings.Symbols.resize(dataFiles.size());
  for (size_t i = 0; i < dataFiles.size(); ++i) settings.Symbols[i].File = dataFiles[i];
  if (settings.Symbols.empty()) throw InputError("--data: no bar file given");
  for (size_t i = 0; i < settings.Symbols.size(); ++i) {
    SymbolSettings& symbol = settings.Symbols[i];
    if (symbol.File.empty()) {
      throw InputError("--data: symbol " + std::to_string(i) + " has no bar file");
    }
    if (symbol.Terms.Code.empty()) symbol.Terms.Code = symbol.File.stem().string().substr(0, 31);
  }
}

}  // namespace qxrun
