// Loading a bar file of 1,000,000 one-minute bars: writes the CSV once into a temporary folder,
// loads it once cold (a fresh process heap) and several times warm, and prints the bars per
// second of the first load and the median of the others, with the memory the load touches at
// its peak per bar (the rise of the resident set over its level before the load).
#include "qxrun/data/BarFile.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kBars = 1000000;
constexpr int kWarmRuns = 5;

// A random walk of minute bars from 2024-01-02 09:00, 240 a day, written as the usual
// "Date,Time,Open,High,Low,Close,Volume,OpenInterest" file.
void WriteBars(const std::filesystem::path& file) {
  std::FILE* out = std::fopen(file.c_str(), "wb");
  if (out == nullptr) {
    std::perror(file.c_str());
    std::exit(1);
  }
  std::fputs("Date,Time,Open,High,Low,Close,Volume,OpenInterest\n", out);
  std::mt19937_64 random(20240102);
  std::uniform_int_distribution<int> step(-4, 4);
  std::uniform_int_distribution<int> wick(0, 6);
  std::uniform_int_distribution<int> volume(1, 20000);
  int year = 2024;
  int month = 1;
  int day = 2;
  int close = 36000;  // in tenths
  char row[128];
  for (int i = 0; i < kBars; ++i) {
    const int minute = i % 240;
    if (i > 0 && minute == 0 && ++day > 28) {  // every month has 28 days here
      day = 1;
      if (++month > 12) {
        month = 1;
        ++year;
      }
    }
    const int open = close;
    close = std::max(1000, close + step(random));
    const int high = std::max(open, close) + wick(random);
    const int low = std::min(open, close) - wick(random);
    const int hhmm = (9 + minute / 60) * 100 + minute % 60;
    const int length = std::snprintf(
        row, sizeof row, "%04d-%02d-%02d,%02d:%02d:00,%d.%d,%d.%d,%d.%d,%d.%d,%d,%d\n", year, month,
        day, hhmm / 100, hhmm % 100, open / 10, open % 10, high / 10, high % 10, low / 10, low % 10,
        close / 10, close % 10, volume(random), 100000 + i % 5000);
    std::fwrite(row, 1, static_cast<size_t>(length), out);
  }
  std::fclose(out);
}

// Resident set now and its high-water mark since the last reset, in bytes.
long StatusBytes(const char* key) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind(key, 0) == 0) return std::stol(line.substr(std::string(key).size())) * 1024;
  }
  return -1;
}

void ResetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

// CPU time of the process (user and system), which other work on a shared machine does not
// stretch the way it stretches the wall-clock time.
double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

struct Run {
  double seconds = 0.0;
  double cpuSeconds = 0.0;
  long peakBytes = 0;
  size_t bars = 0;
};

Run Load(const std::filesystem::path& file) {
  ResetPeak();
  const long before = StatusBytes("VmRSS:");
  QXDataSource source;
  const double cpuStart = CpuSeconds();
  const auto start = std::chrono::steady_clock::now();
  qxrun::LoadBarFile(file, {}, source);
  const auto stop = std::chrono::steady_clock::now();
  Run run;
  run.cpuSeconds = CpuSeconds() - cpuStart;
  run.seconds = std::chrono::duration<double>(stop - start).count();
  run.peakBytes = StatusBytes("VmHWM:") - before;
  run.bars = source.Bars.size();
  return run;
}

}  // namespace

int main() {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("bar_load_bench_" + std::to_string(getpid()));
  std::filesystem::create_directories(folder);
  const std::filesystem::path file = folder / "minutes.csv";
  WriteBars(file);
  const double megabytes = static_cast<double>(std::filesystem::file_size(file)) / 1e6;

  const Run cold = Load(file);
  std::vector<Run> warm;
  for (int i = 0; i < kWarmRuns; ++i) warm.push_back(Load(file));
  std::filesystem::remove_all(folder);

  std::sort(warm.begin(), warm.end(),
            [](const Run& a, const Run& b) { return a.seconds < b.seconds; });
  const Run& median = warm[warm.size() / 2];
  if (cold.bars != kBars || median.bars != kBars) {
    std::fprintf(stderr, "bar_load_bench: loaded %zu bars, expected %d\n", cold.bars, kBars);
    return 1;
  }
  const auto perSecond = [](const Run& run) { return static_cast<double>(run.bars) / run.seconds; };
  std::printf("bar file: %d one-minute bars, %.1f MB\n", kBars, megabytes);
  const auto print = [&](const char* name, const Run& run) {
    std::printf(
        "%-20s %7.1f ms  %5.2f M bars/s  %6.1f MB/s  (CPU %7.1f ms, %5.2f M bars/s)  peak %5.1f "
        "bytes/bar\n",
        name, run.seconds * 1e3, perSecond(run) / 1e6, megabytes / run.seconds,
        run.cpuSeconds * 1e3, static_cast<double>(run.bars) / run.cpuSeconds / 1e6,
        static_cast<double>(run.peakBytes) / kBars);
  };
  print("load, first run:", cold);
  print(("load, median of " + std::to_string(kWarmRuns) + ":").c_str(), median);
  return 0;
}
