// Cost of a contract property read from the cache: data source 0's construction-time values
// and another data source's cached property list.
#include "sysfuncs/sysfuncs.h"

#include "BenchMain.h"
#include "MinuteHost.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

// A platform that knows every symbol as the same futures contract.
class ContractAdapter : public CDataAdapter {
 public:
  bool GetSymbolProperty(const tagSymbol& /*symbol*/, Quill::ICodeProperty& property) override {
    property.MarketId = 0;
    property.OrderFlags = 0x3;
    property.Tradable = true;
    property.MinMove = 1;
    property.PriceScale = 1.0f;
    property.ContractUnit = 10;
    property.BigPointValue = 1.0f;
    property.MarginKind = 1;
    property.Sessions = "21:00-23:00,09:00-10:15,10:30-11:30,13:30-15:00,";
    return true;
  }
};

// A host with two one-minute series, both cached after the first read.
struct Host : MinuteHost {
  Host() : MinuteHost({"rb2410", "hc2410"}) {}
};

void BigPointValueDataSource0(benchmark::State& state) {
  Host host;
  CSystemFuncs funcs(&host.data);
  for (auto _ : state) benchmark::DoNotOptimize(funcs.BigPointValue());
}
BENCHMARK(BigPointValueDataSource0);

void BigPointValueDataSource1(benchmark::State& state) {
  Host host;
  CSystemFuncs funcs(&host.data);
  host.data.CurrentData = 1;
  funcs.BigPointValue();  // loads the list into the cache
  for (auto _ : state) benchmark::DoNotOptimize(funcs.BigPointValue());
}
BENCHMARK(BigPointValueDataSource1);

void CanTradeDataSource1(benchmark::State& state) {
  Host host;
  CSystemFuncs funcs(&host.data);
  host.data.CurrentData = 1;
  funcs.CanTrade();
  for (auto _ : state) benchmark::DoNotOptimize(funcs.CanTrade());
}
BENCHMARK(CanTradeDataSource1);

}  // namespace

int main(int argc, char** argv) {
  ContractAdapter adapter;
  return RunBenchmarksWithAdapter(adapter, argc, argv);
}
