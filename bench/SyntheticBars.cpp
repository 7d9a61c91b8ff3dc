#include "SyntheticBars.h"

#include <algorithm>
#include <random>

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
