#include "EngineInput.h"

#include "support/HostBuilder.h"

#include <array>
#include <cmath>
#include <limits>

namespace sysfuncs::fuzz {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class T, size_t N>
T Pick(FuzzedDataProvider& input, const std::array<T, N>& values) {
  return values[input.ConsumeIntegralInRange<size_t>(0, N - 1)];
}

// Bars of one series in whole ticks: a walk from a starting price, with some bars that did not
// trade (no volume, High = Low) and some at a price of 0.
std::vector<QXBar> ReadBars(FuzzedDataProvider& input, const std::vector<int64_t>& times,
                            double tickSize, bool singlePrice) {
  std::vector<QXBar> bars;
  int64_t ticks = input.ConsumeIntegralInRange<int64_t>(0, 200000);
  for (int64_t time : times) {
    int64_t open = std::max<int64_t>(0, ticks + input.ConsumeIntegralInRange(-50, 50));
    const int64_t close = std::max<int64_t>(0, open + input.ConsumeIntegralInRange(-50, 50));
    int64_t high = std::max(open, close) + input.ConsumeIntegralInRange(0, 30);
    int64_t low = std::max<int64_t>(0, std::min(open, close) - input.ConsumeIntegralInRange(0, 30));
    double volume = input.ConsumeIntegralInRange(0, 1000);
    // A single-price bar, or with some luck a bar without trading (no volume, High = Low).
    const bool noTrade = !singlePrice && input.ConsumeIntegralInRange(0, 15) == 0;
    if (singlePrice || noTrade) open = high = low = close;
    if (noTrade) volume = 0.0;
    bars.push_back(testing::MakeBar(time, open * tickSize, high * tickSize, low * tickSize,
                                    close * tickSize, volume,
                                    input.ConsumeIntegralInRange(0, 5000)));
    ticks = close;
  }
  return bars;
}

}  // namespace

double TickSize(const Quill::ICodeProperty& contract) {
  return std::round(static_cast<double>(contract.MinMove * contract.PriceScale) * 1e6) / 1e6;
}

namespace {

std::vector<int64_t> ReadTimes(FuzzedDataProvider& input, int count) {
  static constexpr std::array<int64_t, 5> kSteps = {60000, 300000, 3600000, 86400000, 1000};
  const int64_t step = Pick(input, kSteps);
  const bool irregular = input.ConsumeBool();
  std::vector<int64_t> times;
  // Monday 2024-03-04 09:00 in Shanghai.
  int64_t time = testing::ShanghaiInstant(2024, 3, 4, 9) +
                 input.ConsumeIntegralInRange<int64_t>(0, 48) * 3600000;
  for (int i = 0; i < count; ++i) {
    times.push_back(time);
    time += irregular ? step * input.ConsumeIntegralInRange(1, 1000) : step;
  }
  return times;
}

}  // namespace

ScenarioInput ReadScenario(FuzzedDataProvider& input) {
  static constexpr std::array<int32_t, 3> kMinMoves = {1, 2, 5};
  static constexpr std::array<float, 5> kPriceScales = {1.0f, 0.1f, 0.01f, 0.2f, 0.001f};
  static constexpr std::array<int32_t, 4> kUnits = {1, 10, 300, 5};
  static constexpr std::array<float, 3> kBigPoints = {1.0f, 0.5f, 10.0f};
  static constexpr std::array<double, 5> kMarginRates = {1.0, 0.1, 0.05, 0.0, 2.0};
  static constexpr std::array<double, 4> kCommissions = {0.0, 1.0, 5.0, 0.5};
  static constexpr std::array<double, 4> kCapitals = {1e6, 1e4, 100.0, 1e9};
  static constexpr std::array<int32_t, 7> kDefaultLots = {1, 0, 2, 5, 50, 100, -1};
  static constexpr std::array<int32_t, 5> kOpenEntries = {1, 2, 3, 5, 0};
  static constexpr std::array<int32_t, 6> kPositionLots = {1, 2, 5, 10, 100, 10000};

  ScenarioInput scenario;
  const int seriesCount = input.ConsumeIntegralInRange(1, 3);
  const int barCount = input.ConsumeIntegralInRange(1, 60);
  const std::vector<int64_t> times = ReadTimes(input, barCount);
  for (int i = 0; i < seriesCount; ++i) {
    SeriesInput series;
    series.Code = "S" + std::to_string(i);
    Quill::ICodeProperty& contract = series.Contract;
    contract.Tradable = true;
    contract.MinMove = Pick(input, kMinMoves);
    contract.PriceScale = Pick(input, kPriceScales);
    contract.ContractUnit = Pick(input, kUnits);
    contract.BigPointValue = Pick(input, kBigPoints);
    contract.MarginKind = input.ConsumeIntegralInRange(0, 6);
    CostSetting& costs = series.Costs;
    costs.MarginRate = Pick(input, kMarginRates);
    costs.CommissionKind = input.ConsumeIntegralInRange(0, 3);
    costs.CommissionRate = Pick(input, kCommissions);
    costs.NoEntryCommission = input.ConsumeBool();
    costs.SameDayExitFree = input.ConsumeBool();
    costs.SlippageKind = input.ConsumeIntegralInRange(0, 1);
    costs.Slippage = input.ConsumeIntegralInRange(0, 2);
    // The main series decides whether every series is single-priced: packed ticks (type 2,
    // interval 0), whose bars the harness gives one price.
    const bool packed =
        i == 0 ? input.ConsumeIntegralInRange(0, 7) == 0 : scenario.Series[0].BarType == 2;
    series.BarType = packed ? 2 : 1;
    series.BarInterval = packed ? 0 : 1;
    const double tickSize = TickSize(contract);
    series.Bars = ReadBars(input, times, tickSize, packed);
    const double last = series.Bars.back().Close;
    series.UpperLimit =
        input.ConsumeBool() ? 0.0 : last + tickSize * input.ConsumeIntegral<int8_t>();
    series.LowerLimit =
        input.ConsumeBool() ? 0.0 : last + tickSize * input.ConsumeIntegral<int8_t>();
    scenario.Series.push_back(std::move(series));
  }
  scenario.InitCapital = Pick(input, kCapitals);
  scenario.DefaultLotsMode = input.ConsumeIntegralInRange(0, 3);
  scenario.DefaultLotsValue = Pick(input, kDefaultLots);
  scenario.MaxOpenEntries = Pick(input, kOpenEntries);
  scenario.MaxPositionLots = Pick(input, kPositionLots);
  scenario.PercentMode = input.ConsumeBool();
  scenario.LifoExits = input.ConsumeBool();
  scenario.SuppressSummary = input.ConsumeBool();
  scenario.OutputMode = input.ConsumeIntegralInRange(0, 2);
  scenario.LastBarIsToday = input.ConsumeBool();
  return scenario;
}

double ReadLots(FuzzedDataProvider& input) {
  static constexpr std::array<double, 22> kLots = {0.0,
                                                   1.0,
                                                   2.0,
                                                   3.0,
                                                   0.5,
                                                   0.999,
                                                   1.995,
                                                   2.5,
                                                   7.0,
                                                   -0.005,
                                                   -0.01,
                                                   -0.02,
                                                   -1.0,
                                                   100.0,
                                                   1e9,
                                                   1e300,
                                                   -0.0,
                                                   kNaN,
                                                   kInfinity,
                                                   -kInfinity,
                                                   kInvalidNumber,
                                                   std::numeric_limits<double>::denorm_min()};
  if (input.ConsumeIntegralInRange(0, 7) == 0) return input.ConsumeFloatingPoint<double>();
  return Pick(input, kLots);
}

double ReadPrice(FuzzedDataProvider& input, const QXBar& bar, double tickSize) {
  const int8_t ticks = input.ConsumeIntegral<int8_t>();
  switch (input.ConsumeIntegralInRange(0, 15)) {
    case 0:
      return 0.0;
    case 1:
      return bar.Close;
    case 2:
      return bar.High + ticks * tickSize;
    case 3:
      return bar.Low + ticks * tickSize;
    case 4:
      return (bar.High + bar.Low) / 2 + ticks * tickSize / 7;  // off the tick
    case 5:
      return -bar.Close - 1.0;
    case 6:
      return 1e300;
    case 7:
      return -1e300;
    case 8:
      return kInvalidNumber;
    case 9:
      return kNaN;
    case 10:
      return kInfinity;
    case 11:
      return -kInfinity;
    case 12:
      return 0.00005 * ticks;  // near 0: a market order while below 0.0001
    case 13:
      return input.ConsumeFloatingPoint<double>();
    default:
      return bar.Open + ticks * tickSize;
  }
}

double ReadValue(FuzzedDataProvider& input) {
  static constexpr std::array<double, 9> kValues = {
      0.0, 1.5, -2.0, 1e-8, kInvalidNumber, kNaN, kInfinity, -kInfinity, 1e308};
  if (input.ConsumeBool()) return input.ConsumeFloatingPoint<double>();
  return Pick(input, kValues);
}

}  // namespace sysfuncs::fuzz
