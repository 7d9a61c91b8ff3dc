// Futures rollovers of the data sources marked "QXRollover", matched to the bars they fall in.
#include "sysfuncs/SFImpl.h"

#include "contract/SymbolKey.h"

#include <string>
#include <vector>

using namespace sysfuncs;

namespace {

// Walks the bars in order and gives each bar at most one rollover: the oldest one not yet
// placed, when it falls at or after the previous bar's time (0 before the first bar) and before
// this bar's time. A rollover that fits no such window stays first in line and holds back the
// ones behind it; whatever is left when the bars end is dropped.
std::vector<RolloverPoint> MatchRollovers(const std::vector<QXBar>& bars,
                                          const std::vector<Quill::IFutureRolloverValue>& values) {
  std::vector<RolloverPoint> points;
  size_t next = 0;
  int64_t previousTime = 0;
  for (size_t bar = 0; bar < bars.size() && next < values.size(); ++bar) {
    const int64_t rolloverTime = values[next].Time * 1000;
    if (rolloverTime >= previousTime && rolloverTime < bars[bar].Time) {
      points.push_back({rolloverTime, static_cast<int32_t>(bar)});
      ++next;
    }
    previousTime = bars[bar].Time;
  }
  return points;
}

}  // namespace

void SFImpl::LoadRolloverLists() {
  if (m_pData->DataSources == nullptr) return;
  const std::vector<QXDataSource>& sources = *m_pData->DataSources;
  const std::vector<SourceInfo>& infos = m_pData->SourceInfos;
  for (size_t index = 0; index < infos.size() && index < sources.size(); ++index) {
    const std::vector<QXBar>& bars = sources[index].Bars;
    if (infos[index].Name != "QXRollover" || bars.empty()) continue;
    std::vector<Quill::IFutureRolloverValue> values;
    CDataAdapter* adapter = CurrentAdapter();
    if (adapter == nullptr ||
        !adapter->GetFutureRollover(sysfuncs::MakeSymbolKey(sources[index]), bars.front().Time,
                                    bars.back().Time, 1, values)) {
      values.clear();  // nothing to report
    }
    std::vector<std::vector<RolloverPoint>>& lists = m_spSymbolCache->Rollovers;
    if (lists.size() <= index) lists.resize(index + 1);
    lists[index] = MatchRollovers(bars, values);
  }
}
