// Signal orders: validation, execution price, lot sizing, and the execution of entries and exits
// on one series. The functions here are pure; the signal operations of SFImpl address the series
// and call them.
#ifndef SYSFUNCS_STRATEGY_SIGNAL_ORDERS_H_
#define SYSFUNCS_STRATEGY_SIGNAL_ORDERS_H_

#include "sysfuncs/HostData.h"

#include "strategy/MoneyRules.h"
#include "strategy/TradeMatching.h"

#include <cmath>
#include <cstdint>

namespace sysfuncs {

// Most lots the affordability rule ever grants.
inline constexpr double kMaxAffordableLots = 10000.0;

// A price this close to 0 asks for a market order at the bar's Close.
inline bool IsMarketOrder(double price) {
  return price > -kAmountTolerance && price < kAmountTolerance;
}

// Whether a lot or price argument can be ordered with: a finite number other than the invalid
// number. NaN and the infinities are refused like the invalid number.
inline bool IsOrderArgument(double value) {
  return std::isfinite(value) && value != kInvalidNumber;
}

// The whole lots of a lot argument: 0.999 counts as 1, 2.5 as 2, -0.005 as 0.
double WholeLots(double lots);

// Where the price of an order on the current bar may lie.
struct PriceRules {
  double TickSize = 1.0;
  bool LastBar = false;          // CurrentBar is the series' last bar
  bool SinglePriceBars = false;  // High and Low read as the Close
};

// The day's price limits; the invalid number stands for no limit.
struct PriceLimits {
  double Upper = kInvalidNumber;
  double Lower = kInvalidNumber;
};

// Whether a bar lies on today's day or later, both counted in whole days since 1970 UTC.
bool IsOnOrAfterToday(int64_t barTime, int64_t nowMillis);

// The price an order executes at on `bar`:
// - a market order: the Close on the tick grid, unchecked;
// - on the last bar: `price` on the tick grid, then clamped to `limits` when given (the caller
//   gives them when the bar is not older than today);
// - on a historical bar: 0.0 on a no-trade bar (no volume, High = Low) of a series that is not
//   single-priced; otherwise `price` clamped into [Low, High] (the Close for single-price bars)
//   and put on the tick grid.
double ExecutionPrice(double price, PriceDirection direction, const QXBar& bar,
                      const PriceRules& rules, const PriceLimits* limits);

// Whole lots that `money` pays the margin of, `oneLotMargin` each: 0 when money is short of one
// lot, at most 10000. A lot that needs no margin cannot be sized and gives 0.
double AffordableLots(double money, double oneLotMargin);

// Lots of an entry that asks for default lots, by DefaultLotsMode: 0 the fixed DefaultLotsValue
// when affordable from `capital`, else 0; 1 the lots affordable from DefaultLotsValue percent of
// the capital; 2 the lots affordable from the money DefaultLotsValue, 0 when it exceeds the
// capital; any other mode 0.
double DefaultLots(const CQXBaseData& settings, double capital, double oneLotMargin);

// Opens or adds to a position: `kind` is kBuy or kSellShort, `lots` whole (0: default lots),
// `price` the execution price. Refused (false, nothing changed) when the position holds
// MaxOpenEntries entries already, or when fewer than 1 lot remains after sizing by
// `availableCapital` and capping at MaxPositionLots.
bool ExecuteEntry(OrderContext& context, OrderKind kind, double lots, double price, uint32_t origin,
                  double availableCapital);

// Reduces or closes the position: `kind` is kSell or kBuyToCover, `lots` whole (0 or more than
// held: the whole position). Matches the lots against the entries, books the trades' net profit
// into the realised capital and their returns into the cumulative return, clears the position
// records and appends the exit's order record. Refused when fewer than 1 lot would be closed, or
// when its profits and costs would exceed 1e18 in money (a price far beyond any the contract
// trades at).
// REQUIRES: the position is on the side `kind` closes.
bool ExecuteExit(OrderContext& context, OrderKind kind, double lots, double price, uint32_t origin);

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_SIGNAL_ORDERS_H_
