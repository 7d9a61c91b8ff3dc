// The host data object built from bar series and settings, stepped over the bars: one body call
// and one checkout per bar, series variables in the data object, other data sources addressed by
// time, FileAppend lines handed over when the session ends.
#include "qxrun/Formula.h"
#include "qxrun/QxrunProcess.h"
#include "qxrun/formulas/Bundled.h"
#include "qxrun/host/HostRun.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace qxrun_test {
namespace {

constexpr int64_t kMinute = 60000;
constexpr int64_t kStart = 1136163600000;  // 2006-01-02 09:00 in UTC+8

QXDataSource Series(const std::string& symbol, int64_t first, int64_t step, int count) {
  QXDataSource source;
  source.Symbol = symbol;
  for (int i = 0; i < count; ++i) {
    QXBar bar;
    bar.Time = first + i * step;
    bar.Open = bar.High = bar.Low = bar.Close = 100.0 + i;
    bar.Vol = 1;
    source.Bars.push_back(bar);
  }
  return source;
}

// What the probe formula saw, bar by bar.
struct Seen {
  std::vector<int32_t> Bars;
  std::vector<double> PreviousCloses;  // closes[1] through the series variable
  std::vector<int32_t> OtherBars;      // the bar of data source 1 addressed at each bar
  std::vector<double> OtherCloses;
};
Seen* g_seen = nullptr;

class Probe : public qxrun::Formula {
 public:
  explicit Probe(qxrun::FormulaContext& context)
      : data_(context.Data()), lots_(context.IntParam("lots")), closes_(context.Numeric()) {}

  void OnBar(CSystemFuncs& f) override {
    closes_.Set(f.Close());
    g_seen->Bars.push_back(data_->CurrentBar);
    g_seen->PreviousCloses.push_back(closes_[1]);
    if (data_->DataCount > 1) {
      qxrun::DataScope other(*data_, 1);
      g_seen->OtherBars.push_back(data_->CurrentBar);
      g_seen->OtherCloses.push_back(f.Close());
    }
    f.FileAppend("probe.txt", "bar " + std::to_string(data_->CurrentBar));
    if (data_->CurrentBar == 1) f.Buy(lots_, 0);
  }

 private:
  CQXBaseData* data_;
  int32_t lots_;
  qxrun::NumericSeries closes_;
};

qxrun::FormulaInfo ProbeInfo() {
  return {qxrun::kFormulaInterfaceVersion,
          "probe",
          "records what it sees",
          {{"lots", 2, 1, 10, true, ""}},
          1,
          [](qxrun::FormulaContext& context) -> std::unique_ptr<qxrun::Formula> {
            return std::make_unique<Probe>(context);
          }};
}

TEST(HostRunTest, EveryBarOnceWithItsCheckoutAndSeriesInTheDataObject) {
  ScratchFolder folder;
  std::vector<QXDataSource> sources = {Series("A", kStart, 5 * kMinute, 4),
                                       // Minute bars from 09:02: the bar at or before each
                                       // five-minute bar of A.
                                       Series("B", kStart + 2 * kMinute, kMinute, 20)};
  qxrun::RunSettings settings;
  settings.Symbols.resize(2);
  settings.Strategy.InitCapital = 10000;
  settings.Strategy.OutputMode = 0;  // positions stay open at the end
  qxrun::MessageCentre centre(folder.Path());
  CDataAdapter adapter;
  qxrun::HostInstance instance(sources, settings, "probe");
  Seen seen;
  g_seen = &seen;
  std::vector<int32_t> progress;
  {
    qxrun::ModuleSession session(centre, adapter, folder.Path().string(), "test");
    instance.Run(
        ProbeInfo(), {{"lots", 3}},
        [&progress](int32_t done, int32_t total) { progress.push_back(done * 10 + total); }, 2);
  }
  g_seen = nullptr;

  EXPECT_EQ(seen.Bars, (std::vector<int32_t>{0, 1, 2, 3}));
  // closes[1] reads the bar before; before the first bar, the first bar's value.
  EXPECT_EQ(seen.PreviousCloses, (std::vector<double>{100, 100, 101, 102}));
  // A at 09:00, 09:05, 09:10, 09:15; B from 09:02 each minute: none at 09:00 (its first bar is
  // addressed), then 09:05 = bar 3, 09:10 = bar 8, 09:15 = bar 13.
  EXPECT_EQ(seen.OtherBars, (std::vector<int32_t>{0, 3, 8, 13}));
  EXPECT_EQ(seen.OtherCloses, (std::vector<double>{100, 103, 108, 113}));
  EXPECT_EQ(progress, (std::vector<int32_t>{24, 44}));  // every 2 bars, then the end

  const CQXBaseData& data = instance.Data();
  EXPECT_EQ(data.CurrentData, 0);
  EXPECT_EQ(data.BarCount, 4);
  ASSERT_EQ(data.NumericSeries.size(), 1u);
  EXPECT_EQ(data.NumericSeries[0], (std::vector<double>{100, 101, 102, 103}));
  ASSERT_EQ(instance.Account().EquityCurve.size(), 4u);
  // 3 lots bought at 101 on bar 1, valued at the close of bar 3 (103): +6 with lot value 1.
  EXPECT_DOUBLE_EQ(instance.Account().EquityCurve.back().Equity, 10006.0);
  EXPECT_EQ(data.FormulaName, "probe");
  EXPECT_EQ(ReadFile(folder.Path() / "probe.txt"), "bar 0\nbar 1\nbar 2\nbar 3\n");
}

TEST(HostRunTest, SettingsReachTheDataObject) {
  std::vector<QXDataSource> sources = {Series("A", kStart, kMinute, 3)};
  qxrun::RunSettings settings;
  settings.Symbols.resize(1);
  settings.Symbols[0].Terms.MarginRatio = 0.15;
  settings.Symbols[0].Costs.CommissionRate = 7;
  settings.Strategy.InitCapital = 123;
  settings.Strategy.DefaultLotsMode = 1;
  settings.Strategy.DefaultLotsValue = 50;
  settings.Strategy.MaxOpenEntries = 4;
  settings.Strategy.MaxPositionLots = 9;
  settings.Strategy.LifoExits = true;
  settings.Strategy.PercentMode = true;
  settings.Strategy.OutputMode = 1;
  qxrun::HostInstance instance(sources, settings, "x");
  const CQXBaseData& data = instance.Data();
  EXPECT_EQ(data.DataSources, &sources);  // the bars are not copied
  EXPECT_EQ(std::tuple(data.DataCount, data.BarCount, data.SourceInfos[0].MarginRatio,
                       data.CostSettings[0].CommissionRate, data.Ledgers.size(), data.InitCapital),
            std::tuple(1, 3, 0.15, 7.0, 1u, 123.0));
  EXPECT_EQ(std::tuple(data.DefaultLotsMode, data.DefaultLotsValue, data.MaxOpenEntries,
                       data.MaxPositionLots, data.OutputMode),
            std::tuple(1u, 50, 4, 9, 1));
  EXPECT_TRUE(data.LifoExits && data.PercentMode);
  EXPECT_TRUE(data.Account && data.Symbols);
}

// A sweep's point keeps no plots, and trades exactly as the plotted run does.
TEST(HostRunTest, SkippedPlotsChangeNothingButThePlots) {
  QXDataSource source = Series("A", kStart, kMinute, 0);
  for (int i = 0; i < 60; ++i) {
    QXBar bar;
    bar.Time = kStart + i * kMinute;
    bar.Open = bar.High = bar.Low = bar.Close = 100.0 + (i / 6 % 2 == 0 ? i % 6 : 6 - i % 6);
    source.Bars.push_back(bar);
  }
  std::vector<QXDataSource> sources = {source};
  qxrun::RunSettings settings;
  settings.Symbols.resize(1);
  settings.Strategy.InitCapital = 10000;
  settings.Strategy.OutputMode = 2;
  const std::map<std::string, double> params = {{"fast", 2}, {"slow", 5}};
  qxrun::HostInstance plotted(sources, settings, "ma_cross");
  plotted.Run(qxrun::MaCrossInfo(), params);
  qxrun::HostInstance skipped(sources, settings, "ma_cross");
  skipped.SkipPlots();
  skipped.Run(qxrun::MaCrossInfo(), params);

  EXPECT_EQ(plotted.Data().Plots.size(), 2u);
  EXPECT_TRUE(skipped.Data().Plots.empty());
  ASSERT_GT(plotted.Account().Trades.size(), 2u);
  ASSERT_EQ(skipped.Account().Trades.size(), plotted.Account().Trades.size());
  ASSERT_EQ(skipped.Account().EquityCurve.size(), plotted.Account().EquityCurve.size());
  for (size_t i = 0; i < plotted.Account().EquityCurve.size(); ++i) {
    EXPECT_EQ(skipped.Account().EquityCurve[i].Equity, plotted.Account().EquityCurve[i].Equity);
  }
  EXPECT_EQ(skipped.Account().Report.NetProfit, plotted.Account().Report.NetProfit);
}

TEST(SeriesRefTest, WritesInBarOrderAndFillsGaps) {
  CQXBaseData data;
  data.BarCount = 10;
  qxrun::FormulaContext context(&data, {});
  qxrun::NumericSeries numbers = context.Numeric();
  qxrun::StringSeries texts = context.String();
  EXPECT_EQ(numbers.Get(), 0.0);                     // nothing written yet
  EXPECT_EQ(data.NumericSeries[0].capacity(), 10u);  // room for every bar
  data.CurrentBar = 0;
  numbers.Set(5);
  texts.Set("a");
  data.CurrentBar = 3;  // bars 1 and 2 never written: they hold the last value
  numbers.Set(8);
  EXPECT_EQ(data.NumericSeries[0], (std::vector<double>{5, 5, 5, 8}));
  EXPECT_EQ(numbers[0], 8);
  EXPECT_EQ(numbers[3], 5);
  EXPECT_EQ(numbers[7], 5);  // before the first bar: the first bar's value
  EXPECT_EQ(texts[0], "a");  // bar 3 of the texts not written: the last value
  data.CurrentBar = 2;       // a bar evaluated anew overwrites its value
  numbers.Set(7);
  EXPECT_EQ(data.NumericSeries[0], (std::vector<double>{5, 5, 7, 8}));
  // A roll-back cuts the list; the next bar appends again.
  data.NumericSeries[0].resize(2);
  numbers.Set(6);
  EXPECT_EQ(data.NumericSeries[0], (std::vector<double>{5, 5, 6}));
}

}  // namespace
}  // namespace qxrun_test
