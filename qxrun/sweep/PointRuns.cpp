#include "qxrun/sweep/PointRuns.h"

#include "qxrun/host/HostRun.h"
#include "qxrun/report/RunFiles.h"
#include "qxrun/report/Tables.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <malloc.h>
#include <mutex>
#include <thread>

namespace qxrun {

const std::vector<std::string>& FigureColumns() {
  static const std::vector<std::string> columns = [] {
    std::vector<std::string> names;
    for (const StatRow& row : StatRows(RunFigures{})) {
      names.push_back(row.Key);
      if (row.HasSides) {
        names.push_back(row.Key + "_long");
        names.push_back(row.Key + "_short");
      }
    }
    return names;
  }();
  return columns;
}

std::vector<double> FigureValues(const RunFigures& figures) {
  std::vector<double> values;
  values.reserve(FigureColumns().size());
  for (const StatRow& row : StatRows(figures)) {
    values.push_back(row.All);
    if (row.HasSides) {
      values.push_back(row.Long);
      values.push_back(row.Short);
    }
  }
  return values;
}

std::map<std::string, double> PointParams(const SweepSetup& setup, const ParamPoint& point) {
  std::map<std::string, double> params = setup.BaseParams;
  for (size_t i = 0; i < point.size() && i < setup.AxisNames.size(); ++i) {
    params[setup.AxisNames[i]] = point[i];
  }
  return params;
}

RunFigures RunPointFigures(const SweepSetup& setup, std::vector<QXDataSource>& sources,
                           const ParamPoint& point, PointTrace* trace) {
  HostInstance instance(sources, setup.Settings, setup.Info->Name);
  instance.SkipPlots();  // a point is judged by its figures alone
  instance.Run(*setup.Info, PointParams(setup, point));
  if (trace != nullptr) {
    trace->EquityCurve = instance.Account().EquityCurve;
    trace->Trades = instance.Account().Trades;
  }
  return ComputeRunFigures(setup.Settings, sources, instance.Account());
}

// Each point builds and frees a data object of about a megabyte and a half. Blocks that size are
// mapped and unmapped by default, so every point would fault in fresh pages; kept on the heap once
// freed, they serve the next point (about a third of a point's time on these machines).
void KeepFreedBlocks() {
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
}

std::vector<int64_t> GuidedChunkStarts(int64_t total, int64_t workers) {
  const int64_t share = 2 * std::max<int64_t>(workers, 1);
  std::vector<int64_t> starts{0};
  for (int64_t next = 0; next < total;) {
    next += std::max<int64_t>((total - next) / share, 1);
    starts.push_back(next);
  }
  return starts;
}

std::vector<std::vector<double>> RunPoints(const SweepSetup& setup,
                                           std::vector<QXDataSource>& sources,
                                           const std::vector<ParamPoint>& points, int jobs,
                                           const PointProgress& progress) {
  KeepFreedBlocks();
  std::vector<std::vector<double>> rows(points.size());
  std::atomic<size_t> next{0};
  std::mutex mutex;  // guards `done`, `failure` and the progress calls
  int64_t done = 0;
  std::exception_ptr failure;
  const auto work = [&] {
    for (;;) {
      const size_t index = next.fetch_add(1);
      if (index >= points.size()) return;
      try {
        rows[index] = FigureValues(RunPointFigures(setup, sources, points[index]));
      } catch (...) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!failure) failure = std::current_exception();
        next = points.size();  // the others stop after their current point
        return;
      }
      const std::lock_guard<std::mutex> lock(mutex);
      ++done;
      if (progress) progress(done, static_cast<int64_t>(points.size()));
    }
  };
  const size_t threads = std::min(points.size(), static_cast<size_t>(std::max(jobs, 1)));
  std::vector<std::thread> workers;
  for (size_t i = 1; i < threads; ++i) workers.emplace_back(work);
  work();  // the calling thread is one of the workers
  for (std::thread& worker : workers) worker.join();
  if (failure) std::rethrow_exception(failure);
  return rows;
}

int DefaultJobs() { return std::max(1u, std::thread::hardware_concurrency()); }

}  // namespace qxrun
