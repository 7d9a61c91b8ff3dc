// A host's data object over one or more series of 100 one-minute bars, for benchmarks that read
// through the facade.
#ifndef SYSFUNCS_BENCH_MINUTE_HOST_H_
#define SYSFUNCS_BENCH_MINUTE_HOST_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <initializer_list>
#include <vector>

struct MinuteHost {
  explicit MinuteHost(std::initializer_list<const char*> codes) {
    for (const char* code : codes) {
      QXDataSource source;
      source.Symbol = code;
      source.BarType = 1;
      source.BarInterval = 1;
      for (int64_t i = 0; i < kBars; ++i) source.Bars.push_back(QXBar{1750000000000 + i * 60000});
      sources.push_back(source);
      data.SourceInfos.emplace_back();
      data.CostSettings.emplace_back();
      data.Ledgers.emplace_back();
    }
    data.DataSources = &sources;
    data.DataCount = static_cast<int32_t>(sources.size());
    data.BarCount = kBars;
  }
  static constexpr int32_t kBars = 100;
  std::vector<QXDataSource> sources;
  CQXBaseData data;
};

#endif  // SYSFUNCS_BENCH_MINUTE_HOST_H_
