// Signal orders: the pure rules, and the signal operations of SFImpl that address the current
// series and apply them.
#include "strategy/SignalOrders.h"

#include "sysfuncs/SFImpl.h"

#include "platform/Services.h"
#include "strategy/LedgerStatistics.h"
#include "strategy/SeriesAccess.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace sysfuncs {
namespace {

constexpr int64_t kMillisPerDay = 86400000;
constexpr double kLotRounding = 0.01;  // added before a lot count is truncated
constexpr double kLowestLots = -0.01;  // a lot argument below this is refused

bool IsNoTradeBar(const QXBar& bar) {
  return bar.Vol < kAmountTolerance && std::fabs(bar.High - bar.Low) < kAmountTolerance;
}

// The most money one exit may book. A limit price on the last bar is not held to the bar's range,
// so a price far beyond any the contract trades at would book amounts that overflow the capital,
// the equity and the figures built from them (the report squares returns); such an exit is
// refused like an invalid price. Real amounts lie many orders of magnitude below.
constexpr double kMostMoneyPerExit = 1e18;

// Whether an exit at `price` that costs `exitCost` books at most kMostMoneyPerExit: the exit's
// costs and, for every entry it may touch, the entry's profit at `price` and its cost.
bool ExitMoneyIsBounded(const OrderContext& context, double exitCost, double price) {
  double money = exitCost;
  for (const EntryLot& entry : context.Ledger.OpenEntries) {
    money += std::fabs(PerLotProfit(context.Terms, IsLongKind(entry.Kind), entry.Price, price)) *
                 entry.Lots +
             entry.Cost;
  }
  return money <= kMostMoneyPerExit;  // false for NaN too
}

}  // namespace

double WholeLots(double lots) { return std::trunc(lots + kLotRounding); }

bool IsOnOrAfterToday(int64_t barTime, int64_t nowMillis) {
  return barTime / kMillisPerDay >= nowMillis / kMillisPerDay;
}

double ExecutionPrice(double price, PriceDirection direction, const QXBar& bar,
                      const PriceRules& rules, const PriceLimits* limits) {
  if (IsMarketOrder(price)) return RoundToTick(bar.Close, rules.TickSize, direction);
  if (rules.LastBar) {
    double result = RoundToTick(price, rules.TickSize, direction);
    if (limits != nullptr) {
      if (limits->Upper != kInvalidNumber && result > limits->Upper) result = limits->Upper;
      if (limits->Lower != kInvalidNumber && result < limits->Lower) result = limits->Lower;
    }
    return result;
  }
  // A limit order on a bar without trading executes at 0.0 on purpose: value-based margin kinds
  // then size an entry to nothing, and an exit closes at that price.
  if (!rules.SinglePriceBars && IsNoTradeBar(bar)) return 0.0;
  const double high = rules.SinglePriceBars ? bar.Close : bar.High;
  const double low = rules.SinglePriceBars ? bar.Close : bar.Low;
  return RoundToTick(std::max(std::min(price, high), low), rules.TickSize, direction);
}

double AffordableLots(double money, double oneLotMargin) {
  if (money < oneLotMargin) return 0.0;
  if (!(oneLotMargin > 0.0)) return 0.0;
  const double lots = money / oneLotMargin;
  return lots > kMaxAffordableLots ? kMaxAffordableLots : std::trunc(lots);
}

double DefaultLots(const CQXBaseData& settings, double capital, double oneLotMargin) {
  const double value = settings.DefaultLotsValue;
  switch (settings.DefaultLotsMode) {
    case 0:
      return AffordableLots(capital, oneLotMargin) >= value ? value : 0.0;
    case 1:
      return AffordableLots(value * capital / 100.0, oneLotMargin);
    case 2:
      return value > capital ? 0.0 : AffordableLots(value, oneLotMargin);
    default:
      return 0.0;
  }
}

bool ExecuteEntry(OrderContext& context, OrderKind kind, double lots, double price, uint32_t origin,
                  double availableCapital) {
  StrategyLedger& ledger = context.Ledger;
  const int64_t entries = static_cast<int64_t>(ledger.OpenEntries.size());
  // A flat position is never refused by the entry limit.
  if (entries > 0 && entries + 1 > context.Settings.MaxOpenEntries) return false;

  const double oneLotMargin = Margin(context.Terms, context.Cost, 1.0, price);
  double size = lots == 0.0 ? DefaultLots(context.Settings, availableCapital, oneLotMargin)
                            : std::min(lots, AffordableLots(availableCapital, oneLotMargin));
  const double heldLots = OpenLots(ledger);
  // A flat position holds trunc(0.01) = 0 whole lots.
  const double held = heldLots == 0.0 ? 0.0 : std::trunc(std::fabs(heldLots) + kLotRounding);
  size = std::min(size, context.Settings.MaxPositionLots - held);
  if (size < 1.0) return false;

  const EntryLot entry{
      kind | origin, context.Bar, context.DataIndex,
      size,          price,       EntryCost(context.Terms, context.Cost, size, price)};
  ledger.Orders.push_back(entry);
  ledger.OpenEntries.push_back(entry);

  LedgerStatistics& stats = ledger.Stats;
  stats.MaxEntriesRecord =
      std::max(stats.MaxEntriesRecord, static_cast<int32_t>(ledger.OpenEntries.size()));
  // The entry's lots add to the sum last, as CurrentContracts adds them.
  const double lotsAfter = heldLots + size;
  const double contracts = MarketPosition(ledger) < 0 ? -lotsAfter : lotsAfter;
  stats.MaxContractsRecord = contracts;
  if (std::fabs(contracts) > std::fabs(stats.MaxContractsHeldRecord)) {
    stats.MaxContractsHeldRecord = contracts;
  }
  return true;
}

bool ExecuteExit(OrderContext& context, OrderKind kind, double lots, double price,
                 uint32_t origin) {
  StrategyLedger& ledger = context.Ledger;
  const double position = std::fabs(OpenLots(ledger));
  const double size = lots == 0.0 || lots >= position ? position : lots;
  if (size < 1.0) return false;
  const double exitCost = ExitCost(context.Terms, context.Cost, size, price, false);
  if (!ExitMoneyIsBounded(context, exitCost, price)) return false;

  const ExitTotals totals = MatchExit(context, size, price, origin, exitCost);
  context.Account.Capital += totals.NetProfit;
  context.Account.CumReturn += totals.Return * 100.0;
  // Any exit, a partial one too, ends the position's records.
  ledger.Stats.MaxContractsRecord = 0.0;
  ledger.Stats.BestOpenProfit = 0.0;
  ledger.Stats.WorstOpenProfit = 0.0;

  // The exit's own cost differs by side on purpose: a Sell carries the exit costs of its trades,
  // a BuyToCover the entry-cost rule on its lots and price. Only the bar's cost total reads it.
  // With entry commission charged the entry-cost rule is the exit cost off the entry's day.
  double cost = totals.ExitCost;
  if (kind != kSell) {
    cost = context.Cost.NoEntryCommission ? EntryCost(context.Terms, context.Cost, size, price)
                                          : exitCost;
  }
  ledger.Orders.push_back(
      OrderRecord{kind | origin, context.Bar, context.DataIndex, size, price, cost});
  return true;
}

}  // namespace sysfuncs

// ---------------------------------------------------------------------------------------------
// The signal operations of SFImpl.

namespace {

using namespace sysfuncs;

// Flattened: the legs of a reversal and the money rules they apply run as one function.
[[gnu::flatten]] bool PlaceSignalOrder(SFImpl& impl, OrderKind kind, double lots, double price,
                                       uint32_t origin) {
  if (!IsOrderArgument(lots) || !IsOrderArgument(price)) return false;
  if (lots < kLowestLots) return false;
  const int32_t dataIndex = impl.m_pData->CurrentData;
  OrderContext context = impl.CurrentOrderContext();
  const QXBar& bar = impl.SeriesBar(dataIndex);
  const PriceRules rules{context.Terms.TickSize, impl.IsLastBar(), impl.SinglePriceBars()};
  PriceLimits limits;
  const bool clamps =
      rules.LastBar && !IsMarketOrder(price) && IsOnOrAfterToday(bar.Time, NowMillis());
  if (clamps) limits = impl.DayPriceLimits(dataIndex);
  // A reversal prices both legs once, in the direction of the opening leg.
  const PriceDirection direction =
      kind == kBuy || kind == kBuyToCover ? PriceDirection::kBuy : PriceDirection::kSell;
  const double executionPrice =
      ExecutionPrice(price, direction, bar, rules, clamps ? &limits : nullptr);
  const double wholeLots = WholeLots(lots);

  // An entry first closes a position on the other side; an exit closes only its own side.
  const bool isEntry = kind == kBuy || kind == kSellShort;
  const OrderKind exitKind = kind == kBuy || kind == kBuyToCover ? kBuyToCover : kSell;
  const int32_t closedPosition = exitKind == kSell ? 1 : -1;
  if (MarketPosition(context.Ledger) == closedPosition) {
    if (!ExecuteExit(context, exitKind, isEntry ? 0.0 : wholeLots, executionPrice, origin)) {
      return false;
    }
  } else if (!isEntry) {
    return false;
  }
  return !isEntry ||
         ExecuteEntry(context, kind, wholeLots, executionPrice, origin, impl.AvailableCapital());
}

}  // namespace

bool SFImpl::Buy(double lots, double price, uint32_t origin) {
  return PlaceSignalOrder(*this, kBuy, lots, price, origin);
}

bool SFImpl::Sell(double lots, double price, uint32_t origin) {
  return PlaceSignalOrder(*this, kSell, lots, price, origin);
}

bool SFImpl::SellShort(double lots, double price, uint32_t origin) {
  return PlaceSignalOrder(*this, kSellShort, lots, price, origin);
}

bool SFImpl::BuyToCover(double lots, double price, uint32_t origin) {
  return PlaceSignalOrder(*this, kBuyToCover, lots, price, origin);
}

double SFImpl::AvailableCapital() {
  double capital = m_spStrategyAccount->Capital;
  // A series is addressed only to read the margin of its position.
  std::optional<sysfuncs::CurrentDataScope> scope;
  for (int32_t index = 0; index < m_pData->DataCount; ++index) {
    const double contracts = std::fabs(sysfuncs::CurrentContracts(m_pData->Ledgers[index]));
    if (contracts <= sysfuncs::kAmountTolerance) continue;
    if (!scope) scope.emplace(m_pData);
    m_pData->CurrentData = index;
    capital -= sysfuncs::Margin(TermsOf(index), m_pData->CostSettings[index], contracts,
                                SeriesBar(index).Open);
  }
  return capital;
}

// Defined here rather than with the other series access so that the flattened order path takes it
// in.
sysfuncs::OrderContext SFImpl::CurrentOrderContext() {
  const int32_t dataIndex = m_pData->CurrentData;
  return sysfuncs::OrderContext{m_pData->Ledgers[dataIndex],
                                *m_spStrategyAccount,
                                m_pData->CostSettings[dataIndex],
                                TermsOf(dataIndex),
                                *m_pData,
                                DataSource(0).Bars,
                                m_pData->CurrentBar,
                                dataIndex};
}
