// The run file and the formula parameters: every key lands in its setting, defaults stand for
// what is missing, and the command line wins.
#include "qxrun/InputError.h"
#include "qxrun/QxrunProcess.h"
#include "qxrun/config/RunFile.h"
#include "qxrun/formulas/Bundled.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace qxrun_test {
namespace {

TEST(RunFileTest, EveryKeyReachesItsSetting) {
  ScratchFolder folder;
  const auto file = folder.Write("cfg/run.json", R"({
    "symbols": [{
      "file": "bars/a.csv", "market": 3, "code": "rb888", "name": "rebar",
      "min_move": 2, "price_scale": 0.5, "contract_unit": 10, "big_point_value": 1.5,
      "margin_kind": 5, "margin_ratio": 0.08, "sessions": "21:00-23:00,09:00-10:15",
      "expiry": "2024-05-15", "currency": "USD", "currency_symbol": "$",
      "tradable": false, "market_orders": false, "stop_orders": false, "short_selling": false,
      "max_single_trade_size": 500,
      "columns": {"delimiter": ";"},
      "costs": {"margin_rate": 0.1, "commission_kind": "turnover", "commission": 0.5,
                "no_entry_commission": true, "same_day_exit_free": true,
                "slippage_kind": "ticks", "slippage": 2}
    }, {"code": "other"}],
    "strategy": {"initial_capital": 50000, "default_lots_mode": "money", "default_lots": 20000,
                 "max_open_entries": 3, "max_position_lots": 7, "exits": "lifo",
                 "percent_mode": true, "output_mode": 1},
    "params": {"fast": 8},
    "quotes": "q.json",
    "user_dir": "profiles"
  })");
  const qxrun::RunSettings settings = qxrun::LoadRunFile(file);
  ASSERT_EQ(settings.Symbols.size(), 2u);
  const qxrun::SymbolSettings& symbol = settings.Symbols[0];
  EXPECT_EQ(symbol.File, folder.Path() / "cfg/bars/a.csv");  // from the run file's folder
  EXPECT_EQ(symbol.Columns.Delimiter, ';');
  const qxrun::SymbolTerms& terms = symbol.Terms;
  EXPECT_EQ(std::tuple(terms.Market, terms.Code, terms.Name, terms.Expiry, terms.Currency,
                       terms.CurrencySymbol),
            std::tuple(3u, "rb888", "rebar", "2024-05-15", "USD", "$"));
  EXPECT_EQ(std::tuple(terms.MinMove, terms.PriceScale, terms.ContractUnit, terms.BigPointValue,
                       terms.MarginKind, terms.MarginRatio, terms.MaxSingleTradeSize),
            std::tuple(2, 0.5, 10, 1.5, 5, 0.08, 500));
  EXPECT_EQ(terms.Sessions, "21:00-23:00,09:00-10:15,");  // 12-character items
  EXPECT_FALSE(terms.Tradable || terms.MarketOrders || terms.StopOrders || terms.ShortSelling);
  const CostSetting& costs = symbol.Costs;
  EXPECT_EQ(std::tuple(costs.MarginRate, costs.CommissionKind, costs.CommissionRate,
                       costs.SlippageKind, costs.Slippage),
            std::tuple(0.1, 2u, 0.5, 1u, 2.0));
  EXPECT_TRUE(costs.NoEntryCommission && costs.SameDayExitFree);
  // The second symbol keeps every default.
  EXPECT_EQ(settings.Symbols[1].Terms.MinMove, 1);
  EXPECT_EQ(settings.Symbols[1].Costs.MarginRate, 1.0);
  EXPECT_TRUE(settings.Symbols[1].File.empty());

  const qxrun::StrategySettings& strategy = settings.Strategy;
  EXPECT_EQ(std::tuple(strategy.InitCapital, strategy.DefaultLotsMode, strategy.DefaultLotsValue,
                       strategy.MaxOpenEntries, strategy.MaxPositionLots, strategy.OutputMode),
            std::tuple(50000.0, 2u, 20000, 3, 7, 1));
  EXPECT_TRUE(strategy.LifoExits && strategy.PercentMode);
  EXPECT_EQ(settings.Params.at("fast"), 8.0);
  EXPECT_EQ(settings.Quotes, folder.Path() / "cfg/q.json");
  EXPECT_EQ(settings.UserDir, folder.Path() / "cfg/profiles");
}

TEST(RunFileTest, DataFilesReplaceTheRunFilesAndNameTheSymbols) {
  qxrun::RunSettings settings = qxrun::DefaultRunSettings();
  EXPECT_THROW(qxrun::ApplyDataFiles(settings, {}), qxrun::InputError);

  qxrun::ApplyDataFiles(settings, {"data/IF888.csv", "x/rb.txt"});
  ASSERT_EQ(settings.Symbols.size(), 2u);
  EXPECT_EQ(settings.Symbols[0].Terms.Code, "IF888");
  EXPECT_EQ(settings.Symbols[1].Terms.Code, "rb");

  qxrun::RunSettings twoInFile;
  twoInFile.Symbols.resize(2);
  twoInFile.Symbols[0].File = "a.csv";
  twoInFile.Symbols[0].Terms.Code = "kept";
  twoInFile.Symbols[1].File = "c.csv";
  qxrun::ApplyDataFiles(twoInFile, {"b.csv"});  // replaces the first only
  EXPECT_EQ(twoInFile.Symbols[0].File, "b.csv");
  EXPECT_EQ(twoInFile.Symbols[0].Terms.Code, "kept");
  EXPECT_EQ(twoInFile.Symbols[1].File, "c.csv");
  EXPECT_EQ(twoInFile.Symbols[1].Terms.Code, "c");
  qxrun::RunSettings missing;
  missing.Symbols.resize(2);
  try {
    qxrun::ApplyDataFiles(missing, {"b.csv"});
    FAIL() << "the second symbol has no file";
  } catch (const qxrun::InputError& error) {
    EXPECT_STREQ(error.what(), "--data: symbol 1 has no bar file");
  }
}

TEST(RunFileTest, SessionsMustBeClockRanges) {
  EXPECT_EQ(qxrun::SessionItems("", "x"), "");
  EXPECT_EQ(qxrun::SessionItems("00:00-24:00", "x"), "00:00-24:00,");
  // The platform's own form, with its closing comma, reads the same.
  EXPECT_EQ(qxrun::SessionItems("09:30-11:30,13:00-15:00,", "x"), "09:30-11:30,13:00-15:00,");
  for (const char* bad :
       {"9:30-11:30", "09:30-11:60", "09:30_11:30", "24:30-25:00", "09:30-11:30,,13:00-15:00"}) {
    EXPECT_THROW(qxrun::SessionItems(bad, "x"), qxrun::InputError) << bad;
  }
}

// Refusals found by fuzzing the loader: a number past the largest double escaped as the JSON
// library's own exception (an internal failure instead of bad input), and a key or a value holding
// a line break broke the one-line message.
TEST(RunFileTest, EveryRefusalIsOneLineNamingTheLine) {
  ScratchFolder folder;
  const struct {
    const char* text;
    const char* message;  // after the file's path
  } rows[] = {
      {"{\n \"strategy\": {\"initial_capital\": 1e999}}",
       ":2: malformed JSON: number overflow parsing '1e999'"},
      {"{\"strategy\": {\"exits\": \"fi\\nfo\"}}",
       ": /strategy/exits: must be one of fifo, lifo, not \"fi\\nfo\""},
      {"{\"sym\\r\\u0001bols\": []}", ": /sym\\r\\x01bols: unknown key"},
  };
  for (const auto& row : rows) {
    const auto file = folder.Write("run.json", row.text);
    try {
      qxrun::LoadRunFile(file);
      ADD_FAILURE() << row.text << " was read";
    } catch (const qxrun::InputError& error) {
      EXPECT_EQ(error.what(), file.string() + row.message) << row.text;
    }
  }
}

TEST(FormulaParameterTest, DefaultsThenRunFileThenCommandLine) {
  const qxrun::FormulaInfo& info = qxrun::MaCrossInfo();
  auto values = qxrun::ResolveParameters(info, {}, {});
  EXPECT_EQ(values.at("fast"), 5.0);
  EXPECT_EQ(values.at("slow"), 20.0);
  values = qxrun::ResolveParameters(info, {{"fast", 8}, {"slow", 30}}, {"slow=40"});
  EXPECT_EQ(values.at("fast"), 8.0);
  EXPECT_EQ(values.at("slow"), 40.0);
  // The bounds are inclusive.
  values = qxrun::ResolveParameters(info, {}, {"fast=1", "slow=10000"});
  EXPECT_EQ(values.at("fast"), 1.0);
  EXPECT_EQ(values.at("slow"), 10000.0);
  EXPECT_THROW(qxrun::ResolveParameters(info, {}, {"slow=10001"}), qxrun::InputError);
  EXPECT_THROW(qxrun::ResolveParameters(info, {}, {"fast="}), qxrun::InputError);
  EXPECT_THROW(qxrun::ResolveParameters(info, {}, {"=3"}), qxrun::InputError);
  // A fractional parameter takes fractions.
  values = qxrun::ResolveParameters(qxrun::BreakoutInfo(), {}, {"stop=1.5"});
  EXPECT_EQ(values.at("stop"), 1.5);
}

TEST(FormulaParameterTest, EveryBundledFormulaDefaultLiesInItsRange) {
  for (const qxrun::FormulaInfo* info : qxrun::BundledFormulas()) {
    for (const qxrun::Parameter& parameter : info->Parameters) {
      EXPECT_GE(parameter.Default, parameter.Min) << info->Name << " " << parameter.Name;
      EXPECT_LE(parameter.Default, parameter.Max) << info->Name << " " << parameter.Name;
    }
    EXPECT_NO_THROW(qxrun::ResolveParameters(*info, {}, {})) << info->Name;
  }
}

}  // namespace
}  // namespace qxrun_test
