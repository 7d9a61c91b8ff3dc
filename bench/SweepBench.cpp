// Scaling of `qxrun sweep` on this machine: points per second with 1 and 2 worker threads over
// bars loaded once, the start-up cost of a point, and the memory one worker adds while the bars
// are shared. The moving-average crossover on the bundled daily stock file, a grid of 190 points.
//
// Usage: sweep_bench [repetitions] (default 5). Times are medians of the repetitions after one
// warm-up sweep, whose time is printed apart; the 1- and 2-thread sweeps alternate so that both
// see the same machine. The MPI figure comes from scripts/sweep-scaling.sh.
#include "qxrun/RunInputs.h"
#include "qxrun/host/HostRun.h"
#include "qxrun/host/HostServices.h"
#include "qxrun/sweep/ParamGrid.h"
#include "qxrun/sweep/PointRuns.h"
#include "qxrun/sweep/WalkForward.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <malloc.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double ProcessCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

size_t HeapInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

}  // namespace

int main(int argc, char** argv) {
  const int repetitions = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  qxrun::NameLocalZone();
  qxrun::RunOptions options;
  options.DataFiles = {SWEEP_BENCH_BARS};
  options.Formula = "ma_cross";
  qxrun::RunInputs inputs = qxrun::PrepareRun(options);
  std::vector<QXDataSource> sources = qxrun::LoadSources(inputs.Settings);
  qxrun::SweepSetup setup{inputs.Info, inputs.Settings, inputs.Params, {"fast", "slow"}};
  const std::vector<qxrun::ParamAxis> axes = {qxrun::ParseAxis("fast=5:50:5", *inputs.Info),
                                              qxrun::ParseAxis("slow=20:200:10", *inputs.Info)};
  const std::vector<qxrun::ParamPoint> points = qxrun::GridPoints(axes, {});
  qxrun::HostServices services(inputs, std::filesystem::temp_directory_path());
  const size_t bars = sources[0].Bars.size();
  std::printf("%zu points of ma_cross over %zu daily bars (%.0f KiB of bars, shared)\n",
              points.size(), bars, bars * sizeof(QXBar) / 1024.0);

  Clock::time_point start = Clock::now();
  qxrun::RunPoints(setup, sources, points, 1);
  std::printf("cold sweep, 1 thread: %.3f s\n", Seconds(start));

  std::vector<double> wall[2];
  std::vector<double> cpu[2];
  for (int r = 0; r < repetitions; ++r) {
    for (int threads = 1; threads <= 2; ++threads) {
      const double cpuStart = ProcessCpuSeconds();
      start = Clock::now();
      qxrun::RunPoints(setup, sources, points, threads);
      wall[threads - 1].push_back(Seconds(start));
      cpu[threads - 1].push_back(ProcessCpuSeconds() - cpuStart);
    }
  }
  const double one = Median(wall[0]);
  const double two = Median(wall[1]);
  std::printf("1 thread:  %7.1f points/s (median %.3f s wall, %.3f s CPU)\n", points.size() / one,
              one, Median(cpu[0]));
  std::printf("2 threads: %7.1f points/s (median %.3f s wall, %.3f s CPU), %.2fx one thread\n",
              points.size() / two, two, Median(cpu[1]), one / two);

  // Start-up cost of a point: a run over the first 2 bars (creation of the data object, the
  // library object and the formula, the checkout of 2 bars, the figures), against a whole one.
  std::vector<QXDataSource> tiny = qxrun::SliceSources(sources, 0, 2);
  std::vector<double> tinyRuns;
  std::vector<double> fullRuns;
  for (int r = 0; r < 200; ++r) {
    start = Clock::now();
    qxrun::RunPointFigures(setup, tiny, points[0]);
    tinyRuns.push_back(Seconds(start));
  }
  for (int r = 0; r < 21; ++r) {
    start = Clock::now();
    qxrun::RunPointFigures(setup, sources, points[0]);
    fullRuns.push_back(Seconds(start));
  }
  std::printf("start-up of a point: %.1f us (a whole point: %.2f ms)\n", Median(tinyRuns) * 1e6,
              Median(fullRuns) * 1e3);

  // Memory a worker adds: the heap in use while one instance holds a finished run.
  const size_t before = HeapInUse();
  size_t during = 0;
  {
    qxrun::HostInstance instance(sources, setup.Settings, setup.Info->Name);
    instance.SkipPlots();  // as a sweep's point
    instance.Run(*setup.Info, qxrun::PointParams(setup, points.back()));
    during = HeapInUse();
  }
  std::printf("memory per worker: %.0f KiB of heap for its data object (%.2f x the bars)\n",
              (during - before) / 1024.0,
              static_cast<double>(during - before) / static_cast<double>(bars * sizeof(QXBar)));
  return 0;
}
