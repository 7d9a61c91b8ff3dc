// The strategy engine under arbitrary formulas: the input bytes give one to three bar series and
// the calls a formula makes on each bar (the four signal orders with any lots and prices,
// statistics and portfolio reads, plots, alerts, global variables, re-evaluation of the bar by
// a new CSystemFuncs, a reset request), and the run goes to the last bar, then on with real-time
// updates of the last bar. The engine's rules are checked after every order and every checkout.
#include "sysfuncs/sysfuncs.h"

#include "EngineInput.h"
#include "EngineInvariants.h"
#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace sysfuncs::fuzz {
namespace {

constexpr int kMostCalls = 600;
constexpr const char* kOrderNames[] = {"Buy", "Sell", "SellShort", "BuyToCover"};

int64_t gNow = 0;
// FUZZ_ENGINE_TRACE=1 prints the scenario and every call, for reading a finding.
const bool gTrace = std::getenv("FUZZ_ENGINE_TRACE") != nullptr;

testing::FakeAdapter& Adapter() {
  static testing::FakeAdapter adapter;
  return adapter;
}

[[noreturn]] void Broken(const char* rule, double value) {
  std::fprintf(stderr, "fuzz_engine: broken rule: %s (%.17g)\n", rule, value);
  std::abort();
}

bool SameValue(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

class Run {
 public:
  Run(FuzzedDataProvider& input, const ScenarioInput& scenario) : input_(input) {
    testing::FakeAdapter& adapter = Adapter();
    adapter.properties.clear();
    adapter.quotes.clear();
    for (const SeriesInput& series : scenario.Series) {
      adapter.properties[series.Code] = series.Contract;
      Quill::ITickDeepLevel quote;
      quote.LastPrice = series.Bars.back().Close;
      quote.UpperLimit = series.UpperLimit;
      quote.LowerLimit = series.LowerLimit;
      adapter.quotes[series.Code] = quote;
      host_.AddSource(series.Code, series.Bars, series.BarType, series.BarInterval);
      host_.data.CostSettings.back() = series.Costs;
      facts_.TickSizes.push_back(TickSize(series.Contract));
    }
    CQXBaseData& data = host_.data;
    data.InitCapital = scenario.InitCapital;
    data.DefaultLotsMode = scenario.DefaultLotsMode;
    data.DefaultLotsValue = scenario.DefaultLotsValue;
    data.MaxOpenEntries = scenario.MaxOpenEntries;
    data.MaxPositionLots = scenario.MaxPositionLots;
    data.PercentMode = scenario.PercentMode;
    data.LifoExits = scenario.LifoExits;
    data.SuppressSummary = scenario.SuppressSummary;
    data.OutputMode = scenario.OutputMode;
    data.AlertEnabled = true;
    facts_.BarCount = static_cast<int32_t>(scenario.Series[0].Bars.size());
    // A clock on the last bar's day lets the day's limits clamp orders there; otherwise it stands
    // years later.
    gNow = scenario.LastBarIsToday ? scenario.Series[0].Bars.back().Time
                                   : testing::ShanghaiInstant(2030, 1, 2, 12);
  }

  void Go() {
    if (gTrace) Trace();
    host_.At(0, 0);
    funcs_ = std::make_unique<CSystemFuncs>(&host_.data);
    for (int32_t bar = 0; bar < facts_.BarCount; ++bar) {
      host_.At(0, bar);
      while (calls_ < kMostCalls && input_.remaining_bytes() > 0 && Step(bar)) {
      }
      Checkout(bar);
    }
    // Real-time updates of the last bar: evaluated again, checked out again.
    const int32_t last = facts_.BarCount - 1;
    while (calls_ < kMostCalls && input_.remaining_bytes() > 0) {
      if (!Step(last)) Checkout(last);
    }
    funcs_.reset();
  }

 private:
  // One call of the formula; false when the formula body ends (the checkout is due).
  bool Step(int32_t bar) {
    ++calls_;
    CQXBaseData& data = host_.data;
    const auto call = static_cast<Call>(
        input_.ConsumeIntegralInRange<uint8_t>(0, static_cast<uint8_t>(Call::kCount) - 1));
    switch (call) {
      case Call::kBuy:
      case Call::kSell:
      case Call::kSellShort:
      case Call::kBuyToCover:
        Order(call);
        return true;
      case Call::kAddress:
        data.CurrentData = input_.ConsumeIntegralInRange<int32_t>(0, data.DataCount - 1);
        if (gTrace) std::fprintf(stderr, "address series %d\n", data.CurrentData);
        return true;
      case Call::kSeriesReads:
        CheckSeriesStatistics(*funcs_, static_cast<size_t>(data.CurrentData));
        ReadWholeNumbers();
        return true;
      case Call::kPortfolioReads:
        CheckPortfolioStatistics(*funcs_);
        funcs_->Portfolio_TotalTrades();
        funcs_->Portfolio_CurrentEntries();
        return true;
      case Call::kPlot:
        Plot();
        return true;
      case Call::kAlert:
        if (input_.ConsumeBool()) {
          funcs_->Alert(input_.ConsumeRandomLengthString(16));
        } else {
          funcs_->Commentary(input_.ConsumeRandomLengthString(16));
        }
        return true;
      case Call::kGlobalVariable:
        GlobalVariable();
        return true;
      case Call::kReset:
        data.ResetPending = 1;
        data.ResetBar = bar + input_.ConsumeIntegralInRange(0, 3);
        resetAsked_ = true;
        if (gTrace) std::fprintf(stderr, "reset before bar %d\n", data.ResetBar);
        return true;
      case Call::kReevaluate:
        if (gTrace) std::fprintf(stderr, "re-evaluate bar %d\n", bar);
        funcs_.reset();
        funcs_ = std::make_unique<CSystemFuncs>(&host_.data);
        facts_.Reevaluated = true;
        // Before the last bar the copies are not the bar's; after a reset the statistics saved
        // before it come back while the trades they count are gone.
        if ((bar >= 1 && bar < facts_.BarCount - 1) || resetAsked_) facts_.StaleRollback = true;
        return true;
      case Call::kCheckout:
      case Call::kCount:
        break;
    }
    return false;
  }

  void Trace() const {
    const CQXBaseData& data = host_.data;
    std::fprintf(stderr,
                 "capital %g, lots mode %u value %d, entries %d, position %d, percent %d, lifo %d, "
                 "output %d, clock %lld\n",
                 data.InitCapital, data.DefaultLotsMode, data.DefaultLotsValue, data.MaxOpenEntries,
                 data.MaxPositionLots, data.PercentMode, data.LifoExits, data.OutputMode,
                 static_cast<long long>(gNow));
    for (size_t i = 0; i < host_.sources.size(); ++i) {
      const Quill::ICodeProperty& contract = Adapter().properties[host_.sources[i].Symbol];
      const CostSetting& costs = data.CostSettings[i];
      std::fprintf(stderr,
                   "series %zu: tick %g, unit %d, big point %g, margin kind %d rate %g, commission "
                   "%u %g (entry-free %d, same-day-free %d), slippage %u %g, type %u/%u\n",
                   i, facts_.TickSizes[i], contract.ContractUnit, contract.BigPointValue,
                   contract.MarginKind, costs.MarginRate, costs.CommissionKind,
                   costs.CommissionRate, costs.NoEntryCommission, costs.SameDayExitFree,
                   costs.SlippageKind, costs.Slippage, host_.sources[i].BarType,
                   host_.sources[i].BarInterval);
      for (const QXBar& bar : host_.sources[i].Bars) {
        std::fprintf(stderr, "  %lld O %.17g H %.17g L %.17g C %.17g V %g\n",
                     static_cast<long long>(bar.Time), bar.Open, bar.High, bar.Low, bar.Close,
                     bar.Vol);
      }
    }
  }

  void Checkout(int32_t bar) {
    CQXBaseData& data = host_.data;
    if (gTrace) std::fprintf(stderr, "checkout %d\n", bar);
    data.CurrentData = 0;
    const OrderMark mark = MarkOrders(data);
    funcs_->BarCheckout();
    CheckNewOrders(data, mark);
    CheckAfterCheckout(data, *funcs_, bar, facts_);
  }

  void Order(Call call) {
    CQXBaseData& data = host_.data;
    const size_t series = static_cast<size_t>(data.CurrentData);
    const QXBar& bar = host_.sources[series].Bars[static_cast<size_t>(data.CurrentBar)];
    const double lots = ReadLots(input_);
    const double price = ReadPrice(input_, bar, facts_.TickSizes[series]);
    const OrderMark mark = MarkOrders(data);
    const size_t trades = data.Account->Trades.size();
    bool done = false;
    switch (call) {
      case Call::kBuy:
        done = funcs_->Buy(lots, price);
        break;
      case Call::kSell:
        done = funcs_->Sell(lots, price);
        break;
      case Call::kSellShort:
        done = funcs_->SellShort(lots, price);
        break;
      default:
        done = funcs_->BuyToCover(lots, price);
        break;
    }
    if (gTrace) {
      std::fprintf(stderr, "bar %d series %zu: %s(%.17g, %.17g) = %d\n", data.CurrentBar, series,
                   kOrderNames[static_cast<int>(call)], lots, price, done);
    }
    // A NaN or infinite argument is refused like the invalid number, and changes nothing.
    for (double argument : {lots, price}) {
      if (std::isfinite(argument) && argument != kInvalidNumber) continue;
      if (done || data.Ledgers[series].Orders.size() != mark.OrderCounts[series] ||
          data.Account->Trades.size() != trades) {
        Broken("an order with a NaN, infinite or invalid argument is refused", argument);
      }
    }
    CheckNewOrders(data, mark);
    CheckPositions(data);
  }

  void ReadWholeNumbers() {
    CSystemFuncs& f = *funcs_;
    f.MarketPosition();
    f.CurrentEntries();
    f.EntryDate();
    f.LastEntryDate();
    f.ExitDate();
    f.BarsSinceEntry();
    f.BarsSinceLastEntry();
    f.BarsSinceExit();
    f.MaxEntries();
    f.AvgBarsWinTrade();
    f.AvgBarsLosTrade();
    f.AvgBarsEvenTrade();
    f.MaxConsecWinners();
    f.MaxConsecLosers();
  }

  void Plot() {
    static constexpr std::array<const char*, 5> kNames = {"line", "LINE", "other", "N/A", ""};
    const std::string name = kNames[input_.ConsumeIntegralInRange<size_t>(0, kNames.size() - 1)];
    const double value = ReadValue(input_);
    const double locator = ReadValue(input_);
    const int32_t color = input_.ConsumeIntegralInRange(-2, 0xFFFFFF);
    const int32_t barsAgo = input_.ConsumeIntegralInRange(-2, 5);
    switch (input_.ConsumeIntegralInRange(0, 3)) {
      case 0:
        funcs_->PlotNumeric(name, value, locator, color, barsAgo);
        break;
      case 1:
        funcs_->PlotBool(name, value > 0.0, locator, color, barsAgo);
        break;
      case 2:
        funcs_->PlotString(name, input_.ConsumeRandomLengthString(8), locator, color, barsAgo);
        break;
      default:
        funcs_->Unplot(name, barsAgo);
        break;
    }
  }

  // A variable stored reads back as stored, whatever the value. (A name is looked up without its
  // outer blanks but stored with them, so " x " is stored and never read back, on purpose.)
  void GlobalVariable() {
    static constexpr std::array<const char*, 4> kNames = {"x", " x ", "", "y"};
    const double value = ReadValue(input_);
    if (input_.ConsumeBool()) {
      const int32_t index = input_.ConsumeIntegralInRange(-3, 3);
      if (funcs_->SetGlobalVar(index, value) && !SameValue(funcs_->GetGlobalVar(index), value)) {
        Broken("a global variable reads back as stored", value);
      }
    } else {
      const std::string name = kNames[input_.ConsumeIntegralInRange<size_t>(0, kNames.size() - 1)];
      if (funcs_->SetGlobalVar2(name, value) && name.find(' ') == std::string::npos &&
          !SameValue(funcs_->GetGlobalVar2(name), value)) {
        Broken("a named global variable reads back as stored", value);
      }
    }
  }

  FuzzedDataProvider& input_;
  testing::TestHost host_;
  RunFacts facts_;
  bool resetAsked_ = false;  // a reset was asked for at some point of the run
  std::unique_ptr<CSystemFuncs> funcs_;
  int calls_ = 0;
};

}  // namespace
}  // namespace sysfuncs::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("TZ", "Asia/Shanghai", 1);
  SysFuncsPlatform services;
  services.Now = [] { return sysfuncs::fuzz::gNow; };
  services.MessageBox = [](const std::string&) {};
  services.PlaySound = [](const std::string&) { return false; };
  services.SendToMsgCenter = [](int, const Quill::MsgRecord*, size_t) { return 1; };
  SysFuncs_SetPlatform(services);
  sysfuncs::GetSFEnv()->m_pDataAdapter = &sysfuncs::fuzz::Adapter();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  const sysfuncs::fuzz::ScenarioInput scenario = sysfuncs::fuzz::ReadScenario(input);
  sysfuncs::fuzz::Run run(input, scenario);
  run.Go();
  return 0;
}
