// Portfolio statistics: the pure rules and the operations of SFImpl that sum over the series.
#include "strategy/PortfolioStatistics.h"

#include "sysfuncs/SFImpl.h"

#include "strategy/LedgerStatistics.h"
#include "strategy/MoneyRules.h"
#include "strategy/SeriesAccess.h"

#include <algorithm>
#include <cmath>

namespace sysfuncs {
namespace {

// A live equity at or below 0.0001 never counts as a drawdown.
bool IsLiveDrawDown(const AccountStatistics& stats, double liveEquity) {
  return stats.Trough > liveEquity && liveEquity > kAmountTolerance;
}

}  // namespace

double PortfolioPercentProfit(const AccountStatistics& stats) {
  const int32_t total = TotalTrades(stats);
  // Whole-number division on purpose: 0.0 unless every trade won, then 1.0.
  return total <= 0
             ? 0.0
             : static_cast<double>(stats.NumWin / total);  // NOLINT(bugprone-integer-division)
}

double LiveMaxDrawDown(const AccountStatistics& stats, double liveEquity) {
  if (!IsLiveDrawDown(stats, liveEquity)) return stats.MaxDrawDown;
  return std::min(stats.MaxDrawDown, liveEquity - stats.Peak);
}

double LiveMaxDrawDownRatio(const AccountStatistics& stats, double liveEquity, bool percentMode) {
  if (percentMode) return LiveMaxDrawDown(stats, liveEquity) / 100.0;
  if (!IsLiveDrawDown(stats, liveEquity)) return stats.MaxDrawDownRatio;
  return std::max(stats.MaxDrawDownRatio, (stats.Peak - liveEquity) / stats.Peak);
}

}  // namespace sysfuncs

namespace {

// Calls `visit(index, |contracts|, contracts)` for every series holding a position, addressing
// each through CurrentData; the addressing is restored afterwards.
template <class Visit>
void ForEachPosition(SFImpl& impl, Visit visit) {
  CQXBaseData* data = impl.m_pData;
  const sysfuncs::CurrentDataScope scope(data);
  for (int32_t index = 0; index < data->DataCount; ++index) {
    data->CurrentData = index;
    const double contracts = sysfuncs::CurrentContracts(data->Ledgers[index]);
    if (std::fabs(contracts) > sysfuncs::kAmountTolerance) {
      visit(index, std::fabs(contracts), contracts);
    }
  }
}

}  // namespace

double SFImpl::PortfolioCurrentCapital() {
  const StrategyAccountPtr account = m_spStrategyAccount;
  double capital = account->Capital;
  ForEachPosition(*this, [&](int32_t index, double lots, double contracts) {
    const sysfuncs::ContractTerms terms = TermsOf(index);
    const double open = SeriesBar(index).Open;
    const double average = sysfuncs::AvgEntryPrice(m_pData->Ledgers[index]);
    capital -= sysfuncs::Margin(terms, m_pData->CostSettings[index], lots, open);
    capital += sysfuncs::PerLotProfit(terms, contracts > 0.0, average, open) * lots;
  });
  return capital;
}

double SFImpl::PortfolioUsedMargin() {
  const StrategyAccountPtr account = m_spStrategyAccount;
  double margin = 0.0;
  ForEachPosition(*this, [&](int32_t index, double lots, double) {
    margin +=
        sysfuncs::Margin(TermsOf(index), m_pData->CostSettings[index], lots, SeriesBar(index).Open);
  });
  return margin;
}

double SFImpl::PortfolioPositionProfit() {
  const StrategyAccountPtr account = m_spStrategyAccount;
  double profit = 0.0;
  ForEachPosition(*this, [&](int32_t index, double, double) {
    profit += sysfuncs::PositionProfit(SeriesOf(index));
  });
  return profit;
}

int32_t SFImpl::PortfolioCurrentEntries() {
  int32_t entries = 0;
  for (int32_t index = 0; index < m_pData->DataCount; ++index) {
    entries += sysfuncs::CurrentEntries(m_pData->Ledgers[index]);
  }
  return entries;
}

double SFImpl::PortfolioMaxDrawDown() {
  const StrategyAccountPtr account = m_spStrategyAccount;
  return sysfuncs::LiveMaxDrawDown(account->Stats, account->Capital + PortfolioPositionProfit());
}

double SFImpl::PortfolioMaxDrawDownRatio() {
  const StrategyAccountPtr account = m_spStrategyAccount;
  return sysfuncs::LiveMaxDrawDownRatio(
      account->Stats, account->Capital + PortfolioPositionProfit(), m_pData->PercentMode);
}
