// Builders for host data objects, bars and instants, and scoped replacements of process-wide
// settings for tests.
#ifndef SYSFUNCS_TESTS_SUPPORT_HOST_BUILDER_H_
#define SYSFUNCS_TESTS_SUPPORT_HOST_BUILDER_H_

#include "sysfuncs/sysfuncs.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace sysfuncs::testing {

inline constexpr int32_t kNoInteger = 2147483647;  // the invalid answers
inline constexpr double kNoNumber = 1.7976931348623157e308;

// Instant of a wall-clock time in the tests' zone, Asia/Shanghai (UTC+8, no daylight saving
// since 1991), computed without the library.
int64_t ShanghaiInstant(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                        int millis = 0);

// Instant of a UTC wall-clock time.
int64_t UtcInstant(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

QXBar MakeBar(int64_t time, double open, double high, double low, double close, double vol = 0.0,
              double openInt = 0.0);

// Bars of one price each, `step` milliseconds apart from `first`.
std::vector<QXBar> EvenBars(int64_t first, int64_t step, int count, double price = 100.0);

// A host data object over bar series of its own. Not copyable: the data object points into it.
class TestHost {
 public:
  TestHost();
  TestHost(const TestHost&) = delete;
  TestHost& operator=(const TestHost&) = delete;

  // Adds a data source and its per-source records; returns its index.
  int32_t AddSource(const std::string& symbol, std::vector<QXBar> bars, uint32_t barType = 1,
                    uint32_t barInterval = 1, uint32_t marketId = 0);

  // Addresses bar `bar` of data source `dataIndex`, with BarCount of that source.
  void At(int32_t dataIndex, int32_t bar);

  std::vector<QXDataSource> sources;
  CQXBaseData data;
};

// Sets TZ for the scope and restores the previous zone. Defined here so that suites without the
// builders can use it.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* zone) {
    if (const char* current = getenv("TZ")) previous_ = current;
    hadPrevious_ = getenv("TZ") != nullptr;
    setenv("TZ", zone, 1);
    tzset();
  }
  ~ScopedTimeZone() {
    if (hadPrevious_) {
      setenv("TZ", previous_.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

 private:
  std::string previous_;
  bool hadPrevious_ = false;
};

// Replaces platform services for the scope; the defaults are back afterwards.
class ScopedPlatform {
 public:
  explicit ScopedPlatform(const SysFuncsPlatform& services) { SysFuncs_SetPlatform(services); }
  ~ScopedPlatform() { SysFuncs_SetPlatform(SysFuncs_DefaultPlatform()); }
};

}  // namespace sysfuncs::testing

#endif  // SYSFUNCS_TESTS_SUPPORT_HOST_BUILDER_H_
