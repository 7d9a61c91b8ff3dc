// Cost of a quote or account value answered from the instance's cache, as a host calls it through
// the shared library: ns per call and allocations per call (which must be 0).
#include "sysfuncs/sysfuncs.h"

#include "AllocationCounter.h"
#include "BenchMain.h"
#include "MinuteHost.h"

#include <benchmark/benchmark.h>

namespace {

// A platform with one quote and one account for every symbol.
class LiveAdapter : public CDataAdapter {
 public:
  int GetMarketQuote(const tagSymbol& /*symbol*/, Quill::ITickDeepLevel& quote) override {
    quote.TimeStamp = 1750000000000;
    quote.PreSettlePrice = 3990;
    quote.LastPrice = 4000;
    quote.OpenPrice = 3995;
    quote.HighPrice = 4010;
    quote.LowPrice = 3980;
    quote.ClosePrice = 4000;
    quote.UpperLimit = 4300;
    quote.LowerLimit = 3700;
    quote.ChangeFlags = 0x15;
    quote.DepthLevels.assign(5, Quill::DepthLevel{3999, 10, 4001, 12});
    return 1;
  }
  int GetAccountSummary(int /*brokerNo*/, const std::string& /*accountId*/,
                        Quill::ITradeAcctSummary& summary) override {
    summary.CurrentEquity = 1000000;
    return 1;
  }
  int GetPosition(int /*brokerNo*/, const std::string& /*accountId*/,
                  const Quill::ICodeID& /*codeId*/, Quill::ITradePosition& position) override {
    position.BuyPosition = 3;
    return 1;
  }
};

// A host on one one-minute series, bound to an account.
struct Host : MinuteHost {
  Host() : MinuteHost({"rb2410"}) {
    data.BrokerID = "8|abc";
    data.AccountID = "10086";
  }
};

// Fills the cache as a formula reading every figure would, so a look-up searches a full map.
void ReadEverything(CSystemFuncs& f) {
  benchmark::DoNotOptimize(
      f.Q_Close() + f.Q_High() + f.Q_LastDate() + f.Q_LastTime() + f.Q_LastVol() + f.Q_Low() +
      f.Q_Open() + f.Q_OpenInt() + f.Q_Oscillation() + f.Q_PriceChg() + f.Q_PriceChgRatio() +
      f.Q_TickChg() + f.Q_TotalVol() + f.Q_PreSettlePrice() + f.Q_PreOpenInt() + f.Q_AvgPrice() +
      f.Q_TurnOver() + f.Q_HisHigh() + f.Q_HisLow() + f.Q_InsideVol() + f.Q_OutsideVol() +
      f.Q_TodayEntryVol() + f.Q_TodayExitVol() + f.Q_LastFlag() + f.Q_BidPriceFlag() +
      f.Q_AskPriceFlag() + f.Q_OpenIntFlag());
  for (int level = 0; level < 5; ++level) {
    benchmark::DoNotOptimize(f.Q_BidPrice(level) + f.Q_BidVol(level) + f.Q_AskPrice(level) +
                             f.Q_AskVol(level));
  }
  benchmark::DoNotOptimize(f.A_PreviousEquity() + f.A_ProfitLoss() + f.A_FreeMargin() +
                           f.A_TotalFreeze() + f.A_TotalMargin() + f.A_TodayDeposit() +
                           f.A_TodayDrawing() + f.A_BuyPosition() + f.A_SellPosition() +
                           f.A_PositionProfitLoss());
}

// Calls `read` on the last bar after a first call has cached its value; `full` fills the cache
// with every other figure first.
template <typename Read>
void CachedHit(benchmark::State& state, Read read) {
  Host host;
  host.data.CurrentBar = host.data.BarCount - 1;
  CSystemFuncs funcs(&host.data);
  if (state.range(0) != 0) ReadEverything(funcs);
  benchmark::DoNotOptimize(read(funcs));
  // Allocations are counted over a loop of their own, outside the framework's timing loop.
  constexpr int kCountedCalls = 100000;
  const long allocationsBefore = AllocationCount();
  for (int call = 0; call < kCountedCalls; ++call) benchmark::DoNotOptimize(read(funcs));
  const long allocations = AllocationCount() - allocationsBefore;
  for (auto _ : state) benchmark::DoNotOptimize(read(funcs));
  state.counters["allocs/call"] =
      benchmark::Counter(static_cast<double>(allocations) / kCountedCalls);
}

void QLastCachedHit(benchmark::State& state) {
  CachedHit(state, [](CSystemFuncs& f) { return f.Q_Last(); });
}
void CurrentEquityCachedHit(benchmark::State& state) {
  CachedHit(state, [](CSystemFuncs& f) { return f.A_CurrentEquity(); });
}
void BidPriceCachedHit(benchmark::State& state) {
  CachedHit(state, [](CSystemFuncs& f) { return f.Q_BidPrice(2); });
}

// Argument: 0 the cache holds the one key, 1 every figure of the instance.
BENCHMARK(QLastCachedHit)->ArgName("full")->Arg(0)->Arg(1);
BENCHMARK(CurrentEquityCachedHit)->ArgName("full")->Arg(0)->Arg(1);
BENCHMARK(BidPriceCachedHit)->ArgName("full")->Arg(1);

}  // namespace

int main(int argc, char** argv) {
  LiveAdapter adapter;
  return RunBenchmarksWithAdapter(adapter, argc, argv);
}
