#include "qxrun/pool/PoolRun.h"

#include "qxrun/pool/PoolBook.h"
#include "qxrun/pool/PoolRanking.h"

namespace qxrun {

void RunPool(std::vector<PoolMember>& members, const FormulaInfo& info,
             const std::map<std::string, double>& params,
             const std::function<void(int64_t done, int64_t total)>& progress) {
  const size_t count = members.size();
  std::vector<const std::vector<QXBar>*> series;
  for (PoolMember& member : members) {
    member.Instance = std::make_unique<HostInstance>(member.Sources, member.Settings, info.Name);
    StrategyAccount& account = *member.Instance->Data().Account;
    account.PoolSize = static_cast<int32_t>(count);
    account.PoolMode = true;
    member.Instance->Begin(info, params);
    series.push_back(&member.Sources[0].Bars);
  }
  const std::vector<int64_t> times = PoolTimes(series);
  std::vector<size_t> next(count, 0);
  std::vector<size_t> present;
  std::vector<SortValues> given(count);
  std::vector<const SortValues*> values(count);
  for (size_t date = 0; date < times.size(); ++date) {
    const int64_t time = times[date];
    present.clear();
    for (size_t i = 0; i < count; ++i) {
      const std::vector<QXBar>& bars = *series[i];
      if (next[i] < bars.size() && bars[next[i]].Time == time) present.push_back(i);
      values[i] = nullptr;
    }
    // First run: the sort values.
    for (const size_t i : present) {
      members[i].Instance->Evaluate(static_cast<int32_t>(next[i]));
      auto& checkPoints = members[i].Instance->Data().Account->CheckPoints;
      const auto record = checkPoints.find(time);
      if (record == checkPoints.end()) continue;
      given[i] = std::move(record->second.SortValues);
      values[i] = &given[i];
      checkPoints.erase(record);
    }
    // The ranks, then the second run with them, and the checkout.
    const std::vector<PoolRanks> ranks = RankPool(values);
    for (const size_t i : present) {
      if (!ranks[i].empty()) members[i].Instance->Data().Account->RankingTable[time] = ranks[i];
      const int32_t bar = static_cast<int32_t>(next[i]++);
      members[i].Instance->Evaluate(bar);
      members[i].Instance->Checkout(bar);
    }
    if (progress && ((date + 1) % 256 == 0 || date + 1 == times.size())) {
      progress(static_cast<int64_t>(date + 1), static_cast<int64_t>(times.size()));
    }
  }
}

}  // namespace qxrun
