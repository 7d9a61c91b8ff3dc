// Stock picking: per-bar sort values and hold decisions recorded in the shared account, ranks
// read from the table the host fills, and the simulated position moved to match a decision.
#include "sysfuncs/SFImpl.h"

namespace {

constexpr int32_t kNoDecision = -999;

}  // namespace

void SFImpl::SetSPSortValue(int32_t index, double value, bool flag) {
  const int64_t time = CurrentBarRecord().Time;
  auto [record, inserted] = m_spStrategyAccount->CheckPoints.try_emplace(time);
  if (inserted) record->second.Bar = m_pData->CurrentBar;
  record->second.SortValues[index] = {value, flag};
}

int32_t SFImpl::GetSPSortRanking(int32_t index) const {
  const StrategyAccount& account = *m_spStrategyAccount;
  if (!account.PoolMode) return sysfuncs::kInvalidInteger;
  const auto ranks = account.RankingTable.find(CurrentBarRecord().Time);
  if (ranks == account.RankingTable.end()) return sysfuncs::kInvalidInteger;
  const auto rank = ranks->second.find(index);
  return rank != ranks->second.end() ? rank->second : sysfuncs::kInvalidInteger;
}

bool SFImpl::StockPickingCheckPoint(int32_t signal, bool flag) {
  StrategyAccount& account = *m_spStrategyAccount;
  // Outside a ranked pool every decision counts.
  const int32_t enabled = account.PoolMode ? static_cast<int32_t>(flag) : 1;
  auto [record, inserted] = account.CheckPoints.try_emplace(CurrentBarRecord().Time);
  if (inserted) record->second.Bar = m_pData->CurrentBar;
  record->second.Signal = signal;
  record->second.Enabled = enabled;
  if (signal == kNoDecision) return true;

  // A position against the decision is closed on every bar, at the bar's price.
  const int32_t target = enabled != 0 ? signal : 0;
  const int32_t position = MarketPosition();
  if (position != target) {
    if (position == 1) Sell(0.0, 0.0, kOriginStockPicking);
    if (position == -1) BuyToCover(0.0, 0.0, kOriginStockPicking);
  }
  // New positions are opened on the newest bar only.
  if (target == 0 || !IsLastBar()) return true;
  if (target == 1 && MarketPosition() != 1) Buy(1.0, 0.0, kOriginStockPicking);
  if (target == -1 && MarketPosition() != -1) SellShort(1.0, 0.0, kOriginStockPicking);
  return true;
}
