// Reset, copy and roll-back of the strategy state.
#include "strategy/StrategyState.h"

#include "sysfuncs/SFImpl.h"

#include "platform/MemoryHints.h"

#include <algorithm>

namespace sysfuncs {

void ResetAccount(StrategyAccount& account, double initCapital, bool percentMode,
                  int64_t firstBarTime) {
  const double peak = percentMode ? 0.0 : initCapital;
  account.Capital = initCapital;
  account.CumReturn = 0.0;
  account.PercentEquitySum = 0.0;
  account.Stats = AccountStatistics{};
  account.Stats.Peak = peak;
  account.Stats.Trough = peak;
  account.Trades.clear();
  account.BarOrders.clear();
  account.Detail = ReportDetail{};
  account.Detail.HighestBasisTime = firstBarTime;
  account.Detail.MaxDrawDownTime = firstBarTime;
  account.Detail.HighestBasis = peak;
  account.Detail.LowestBasis = peak;
  account.Detail.HighestEquity = initCapital;
  account.Detail.LowestEquity = initCapital;
}

void ResetLedger(StrategyLedger& ledger) {
  ledger.Orders.clear();
  ledger.Trades.clear();
  ledger.OpenEntries.clear();
  ledger.SavedOpenEntries.clear();
  ledger.Stats = LedgerStatistics{};
}

void PrefillEquityCurve(std::vector<EquityPoint>& curve, const std::vector<QXBar>& mainBars,
                        int32_t barCount, int32_t currentBar, double initCapital) {
  curve.clear();
  const EquityPoint* const heldBlock = curve.data();
  curve.reserve(static_cast<size_t>(std::max(barCount, currentBar + 1)));
  // A new block is offered huge pages before its first point is written: a long run's curve is
  // then faulted in a few large pages instead of one page per few dozen bars.
  if (curve.data() != heldBlock) {
    OfferHugePages(curve.data(), curve.capacity() * sizeof(EquityPoint));
  }
  for (int32_t bar = 0; bar < currentBar; ++bar) {
    EquityPoint& point = curve.emplace_back();
    point.Bar = bar;
    point.Time = static_cast<size_t>(bar) < mainBars.size() ? mainBars[bar].Time : 0;
    point.Capital = initCapital;
    point.Equity = initCapital;
  }
}

void SaveLastBarStart(StrategyAccount& account, std::vector<StrategyLedger>& ledgers) {
  account.SavedStats = account.Stats;
  for (StrategyLedger& ledger : ledgers) {
    ledger.SavedStats = ledger.Stats;
    ledger.SavedOpenEntries = ledger.OpenEntries;
  }
}

void DropTradesOfBar(std::vector<TradeRecord>& trades, int32_t bar) {
  DropRecordsOfBar(trades, bar, [](const TradeRecord& trade) { return trade.ExitBar; });
}

void RollBackLedger(StrategyLedger& ledger, int32_t bar) {
  ledger.Stats = ledger.SavedStats;
  ledger.OpenEntries = ledger.SavedOpenEntries;
  DropRecordsOfBar(ledger.Orders, bar, [](const OrderRecord& order) { return order.Bar; });
  DropTradesOfBar(ledger.Trades, bar);
}

}  // namespace sysfuncs

void SFImpl::ResetStrategyState() {
  m_pData->SavedOrders.clear();
  ResetStrategy();
}

void SFImpl::ResetStrategy() {
  CoverEverySeries();
  const bool hasMainSeries = m_pData->DataSources != nullptr && !m_pData->DataSources->empty();
  static const std::vector<QXBar> kNoBars;
  const std::vector<QXBar>& mainBars = hasMainSeries ? DataSource(0).Bars : kNoBars;
  StrategyAccount& account = *m_spStrategyAccount;
  sysfuncs::ResetAccount(account, m_pData->InitCapital, m_pData->PercentMode,
                         mainBars.empty() ? 0 : mainBars.front().Time);
  for (StrategyLedger& ledger : m_pData->Ledgers) sysfuncs::ResetLedger(ledger);
  sysfuncs::PrefillEquityCurve(account.EquityCurve, mainBars, m_pData->BarCount,
                               m_pData->CurrentBar, m_pData->InitCapital);
}

void SFImpl::RollBackToCurrentBar() {
  CoverEverySeries();
  const int32_t bar = m_pData->CurrentBar;
  const size_t kept = static_cast<size_t>(bar);
  for (std::vector<double>& values : m_pData->NumericSeries) {
    if (values.size() > kept) values.resize(kept);
  }
  for (std::vector<uint8_t>& values : m_pData->BoolSeries) {
    if (values.size() > kept) values.resize(kept);
  }
  for (std::vector<std::string>& values : m_pData->StringSeries) {
    if (values.size() > kept) values.resize(kept);
  }
  m_pData->Alerts.clear();
  if (kept < m_pData->Commentaries.size()) m_pData->Commentaries[kept].clear();
  // The account's saved statistics block is not part of the roll-back: the account's statistics
  // keep what the bar's first evaluation booked.
  sysfuncs::DropTradesOfBar(m_spStrategyAccount->Trades, bar);
  for (StrategyLedger& ledger : m_pData->Ledgers) sysfuncs::RollBackLedger(ledger, bar);
}
