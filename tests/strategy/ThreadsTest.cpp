// Formula instances on their own threads, as a platform runs the strategies of one chart: each
// instance has its own host data object, all of them read one shared bar array, and each orders,
// plots and appends to files while a writer thread hands the lines over.
#include "sysfuncs/Environment.h"
#include "sysfuncs/SystemFuncs.h"

#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

constexpr int kInstances = 8;
constexpr int kBars = 400;

// One chart: a minute series of an unknown symbol (tick 1, lot value 1, margin kind 4) whose
// Close swings around 1000 with a period of 40 bars.
std::vector<QXDataSource> Chart() {
  std::vector<QXBar> bars;
  const int64_t first = ShanghaiInstant(2024, 3, 4, 9, 30);
  for (int i = 0; i < kBars; ++i) {
    const double close =
        std::round(1000.0 + 50.0 * std::sin(i * 2 * std::numbers::pi / 40) + i % 7);
    bars.push_back(MakeBar(first + i * 60000LL, close - 1, close + 3, close - 4, close, 100));
  }
  QXDataSource source;
  source.Symbol = "rb";
  source.BarType = 1;
  source.BarInterval = 1;
  source.Bars = std::move(bars);
  return {source};
}

// A host data object of one instance over the chart's shared bars.
std::unique_ptr<CQXBaseData> Instance(std::vector<QXDataSource>* chart) {
  auto data = std::make_unique<CQXBaseData>();
  data->DataSources = chart;
  data->DataCount = 1;
  data->BarCount = kBars;
  data->SourceInfos.resize(1);
  data->CostSettings.resize(1);
  data->CostSettings[0].MarginRate = 0.1;
  data->CostSettings[0].CommissionRate = 1.0;
  data->Ledgers.resize(1);
  data->InitCapital = 100000.0;
  data->MaxOpenEntries = 1;
  data->MaxPositionLots = 10;
  return data;
}

// Instance `id` follows a moving average of 2 + id bars: long above it, short below; it plots
// the average and appends one line per bar, "<id> <bar>", to `file`.
void RunStrategy(CQXBaseData& data, int id, const std::string& file) {
  CSystemFuncs funcs(&data);
  const std::vector<QXBar>& bars = (*data.DataSources)[0].Bars;
  const int length = 2 + id;
  char line[32];
  for (int bar = 0; bar < kBars; ++bar) {
    data.CurrentBar = bar;
    if (bar + 1 >= length) {
      double sum = 0.0;
      for (int i = bar + 1 - length; i <= bar; ++i) sum += bars[i].Close;
      const double average = sum / length;
      funcs.PlotNumeric("average", average);
      if (funcs.Close() > average && funcs.MarketPosition() <= 0) funcs.Buy(1 + id % 3, 0);
      if (funcs.Close() < average && funcs.MarketPosition() >= 0) funcs.SellShort(1 + id % 3, 0);
    }
    std::snprintf(line, sizeof line, "%d %d", id, bar);
    funcs.FileAppend(file, line);
    funcs.BarCheckout();
  }
}

// What a run leaves, for comparing two runs of one instance.
auto Outcome(const CQXBaseData& data) {
  std::vector<std::tuple<uint32_t, int32_t, double, double>> orders;
  for (const OrderRecord& order : data.Ledgers[0].Orders) {
    orders.emplace_back(order.Kind, order.Bar, order.Lots, order.Price);
  }
  std::vector<double> equity;
  for (const EquityPoint& point : data.Account->EquityCurve) equity.push_back(point.Equity);
  std::vector<double> plotted;
  const PlotSeries& series = data.Plots.at(0);
  for (size_t bar = 0; bar < series.Size(); ++bar) plotted.push_back(series.NumericValue(bar));
  return std::tuple(orders, equity, plotted, data.Account->Capital);
}

TEST(Threads, EightInstancesOverOneChartRunAsTheyRunAloneAndLoseNoLine) {
  // Every line the writer hands over, by file and text.
  std::map<std::pair<std::string, std::string>, int> arrivals;
  SysFuncsPlatform services;
  services.SendToMsgCenter = [&arrivals](int, const Quill::MsgRecord* records, size_t count) {
    for (size_t i = 0; i < count; ++i) ++arrivals[{records[i].Key, records[i].Text}];
    return 1;
  };
  ScopedPlatform platform(services);
  ResetEnvironmentForTesting();
  SysFuncs_Init(nullptr, nullptr, "", "");
  CSFEnvPtr env = GetSFEnv();
  ASSERT_TRUE(env->m_timer->cancel(env->m_loggerTask));  // the writer runs on its thread below
  IceUtil::TimerTaskPtr writer = env->m_loggerTask;

  std::vector<QXDataSource> chart = Chart();
  std::vector<std::unique_ptr<CQXBaseData>> instances;
  for (int id = 0; id < kInstances; ++id) instances.push_back(Instance(&chart));
  std::atomic<int> finished{0};
  std::thread handOver([&] {
    while (finished.load() < kInstances) writer->runTimerTask();
  });
  std::vector<std::thread> threads;
  for (int id = 0; id < kInstances; ++id) {
    threads.emplace_back([&, id] {
      RunStrategy(*instances[id], id, "threads" + std::to_string(id % 2));
      finished.fetch_add(1);
    });
  }
  for (std::thread& thread : threads) thread.join();
  handOver.join();
  writer->runTimerTask();  // what the writer's last run missed

  // Each instance alone, on a chart of its own, leaves what it left among the others.
  for (int id = 0; id < kInstances; ++id) {
    std::vector<QXDataSource> ownChart = Chart();
    std::unique_ptr<CQXBaseData> alone = Instance(&ownChart);
    RunStrategy(*alone, id, "alone");
    EXPECT_EQ(Outcome(*instances[id]), Outcome(*alone)) << "instance " << id;
    EXPECT_FALSE(instances[id]->Ledgers[0].Trades.empty()) << "instance " << id;
  }
  writer->runTimerTask();
  SysFuncs_Exit();
  writer = nullptr;
  env = nullptr;
  ResetEnvironmentForTesting();

  // Every line of the threads arrived once.
  int lines = 0;
  for (int id = 0; id < kInstances; ++id) {
    const std::string key = "FA[threads" + std::to_string(id % 2) + "]";
    for (int bar = 0; bar < kBars; ++bar) {
      const std::string text = std::to_string(id) + " " + std::to_string(bar);
      const auto found = arrivals.find({key, text});
      ASSERT_NE(found, arrivals.end()) << key << " " << text;
      EXPECT_EQ(found->second, 1) << key << " " << text;
      ++lines;
    }
  }
  EXPECT_EQ(arrivals.size(), static_cast<size_t>(lines) + size_t{kInstances} * kBars);  // + alone
}

}  // namespace
}  // namespace sysfuncs::testing
