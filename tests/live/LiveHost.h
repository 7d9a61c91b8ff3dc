// A host bound to an account over one futures series, with a test adapter that counts its calls.
#ifndef SYSFUNCS_TESTS_LIVE_LIVE_HOST_H_
#define SYSFUNCS_TESTS_LIVE_LIVE_HOST_H_

#include "sysfuncs/sysfuncs.h"

#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <memory>
#include <utility>
#include <vector>

namespace sysfuncs::testing {

// Three bars in Shanghai time: Monday 2024-03-04 14:00, Tuesday 09:00 and 10:00. Bar 0 lies on
// another trading day than the last bar; bar 1 on the same one.
inline std::vector<QXBar> ThreeBars() {
  return {MakeBar(ShanghaiInstant(2024, 3, 4, 14), 3990, 4000, 3980, 3995, 10),
          MakeBar(ShanghaiInstant(2024, 3, 5, 9), 4000, 4010, 3990, 4005, 10),
          MakeBar(ShanghaiInstant(2024, 3, 5, 10), 4005, 4020, 4000, 4010, 10)};
}

struct LiveHost {
  explicit LiveHost(std::vector<QXBar> bars = ThreeBars(), uint32_t barType = 1,
                    uint32_t barInterval = 1) {
    // Tick 0.2 (2 x 0.1), 10 units a lot of point value 1, margin kind 4.
    adapter.properties["rb2410"] = TradableContract(2, 0.1f, 10, 1.0f, 4);
    host.AddSource("rb2410", std::move(bars), barType, barInterval, 7);
    host.data.BrokerID = "8|abc";
    host.data.AccountID = "10086";
    host.data.FormulaName = "MA交叉";
    host.data.InitCapital = 1000000.0;
    host.data.MaxPositionLots = 10;
    host.data.CostSettings[0].MarginRate = 0.1;
  }
  // Built at bar 0 on first use, as a run starts; the host then moves to the bar asked for.
  CSystemFuncs& Funcs(int32_t bar) {
    if (!funcs) {
      host.At(0, 0);
      funcs = std::make_unique<CSystemFuncs>(&host.data);
    }
    host.At(0, bar);
    return *funcs;
  }
  int32_t LastBar() const { return static_cast<int32_t>(host.sources[0].Bars.size()) - 1; }
  CSystemFuncs& AtLastBar() { return Funcs(LastBar()); }

  TestHost host;
  FakeAdapter adapter;
  ScopedAdapter scoped{&adapter};
  std::unique_ptr<CSystemFuncs> funcs;
};

}  // namespace sysfuncs::testing

#endif  // SYSFUNCS_TESTS_LIVE_LIVE_HOST_H_
