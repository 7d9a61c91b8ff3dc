#include "support/HostBuilder.h"

#include <stdlib.h>
#include <time.h>
#include <utility>

namespace sysfuncs::testing {

int64_t UtcInstant(int year, int month, int day, int hour, int minute, int second) {
  struct tm broken {};
  broken.tm_year = year - 1900;
  broken.tm_mon = month - 1;
  broken.tm_mday = day;
  broken.tm_hour = hour;
  broken.tm_min = minute;
  broken.tm_sec = second;
  return static_cast<int64_t>(timegm(&broken)) * 1000;
}

int64_t ShanghaiInstant(int year, int month, int day, int hour, int minute, int second,
                        int millis) {
  return UtcInstant(year, month, day, hour, minute, second) - 8 * 3600 * 1000 + millis;
}

QXBar MakeBar(int64_t time, double open, double high, double low, double close, double vol,
              double openInt) {
  QXBar bar;
  bar.Time = time;
  bar.Open = open;
  bar.High = high;
  bar.Low = low;
  bar.Close = close;
  bar.Vol = vol;
  bar.OpenInt = openInt;
  return bar;
}

std::vector<QXBar> EvenBars(int64_t first, int64_t step, int count, double price) {
  std::vector<QXBar> bars;
  for (int i = 0; i < count; ++i) {
    bars.push_back(MakeBar(first + i * step, price, price, price, price, 1.0));
  }
  return bars;
}

TestHost::TestHost() { data.DataSources = &sources; }

int32_t TestHost::AddSource(const std::string& symbol, std::vector<QXBar> bars, uint32_t barType,
                            uint32_t barInterval, uint32_t marketId) {
  QXDataSource source;
  source.MarketId = marketId;
  source.Symbol = symbol;
  source.BarType = barType;
  source.BarInterval = barInterval;
  source.Bars = std::move(bars);
  sources.push_back(std::move(source));
  data.SourceInfos.emplace_back();
  data.CostSettings.emplace_back();
  data.Ledgers.emplace_back();
  data.DataCount = static_cast<int32_t>(sources.size());
  if (sources.size() == 1) data.BarCount = static_cast<int32_t>(sources[0].Bars.size());
  return data.DataCount - 1;
}

void TestHost::At(int32_t dataIndex, int32_t bar) {
  data.CurrentData = dataIndex;
  data.CurrentBar = bar;
  data.BarCount = static_cast<int32_t>(sources[dataIndex].Bars.size());
}

}  // namespace sysfuncs::testing
