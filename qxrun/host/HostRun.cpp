#include "qxrun/host/HostRun.h"

namespace qxrun {
namespace {

// The account's own block, between the account and the host's copy of it (same member names).
template <typename From, typename To>
void CopyAccountBlock(const From& from, To& to) {
  to.Capital = from.Capital;
  to.CumReturn = from.CumReturn;
  to.PercentEquitySum = from.PercentEquitySum;
  to.Stats = from.Stats;
  to.SavedStats = from.SavedStats;
  to.FinalPosition = from.FinalPosition;
  to.Detail = from.Detail;
  to.Report = from.Report;
}

}  // namespace

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
  PointAt(0);
  CSystemFuncs funcs(&data_);
  Start(info, params);
  int32_t nextReport = every;
  for (int32_t bar = 0; bar < bars; ++bar) {
    Step(funcs, bar, outputMode_);
    if (progress && bar + 1 == nextReport) {
      progress(bar + 1, bars);
      nextReport += every;
    }
  }
  if (progress && nextReport - every != bars) progress(bars, bars);  // the end, once
}

int32_t HostInstance::PointAt(int32_t bar) {
  const auto bars = static_cast<int32_t>((*data_.DataSources)[0].Bars.size());
  data_.CurrentData = 0;
  data_.CurrentBar = bar;
  data_.BarCount = bars;
  return bars;
}

void HostInstance::Start(const FormulaInfo& info, const std::map<std::string, double>& params) {
  context_ = std::make_unique<FormulaContext>(&data_, params);
  formula_ = info.Create(*context_);
}

void HostInstance::Step(CSystemFuncs& funcs, int32_t bar, int32_t checkoutMode) {
  PointAt(bar);
  data_.OutputMode = bodyMode_;
  formula_->OnBar(funcs);
  PointAt(bar);  // the body may have moved the pointer to another data source or bar
  data_.OutputMode = checkoutMode;
  funcs.BarCheckout();
  data_.OutputMode = outputMode_;
}

void HostInstance::RunHistory(int32_t end) {
  if (end <= 0) return;
  PointAt(0);
  CSystemFuncs funcs(&data_);
  for (int32_t bar = 0; bar < end; ++bar) Step(funcs, bar, outputMode_);
}

void HostInstance::Reevaluate(int32_t bar, bool chart) {
  StrategyAccount& account = *data_.Account;
  CopyAccountBlock(barStart_, account);
  if (account.EquityCurve.size() > barStart_.EquityPoints) {
    account.EquityCurve.resize(barStart_.EquityPoints);
  }
  account.BarOrders.resize(account.FirstOrderFrom(bar));
  PointAt(bar);
  CSystemFuncs funcs(&data_);
  Step(funcs, bar, chart ? 0 : outputMode_);
}

void HostInstance::MarkBarStart() {
  const StrategyAccount& account = *data_.Account;
  CopyAccountBlock(account, barStart_);
  barStart_.EquityPoints = account.EquityCurve.size();
}

void HostInstance::Begin(const FormulaInfo& info, const std::map<std::string, double>& params) {
  PointAt(0);
  funcs_ = std::make_unique<CSystemFuncs>(&data_);
  Start(info, params);
  evaluatedBar_ = -1;
}

void HostInstance::Evaluate(int32_t bar) {
  const int32_t bars = PointAt(bar);
  if (bar == evaluatedBar_ && bar == bars - 1) {
    // The last bar anew: a new object rolls the state back to the bar's start.
    funcs_.reset();
    funcs_ = std::make_unique<CSystemFuncs>(&data_);
  }
  data_.OutputMode = 0;
  formula_->OnBar(*funcs_);
  evaluatedBar_ = bar;
}

void HostInstance::Checkout(int32_t bar) {
  PointAt(bar);
  data_.OutputMode = outputMode_;
  funcs_->BarCheckout();
}

}  // namespace qxrun
