// The run-file loader on arbitrary files: each is either read into settings that keep the
// loader's ranges, or refused with one line naming what is wrong.
#include "InputFile.h"
#include "qxrun/InputError.h"
#include "qxrun/config/RunFile.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

[[noreturn]] void Fail(const char* problem, const std::string& detail = "") {
  std::fprintf(stderr, "fuzz_run_file: %s %s\n", problem, detail.c_str());
  std::abort();
}

void CheckOneLine(const qxrun::InputError& error) {
  const std::string message = error.what();
  if (message.empty() || message.find_first_of("\r\n") != std::string::npos) {
    Fail("the error is not one line:", message);
  }
}

bool NonNegativeFinite(double value) { return std::isfinite(value) && value >= 0.0; }

void CheckSettings(const qxrun::RunSettings& settings) {
  const qxrun::StrategySettings& strategy = settings.Strategy;
  if (!std::isfinite(strategy.InitCapital) || !(strategy.InitCapital > 0.0)) {
    Fail("the initial capital is not positive and finite");
  }
  if (strategy.OutputMode < 0 || strategy.OutputMode > 2 || strategy.MaxOpenEntries < 1 ||
      strategy.MaxPositionLots < 1 || strategy.DefaultLotsMode > 2) {
    Fail("a strategy setting is out of its range");
  }
  for (const qxrun::SymbolSettings& symbol : settings.Symbols) {
    const qxrun::SymbolTerms& terms = symbol.Terms;
    if (terms.MarginKind < 1 || terms.MarginKind > 5 || terms.MinMove < 1 ||
        !(terms.PriceScale > 0.0) || !std::isfinite(terms.PriceScale) ||
        !NonNegativeFinite(terms.BigPointValue) || !NonNegativeFinite(terms.MarginRatio)) {
      Fail("a contract term is out of its range:", terms.Code);
    }
    const CostSetting& costs = symbol.Costs;
    if (!NonNegativeFinite(costs.MarginRate) || !NonNegativeFinite(costs.CommissionRate) ||
        !NonNegativeFinite(costs.Slippage) || costs.CommissionKind > 2 || costs.SlippageKind > 1) {
      Fail("a cost setting is out of its range:", terms.Code);
    }
  }
  for (const auto& [name, value] : settings.Params) {
    if (!std::isfinite(value)) Fail("a parameter is not finite:", name);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static sysfuncs::fuzz::InputFile file;
  qxrun::RunSettings settings;
  try {
    settings = qxrun::LoadRunFile(file.Write(data, size));
  } catch (const qxrun::InputError& error) {
    CheckOneLine(error);
    return 0;
  }
  CheckSettings(settings);
  try {
    qxrun::ApplyDataFiles(settings, {"bars.csv"});
  } catch (const qxrun::InputError& error) {
    CheckOneLine(error);
  }
  return 0;
}
