#include "StrategyHost.h"

#include <algorithm>
#include <random>
#include <string>

std::vector<QXBar> MakeRandomWalkBars(int count, uint64_t seed) {
  std::mt19937_64 random(seed);
  std::uniform_int_distribution<int> step(-2, 2);
  std::uniform_int_distribution<int> wick(0, 3);
  std::vector<QXBar> bars;
  bars.reserve(static_cast<size_t>(count));
  double close = 3000.0;
  for (int i = 0; i < count; ++i) {
    const double open = close;
    close = std::max(100.0, close + step(random));
    const double high = std::max(open, close) + wick(random);
    const double low = std::min(open, close) - wick(random);
    bars.push_back(QXBar{kBenchStart + int64_t{i} * 60000, open, high, low, close, 100.0, 0.0});
  }
  return bars;
}

bool StrategyAdapter::GetSymbolProperty(const tagSymbol& /*symbol*/,
                                        Quill::ICodeProperty& property) {
  property.MinMove = 1;
  property.PriceScale = 1.0f;
  property.ContractUnit = 1;
  property.BigPointValue = 1.0f;
  property.MarginKind = 4;
  return true;
}

StrategyHost::StrategyHost(const std::vector<std::vector<QXBar>>& series, int count) {
  sources.resize(static_cast<size_t>(count));
  for (int index = 0; index < count; ++index) {
    sources[index].Symbol = "bench" + std::to_string(index);
    sources[index].BarType = 1;
    sources[index].BarInterval = 1;
    sources[index].Bars = series[index];
  }
  data.DataSources = &sources;
  data.DataCount = count;
  data.BarCount = static_cast<int32_t>(series[0].size());
  data.SourceInfos.resize(count);
  data.CostSettings.resize(count);
  for (CostSetting& cost : data.CostSettings) {
    cost.MarginRate = kBenchMarginRate;
    cost.CommissionRate = kBenchCommission;
  }
  data.Ledgers.resize(count);
  data.InitCapital = kBenchInitCapital;
  data.MaxOpenEntries = 1;
  data.MaxPositionLots = 1;
}
