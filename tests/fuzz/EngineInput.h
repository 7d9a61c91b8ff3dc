// The engine harness's reading of its input bytes: the settings of a strategy instance, one to
// three bar series over the same bar times, and the calls a formula makes, bar by bar.
#ifndef SYSFUNCS_TESTS_FUZZ_ENGINE_INPUT_H_
#define SYSFUNCS_TESTS_FUZZ_ENGINE_INPUT_H_

#include "sysfuncs/sysfuncs.h"

#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

namespace sysfuncs::fuzz {

// One contract: what the adapter reports for it, its costs and its bars.
struct SeriesInput {
  std::string Code;
  Quill::ICodeProperty Contract;
  CostSetting Costs;
  uint32_t BarType = 1;
  uint32_t BarInterval = 1;
  std::vector<QXBar> Bars;
  double UpperLimit = 0.0;  // the day's limits in the quote; 0: none
  double LowerLimit = 0.0;
};

struct ScenarioInput {
  std::vector<SeriesInput> Series;
  double InitCapital = 1e6;
  uint32_t DefaultLotsMode = 0;
  int32_t DefaultLotsValue = 1;
  int32_t MaxOpenEntries = 1;
  int32_t MaxPositionLots = 1;
  bool PercentMode = false;
  bool LifoExits = false;
  bool SuppressSummary = false;
  int32_t OutputMode = 0;
  bool LastBarIsToday = false;  // the clock stands on the last bar's day, so limits apply
};

// The tick of a contract as the library reads it: MinMove x PriceScale to six decimals.
double TickSize(const Quill::ICodeProperty& contract);

// Reads the scenario from the front of the input. Bars are finite, on their series' tick, never
// negative, with Low <= Open, Close <= High and rising times; some are no-trade bars.
ScenarioInput ReadScenario(FuzzedDataProvider& input);

// The calls a formula can make, one per step.
enum class Call : uint8_t {
  kBuy,
  kSell,
  kSellShort,
  kBuyToCover,
  kAddress,      // address another data series
  kSeriesReads,  // every position and trade statistic of the addressed series
  kPortfolioReads,
  kPlot,
  kAlert,
  kGlobalVariable,
  kReset,       // the host asks for a reset before a later bar
  kReevaluate,  // a new CSystemFuncs at the current bar
  kCheckout,    // the formula body ends: BarCheckout
  kCount
};

// An argument of a signal order: lots or a price, picked from the values that matter (zero,
// negative, fractional, huge, NaN, infinite, the invalid number, prices of the bar).
double ReadLots(FuzzedDataProvider& input);
double ReadPrice(FuzzedDataProvider& input, const QXBar& bar, double tickSize);

// A number for plots and global variables, from the same kinds of values.
double ReadValue(FuzzedDataProvider& input);

}  // namespace sysfuncs::fuzz

#endif  // SYSFUNCS_TESTS_FUZZ_ENGINE_INPUT_H_
