// The per-bar checkout: rollover re-positioning, valuation, equity point and drawdown, the copy
// of the state the last bar starts from, and the stock-picking follow-through.
#include "strategy/BarCheckout.h"

#include "sysfuncs/SFImpl.h"

#include "strategy/EquityCurve.h"
#include "strategy/LedgerStatistics.h"
#include "strategy/PositionValuation.h"
#include "strategy/SeriesAccess.h"
#include "strategy/StrategyState.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <span>

namespace sysfuncs {
namespace {

// The orders of `bar` at the end of a series' order list: [first, orders.end()).
std::vector<OrderRecord>::const_iterator FirstOrderOfBar(const std::vector<OrderRecord>& orders,
                                                         int32_t bar) {
  auto first = orders.end();
  while (first != orders.begin() && std::prev(first)->Bar == bar) --first;
  return first;
}

}  // namespace

bool HasRolloverOnBar(const std::vector<RolloverPoint>& rollovers, int32_t bar) {
  const auto found =
      std::lower_bound(rollovers.begin(), rollovers.end(), bar,
                       [](const RolloverPoint& point, int32_t value) { return point.Bar < value; });
  return found != rollovers.end() && found->Bar == bar;
}

const CheckPointRecord* FollowThroughDecision(const std::map<int64_t, CheckPointRecord>& points,
                                              int32_t bar) {
  if (points.empty()) return nullptr;
  const CheckPointRecord& latest = points.rbegin()->second;
  if (latest.Bar != bar || latest.Signal == -999 || latest.Enabled == 0) return nullptr;
  return &latest;
}

double CostOfBarOrders(const std::vector<OrderRecord>& orders, int32_t bar) {
  double cost = 0.0;
  for (auto order = FirstOrderOfBar(orders, bar); order != orders.end(); ++order) {
    cost += order->Cost;
  }
  return cost;
}

[[gnu::noinline]] void RecordBarOrders(StrategyAccount& account,
                                       const std::vector<StrategyLedger>& ledgers, int32_t bar) {
  std::vector<OrderRecord>& recorded = account.BarOrders;
  // Bars are checked out in order: the orders go to the end of the list. A bar checked out again
  // (or an earlier one, when a host goes back) first loses the orders recorded for it.
  auto at = recorded.end();
  if (!recorded.empty() && recorded.back().Bar >= bar) {
    const std::span<const OrderRecord> old = account.OrdersOfBar(bar);
    const auto first = recorded.begin() + (old.data() - recorded.data());
    at = recorded.erase(first, first + static_cast<ptrdiff_t>(old.size()));
  }
  for (const StrategyLedger& ledger : ledgers) {
    const auto first = FirstOrderOfBar(ledger.Orders, bar);
    const auto count = std::distance(first, ledger.Orders.end());
    at = recorded.insert(at, first, ledger.Orders.end()) + count;
  }
}

}  // namespace sysfuncs

void SFImpl::BarCheckout() {
  const CQXBaseData& data = *m_pData;
  // The usual bar (no reset asked for, not one of the last two bars, no rollovers and no check
  // points to follow) only records itself: one test for all of that. The cache and the account
  // are never null (the constructor makes them): they are read unchecked.
  if (data.ResetPending <= 0 && data.CurrentBar < data.BarCount - 2 &&
      m_spSymbolCache.get()->Rollovers.empty() && m_spStrategyAccount.get()->CheckPoints.empty())
      [[likely]] {
    RecordBar();
    return;
  }
  CheckOutUnusualBar();
}

[[gnu::noinline]] void SFImpl::CheckOutUnusualBar() {
  CQXBaseData& data = *m_pData;
  const int32_t bar = data.CurrentBar;
  const int32_t barCount = data.BarCount;
  if (bar == barCount - 1) {
    if (data.ResetPending > 0 && data.ResetBar > bar) {
      data.ResetPending = 0;
      ResetStrategy();
    }
    SettleRun();
    return;
  }
  if (data.ResetPending > 0 && data.ResetBar == bar + 1) {
    data.ResetPending = 0;
    ResetStrategy();
  }
  if (!m_spSymbolCache->Rollovers.empty()) RepositionRollovers();
  RecordBar();
  if (bar == barCount - 2) sysfuncs::SaveLastBarStart(*m_spStrategyAccount, data.Ledgers);
  if (!m_spStrategyAccount->CheckPoints.empty()) FollowCheckPoint();
}

[[gnu::noinline]] void SFImpl::RepositionRollovers() {
  const std::vector<std::vector<RolloverPoint>>& lists = m_spSymbolCache->Rollovers;
  const int32_t count = std::min(static_cast<int32_t>(lists.size()), m_pData->DataCount);
  // The addressing is saved once a position moves, and put back at the end.
  std::optional<sysfuncs::CurrentDataScope> scope;
  for (int32_t index = 0; index < count; ++index) {
    const StrategyLedger& ledger = m_pData->Ledgers[index];
    if (lists[index].empty() || ledger.OpenEntries.empty()) continue;
    // A rollover belongs to the first bar stamped after it: the position moves at that bar.
    const int32_t barIndex = SeriesBarIndex(index);
    if (!sysfuncs::HasRolloverOnBar(lists[index], barIndex)) continue;
    const QXBar& bar = DataSource(index).Bars[barIndex];
    if (!scope) scope.emplace(m_pData);
    m_pData->CurrentData = index;
    const double lots = std::fabs(sysfuncs::CurrentContracts(ledger));
    const int32_t position = sysfuncs::MarketPosition(ledger);
    // The position moves to the new contract at the bar's Open.
    if (position == 1) {
      Sell(0.0, bar.Open, kOriginRollover);
      Buy(lots, bar.Open, kOriginRollover);
    } else if (position == -1) {
      BuyToCover(0.0, bar.Open, kOriginRollover);
      SellShort(lots, bar.Open, kOriginRollover);
    }
  }
}

void SFImpl::RecordBar() {
  CQXBaseData& data = *m_pData;
  StrategyAccount& account = *m_spStrategyAccount.get();
  const int32_t bar = data.CurrentBar;
  // The main series' bar stamps the point; it is looked up once.
  const int32_t count = data.DataCount;
  const QXBar* mainBar = count > 0 ? &SeriesBar(0) : nullptr;
  const bool singlePriceBars = SinglePriceBars();
  sysfuncs::PositionValue total;
  double barCost = 0.0;
  bool anyOrder = false;
  StrategyLedger* const ledgers = data.Ledgers.data();
  for (int32_t index = 0; index < count; ++index) {
    StrategyLedger& ledger = ledgers[index];
    if (sysfuncs::HasOrdersOnBar(ledger, bar)) [[unlikely]] {
      anyOrder = true;
      barCost += sysfuncs::CostOfBarOrders(ledger.Orders, bar);
    }
    const std::vector<EntryLot>& entries = ledger.OpenEntries;
    // A flat series values to nothing; its open-profit extremes move towards 0.
    if (entries.empty()) {
      sysfuncs::MoveOpenExtremes(ledger.Stats, 0.0, 0.0);
      continue;
    }
    const QXBar& seriesBar = index == 0 ? *mainBar : SeriesBar(index);
    const sysfuncs::ContractTerms terms = TermsOf(index);
    const CostSetting& cost = data.CostSettings[index];
    if (entries.size() == 1) [[likely]] {
      sysfuncs::AddOneEntryPosition(total, ledger.Stats, entries.front(), seriesBar, bar,
                                    singlePriceBars, terms, cost);
    } else {
      const sysfuncs::PositionValue value =
          sysfuncs::ValuePosition(entries, seriesBar, bar, singlePriceBars, terms, cost);
      total += value;
      sysfuncs::UpdateOpenExtremes(ledger.Stats, value);
    }
  }

  // Every field is written once: no zeroing first.
  const double equity = account.Capital + total.OpenProfit;
  const double percentEquity = total.OpenReturn + account.CumReturn;
  const EquityPoint point{.Bar = bar,
                          .Time = mainBar != nullptr ? mainBar->Time : 0,
                          .LongMargin = total.LongMargin,
                          .ShortMargin = total.ShortMargin,
                          .LongLots = total.LongLots,
                          .ShortLots = total.ShortLots,
                          .Available = equity - total.LongMargin - total.ShortMargin,
                          .Equity = equity,
                          .PercentEquity = percentEquity,
                          .OpenReturn = total.OpenReturn,
                          .BarCost = barCost,
                          .Capital = account.Capital};
  const double basis = data.PercentMode ? percentEquity : equity;
  if (data.OutputMode == 1 || data.OutputMode == 2) {
    // A report run follows the detail figures too, which read the point a bar checked out again
    // replaces. They read the point on the curve: the local one stays out of memory.
    const std::optional<EquityPoint> replaced = sysfuncs::PutEquityPoint(account, point);
    sysfuncs::UpdateDrawDown(account.Stats, basis, point.Time, data.PercentMode, &account.Detail);
    sysfuncs::UpdateReportDetail(account.Detail, account.EquityCurve.back(), basis, replaced);
  } else {
    sysfuncs::PutEquityPoint(account, point);
    sysfuncs::UpdateDrawDown(account.Stats, basis, point.Time, data.PercentMode, nullptr);
  }

  // Ledgers past DataCount keep no orders of the bar unless a host addressed them. (The loop
  // above reads a ledger for every series: there are at least DataCount.)
  const auto pastSeries = data.Ledgers.begin() + std::max(count, 0);
  if (!anyOrder && pastSeries != data.Ledgers.end()) [[unlikely]] {
    anyOrder = std::any_of(pastSeries, data.Ledgers.end(), [bar](const StrategyLedger& ledger) {
      return sysfuncs::HasOrdersOnBar(ledger, bar);
    });
  }
  if (anyOrder) {
    sysfuncs::RecordBarOrders(account, data.Ledgers, bar);
  } else {
    sysfuncs::ForgetBarOrders(account.BarOrders, bar);
  }
}

[[gnu::noinline]] void SFImpl::FollowCheckPoint() {
  const int32_t bar = m_pData->CurrentBar;
  const CheckPointRecord* decision =
      sysfuncs::FollowThroughDecision(m_spStrategyAccount->CheckPoints, bar);
  if (decision == nullptr) return;
  const int32_t signal = decision->Signal;
  // The decision is carried out at the next bar's Open, as an order of that bar.
  const sysfuncs::CurrentDataScope scope(m_pData);
  m_pData->CurrentBar = bar + 1;
  const double open = SeriesBar(m_pData->CurrentData).Open;
  const int32_t position = MarketPosition();
  if (signal == 1 && position != 1) {
    Buy(1.0, open, kOriginStockPicking);
  } else if (signal == -1 && position != -1) {
    SellShort(1.0, open, kOriginStockPicking);
  }
}
