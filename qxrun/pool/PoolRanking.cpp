#include "qxrun/pool/PoolRanking.h"

#include "sysfuncs/HostData.h"

#include <algorithm>
#include <cmath>

namespace qxrun {

std::vector<PoolRanks> RankPool(const std::vector<const SortValues*>& values) {
  std::vector<PoolRanks> ranks(values.size());
  // Criterion -> its order (descending?) and the competitors (value, symbol).
  std::map<int32_t, std::pair<bool, std::vector<std::pair<double, size_t>>>> criteria;
  for (size_t symbol = 0; symbol < values.size(); ++symbol) {
    if (values[symbol] == nullptr) continue;
    for (const auto& [criterion, entry] : *values[symbol]) {
      const auto [value, descending] = entry;
      auto [found, inserted] = criteria.try_emplace(criterion);
      if (inserted) found->second.first = descending;
      if (!std::isfinite(value) || value == sysfuncs::kInvalidNumber) continue;
      found->second.second.emplace_back(value, symbol);
    }
  }
  for (auto& [criterion, entry] : criteria) {
    auto& [descending, competitors] = entry;
    const bool larger = descending;
    std::stable_sort(competitors.begin(), competitors.end(),
                     [larger](const auto& a, const auto& b) {
                       return larger ? a.first > b.first : a.first < b.first;
                     });
    int32_t rank = 0;
    for (size_t place = 0; place < competitors.size(); ++place) {
      if (place == 0 || competitors[place].first != competitors[place - 1].first) {
        rank = static_cast<int32_t>(place) + 1;
      }
      ranks[competitors[place].second][criterion] = rank;
    }
  }
  return ranks;
}

}  // namespace qxrun
