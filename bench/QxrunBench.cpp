// Times `qxrun run` of the moving-average crossover over a 1,000,000-bar minute CSV, phase by
// phase: loading, running, writing the files (without the page), and the page on its own; prints
// bars per second of each phase, end to end without the page, and the peak memory per bar.
//
// Usage: qxrun_bench [bars] [folder]; the CSV is made in the folder (default: the system's
// temporary folder) on the first run and kept.
#include "qxrun/RunCommand.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <sys/resource.h>

namespace {

// A random walk of minute bars, 240 a day on weekdays, written row by row.
void MakeBars(const std::filesystem::path& file, long bars) {
  std::ofstream out(file, std::ios::binary);
  out << "Date,Time,Open,High,Low,Close,Volume,OpenInterest\n";
  std::mt19937_64 random(42);
  std::normal_distribution<double> step(0.0, 1.0);
  double price = 3000.0;
  int year = 1990;
  int month = 1;
  int day = 1;
  int weekday = 1;  // 1990-01-01 was a Monday
  int minute = 0;
  char row[160];
  for (long i = 0; i < bars; ++i) {
    const double open = price;
    const double close = std::max(1.0, std::round((open + step(random)) * 5.0) / 5.0);
    const double high = std::max(open, close) + 0.2 * (i % 3);
    const double low = std::max(0.2, std::min(open, close) - 0.2 * (i % 2));
    const int clock = 9 * 60 + 30 + minute;
    std::snprintf(row, sizeof(row), "%04d-%02d-%02d,%02d:%02d:00,%.1f,%.1f,%.1f,%.1f,%d,0\n", year,
                  month, day, clock / 60, clock % 60, open, high, low, close,
                  100 + static_cast<int>(i % 50));
    out << row;
    price = close;
    if (++minute == 240) {
      minute = 0;
      do {
        static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        const int days = kDays[month - 1] + (month == 2 && leap ? 1 : 0);
        weekday = (weekday + 1) % 7;
        if (++day > days) {
          day = 1;
          if (++month > 12) {
            month = 1;
            ++year;
          }
        }
      } while (weekday == 0 || weekday == 6);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  qxrun::NameLocalZone();  // as qxrun does
  const long bars = argc > 1 ? std::atol(argv[1]) : 1000000;
  const std::filesystem::path folder =
      argc > 2 ? std::filesystem::path(argv[2]) : std::filesystem::temp_directory_path();
  const std::filesystem::path csv = folder / ("qxrun-bench-" + std::to_string(bars) + ".csv");
  const bool made = !std::filesystem::exists(csv);
  if (made) MakeBars(csv, bars);
  const std::filesystem::path out = folder / "qxrun-bench-out";
  std::filesystem::remove_all(out);

  qxrun::RunOptions options;
  options.DataFiles = {csv.string()};
  options.Formula = "ma_cross";
  options.OutFolder = out.string();
  options.Quiet = true;
  options.Page = false;
  qxrun::RunTimes times;
  std::ostringstream sink;
  qxrun::RunCommand(options, sink, std::cerr, &times);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const double peakBytes = static_cast<double>(usage.ru_maxrss) * 1024.0;
  // Processor time of the whole run: steadier than the wall clock on a shared machine.
  const double cpuSeconds =
      static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
      static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;

  // The page on its own, in a second run.
  options.Page = true;
  qxrun::RunTimes withPage;
  qxrun::RunCommand(options, sink, std::cerr, &withPage);
  const auto pageSize = std::filesystem::file_size(out / "report.html");

  const double n = static_cast<double>(times.Bars);
  const double total = times.Load + times.Run + times.Write;
  std::printf("bars                      %ld\n", times.Bars);
  std::printf("load                      %8.3f s  %10.0f bars/s\n", times.Load, n / times.Load);
  std::printf("run                       %8.3f s  %10.0f bars/s\n", times.Run, n / times.Run);
  std::printf("write (files, no page)    %8.3f s  %10.0f bars/s\n", times.Write, n / times.Write);
  std::printf("end to end (no page)      %8.3f s  %10.0f bars/s\n", total, n / total);
  std::printf("end to end, processor time %8.3f s  %10.0f bars/s%s\n", cpuSeconds, n / cpuSeconds,
              made ? " (with making the CSV)" : "");
  std::printf("page                      %8.3f s  %10.0f bars/s  %.2f MB\n", withPage.Page,
              n / withPage.Page, static_cast<double>(pageSize) / 1e6);
  std::printf("peak memory (no page)     %8.1f MB  %10.1f bytes/bar\n", peakBytes / 1e6,
              peakBytes / n);
  std::filesystem::remove_all(out);
  return 0;
}
