// qxrun replay: ticks per second of a whole replay with the broker's store on disk, and the cost
// of one evaluation anew of the newest bar.
//
//   replay_bench [runs] [folder]
//
// The replay runs the bundled live_quotes formula (quotes and account read on every tick, an order
// every 100 ticks) over the last 2000 bars of the bundled five-minute file, ticks made from the
// bars; each run is a fresh session in a store under `folder` (default: the temporary folder).
// The re-evaluation is timed on ma_cross (orders on most bars) and live_quotes, each evaluated
// anew 20000 times on the newest bar. Medians of `runs` runs (default 5).
#include "qxrun/broker/BrokerAdapter.h"
#include "qxrun/formulas/Bundled.h"
#include "qxrun/host/FileAdapter.h"
#include "qxrun/host/HostRun.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"
#include "qxrun/replay/ReplayCommand.h"
#include "qxrun/replay/ReplayLoop.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Microseconds per evaluation anew of the newest bar of `formula`.
double ReevaluationMicros(const std::string& formula, const std::string& param, bool chart,
                          const std::filesystem::path& folder) {
  qxrun::RunOptions options;
  options.DataFiles = {SOURCE_DIR "/examples/data/2006-min-005.txt"};
  options.Formula = formula;
  options.Params = {param};
  qxrun::RunInputs inputs = qxrun::PrepareRun(options);
  std::vector<QXDataSource> sources = qxrun::LoadSources(inputs.Settings);
  qxrun::FeedSettings feedSettings;
  feedSettings.Code = sources[0].Symbol;
  qxrun::QuoteFeed feed(feedSettings);
  for (const QXBar& bar : sources[0].Bars) feed.AddBar(bar);
  qxrun::PaperBroker broker({{0, sources[0].Symbol, 1.0, 0.01, CostSetting{}}}, nullptr);
  broker.OpenAccount("paper", 1e9);
  qxrun::BrokerAdapter live(broker, &feed);
  qxrun::FileAdapter adapter(inputs.Settings.Symbols, {}, folder);
  adapter.SetLive(&live);
  qxrun::MessageCentre centre(folder);
  qxrun::ModuleSession module(centre, adapter, folder.string(), "bench",
                              [](Quill::ITradeOrder*, int, int) { return 1; });
  qxrun::HostInstance instance(sources, inputs.Settings, formula);
  instance.Data().BrokerID = "1|paper";
  instance.Data().AccountID = "paper";
  instance.Start(*inputs.Info, inputs.Params);
  const auto last = static_cast<int32_t>(sources[0].Bars.size() - 1);
  instance.RunHistory(last);
  instance.MarkBarStart();
  constexpr int kEvaluations = 20000;
  instance.Reevaluate(last, chart);  // warm
  const Clock::time_point start = Clock::now();
  for (int i = 0; i < kEvaluations; ++i) instance.Reevaluate(last, chart);
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / kEvaluations;
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  const std::filesystem::path folder =
      argc > 2 ? std::filesystem::path(argv[2])
               : std::filesystem::temp_directory_path() / "qxrun-replay-bench";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const std::filesystem::path config = folder / "run.json";
  std::ofstream(config) << R"({"symbols": [{"code": "IF888", "min_move": 2, "price_scale": 0.1,
    "big_point_value": 300, "costs": {"margin_rate": 0.12, "commission_kind": "turnover",
    "commission": 0.25}}], "user_dir": ")"
                        << (folder / "home").string() << "\"}";

  std::vector<double> ticksPerSecond;
  std::vector<double> microsPerTick;
  qxrun::ReplayTimes times;
  for (int run = 0; run < runs; ++run) {
    qxrun::ReplayOptions options;
    options.Run.DataFiles = {SOURCE_DIR "/examples/data/2006-min-005.txt"};
    options.Run.RunFile = config.string();
    options.Run.Formula = "live_quotes";
    options.Run.Params = {"every=100"};
    options.Run.Quiet = true;
    options.Last = 2000;
    options.Fresh = true;
    std::ostringstream out;
    std::ostringstream err;
    qxrun::ReplayCommand(options, out, err, &times);
    ticksPerSecond.push_back(static_cast<double>(times.Ticks) / times.Replay);
    microsPerTick.push_back(times.Replay * 1e6 / static_cast<double>(times.Ticks));
  }
  std::printf("replay, live_quotes every=100, store on disk (%s):\n", (folder / "home").c_str());
  std::printf("  %lld ticks, %lld evaluations, %lld orders per run\n",
              static_cast<long long>(times.Ticks), static_cast<long long>(times.Evaluations),
              static_cast<long long>(times.Orders));
  std::printf("  median of %d runs: %.0f ticks/s (%.1f us per tick)\n", runs,
              Median(ticksPerSecond), Median(microsPerTick));

  for (const auto& [formula, param] :
       {std::pair<std::string, std::string>{"ma_cross", "fast=5"}, {"live_quotes", "every=100"}}) {
    for (const bool chart : {true, false}) {
      std::vector<double> micros;
      for (int run = 0; run < runs; ++run) {
        micros.push_back(ReevaluationMicros(formula, param, chart, folder));
      }
      std::printf("evaluation anew of the newest bar, %s, %s: median of %d runs %.2f us\n",
                  formula.c_str(), chart ? "chart checkout (a tick)" : "report checkout (the end)",
                  runs, Median(micros));
    }
  }
  std::filesystem::remove_all(folder);
  return 0;
}
