#include "qxrun/host/HostRun.h"

namespace qxrun {

HostInstance::HostInstance(std::vector<QXDataSource>& sources, const RunSettings& settings,
                           const std::string& formulaName)
    : outputMode_(settings.Strategy.OutputMode) {
  const size_t count = sources.size();
  data_.DataSources = &sources;
  data_.DataCount = static_cast<int32_t>(count);
  data_.BarCount = count == 0 ? 0 : static_cast<int32_t>(sources[0].Bars.size());
  data_.SourceInfos.resize(count);
  data_.CostSettings.resize(count);
  data_.Ledgers.resize(count);
  for (size_t i = 0; i < count && i < settings.Symbols.size(); ++i) {
    data_.SourceInfos[i].MarginRatio = settings.Symbols[i].Terms.MarginRatio;
    data_.CostSettings[i] = settings.Symbols[i].Costs;
  }
  const StrategySettings& strategy = settings.Strategy;
  data_.OutputMode = strategy.OutputMode;
  data_.InitCapital = strategy.InitCapital;
  data_.DefaultLotsMode = strategy.DefaultLotsMode;
  data_.DefaultLotsValue = strategy.DefaultLotsValue;
  data_.MaxOpenEntries = strategy.MaxOpenEntries;
  data_.MaxPositionLots = strategy.MaxPositionLots;
  data_.PercentMode = strategy.PercentMode;
  data_.LifoExits = strategy.LifoExits;
  data_.Account = new StrategyAccount;
  data_.Symbols = new SymbolCache;
  data_.FormulaName = formulaName;
}

void HostInstance::Run(const FormulaInfo& info, const std::map<std::string, double>& params,
                       const Progress& progress, int32_t every) {
  const int32_t bars = data_.BarCount;
  if (bars == 0) return;
  data_.CurrentData = 0;
  data_.CurrentBar = 0;
  CSystemFuncs funcs(&data_);
  FormulaContext context(&data_, params);
  std::unique_ptr<Formula> formula = info.Create(context);
  int32_t nextReport = every;
  for (int32_t bar = 0; bar < bars; ++bar) {
    data_.CurrentData = 0;
    data_.CurrentBar = bar;
    data_.OutputMode = 0;
    formula->OnBar(funcs);
    data_.CurrentData = 0;
    data_.CurrentBar = bar;
    data_.BarCount = bars;
    data_.OutputMode = outputMode_;
    funcs.BarCheckout();
    if (progress && bar + 1 == nextReport) {
      progress(bar + 1, bars);
      nextReport += every;
    }
  }
  if (progress && nextReport - every != bars) progress(bars, bars);  // the end, once
}

void HostInstance::Begin(const FormulaInfo& info, const std::map<std::string, double>& params) {
  data_.CurrentData = 0;
  data_.CurrentBar = 0;
  funcs_ = std::make_unique<CSystemFuncs>(&data_);
  context_ = std::make_unique<FormulaContext>(&data_, params);
  formula_ = info.Create(*context_);
  evaluatedBar_ = -1;
}

void HostInstance::Evaluate(int32_t bar) {
  const int32_t bars = static_cast<int32_t>((*data_.DataSources)[0].Bars.size());
  if (bar == evaluatedBar_ && bar == bars - 1) {
    // The last bar anew: a new object rolls the state back to the bar's start.
    funcs_.reset();
    data_.CurrentData = 0;
    data_.CurrentBar = bar;
    data_.BarCount = bars;
    funcs_ = std::make_unique<CSystemFuncs>(&data_);
  }
  data_.CurrentData = 0;
  data_.CurrentBar = bar;
  data_.BarCount = bars;
  data_.OutputMode = 0;
  formula_->OnBar(*funcs_);
  evaluatedBar_ = bar;
}

void HostInstance::Checkout(int32_t bar) {
  data_.CurrentData = 0;
  data_.CurrentBar = bar;
  data_.BarCount = static_cast<int32_t>((*data_.DataSources)[0].Bars.size());
  data_.OutputMode = outputMode_;
  funcs_->BarCheckout();
}

}  // namespace qxrun
