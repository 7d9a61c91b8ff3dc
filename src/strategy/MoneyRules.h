// The money rules of the order engine: margin, commission, slippage, order costs, the profit of
// one lot and the tick grid. Pure functions on plain values.
#ifndef SYSFUNCS_STRATEGY_MONEY_RULES_H_
#define SYSFUNCS_STRATEGY_MONEY_RULES_H_

#include "sysfuncs/HostData.h"

#include <cmath>
#include <cstdint>
#include <type_traits>

namespace sysfuncs {

// The contract values of one series that the money rules read.
struct ContractTerms {
  int32_t MarginKind = 4;  // 1 to 5; any other kind has no margin and no profit
  double ContractSize = 1.0;
  double LotValue = 1.0;  // contract unit x big point value: money per price unit and lot
  double TickSize = 1.0;
};

// Which way a price is moved onto the tick grid: buys round up, sells round down.
enum class PriceDirection { kBuy, kSell };

// Tolerance of the order engine for zero and equality of prices and amounts.
inline constexpr double kAmountTolerance = 0.0001;

// The margin kinds, as the money rules tell them apart: kinds 2 and 3 follow one rule, and any
// kind outside 1 to 5 is kind 0 (no margin, no profit).
inline constexpr int32_t RuleKind(int32_t marginKind) {
  return marginKind == 3 ? 2 : (marginKind >= 1 && marginKind <= 5 ? marginKind : 0);
}

// Calls `visit` with the rule kind of `marginKind` as a compile-time constant
// (std::integral_constant), so that a loop over many values picks its rule once.
template <class Visit>
inline decltype(auto) WithRuleKind(int32_t marginKind, Visit&& visit) {
  switch (RuleKind(marginKind)) {
    case 1:
      return visit(std::integral_constant<int32_t, 1>{});
    case 2:
      return visit(std::integral_constant<int32_t, 2>{});
    case 4:
      return visit(std::integral_constant<int32_t, 4>{});
    case 5:
      return visit(std::integral_constant<int32_t, 5>{});
    default:
      return visit(std::integral_constant<int32_t, 0>{});
  }
}

// Margin of `lots` lots at `price` under rule kind kKind (see Margin below).
template <int32_t kKind>
inline double MarginOfKind(const ContractTerms& terms, const CostSetting& cost, double lots,
                           double price) {
  if constexpr (kKind == 1) {
    return terms.ContractSize * lots * price * cost.MarginRate;
  } else if constexpr (kKind == 2) {
    return terms.ContractSize * lots * cost.MarginRate;
  } else if constexpr (kKind == 4) {
    return terms.LotValue * lots * price * cost.MarginRate;
  } else if constexpr (kKind == 5) {
    return terms.LotValue * lots * price;  // the full value: the rate does not apply
  } else {
    return 0.0;
  }
}

// Margin of `lots` lots at `price`: kind 1 ContractSize x lots x price x rate; kinds 2 and 3
// ContractSize x lots x rate; kind 4 LotValue x lots x price x rate; kind 5 LotValue x lots x
// price (no rate); any other kind 0. Inline: every checkout values every open entry with it.
inline double Margin(const ContractTerms& terms, const CostSetting& cost, double lots,
                     double price) {
  return WithRuleKind(terms.MarginKind,
                      [&](auto kind) { return MarginOfKind<kind()>(terms, cost, lots, price); });
}

// Commission of `lots` lots at `price`, by the commission kind: 1 ticks per lot, 2 a fraction of
// the turnover in units of 1/10000, any other kind money per lot.
inline double Commission(const ContractTerms& terms, const CostSetting& cost, double lots,
                         double price) {
  const double rate = cost.CommissionRate;
  switch (cost.CommissionKind) {
    case 1: {  // ticks per lot
      const double ticks = terms.TickSize * rate * lots;
      switch (terms.MarginKind) {
        case 1:
          return ticks * terms.ContractSize * price;
        case 2:
        case 3:
          return ticks * terms.ContractSize;
        case 4:
        case 5:
          return ticks * terms.LotValue;
        default:
          return 0.0;
      }
    }
    case 2:  // turnover, in units of 1/10000
      return terms.LotValue * lots * price * rate / 10000.0;
    default:  // money per lot
      return rate * lots;
  }
}

// Slippage of the whole lots of `lots`: money per lot, or ticks per lot when SlippageKind is set.
inline double Slippage(const ContractTerms& terms, const CostSetting& cost, double lots) {
  const double perLots = std::trunc(lots) * cost.Slippage;
  return cost.SlippageKind != 0 ? perLots * terms.LotValue * terms.TickSize : perLots;
}

// Cost of an entry order: slippage, plus commission unless entries are commission-free. Inline,
// like the exit cost: every order pays one.
inline double EntryCost(const ContractTerms& terms, const CostSetting& cost, double lots,
                        double price) {
  const double slippage = Slippage(terms, cost, lots);
  return cost.NoEntryCommission ? slippage : slippage + Commission(terms, cost, lots, price);
}

// Cost of closing `lots` lots at `price`: slippage, plus commission unless same-day exits are
// free and the exit is on its entry's trading day.
inline double ExitCost(const ContractTerms& terms, const CostSetting& cost, double lots,
                       double price, bool sameTradingDay) {
  const double slippage = Slippage(terms, cost, lots);
  if (cost.SameDayExitFree && sameTradingDay) return slippage;
  return slippage + Commission(terms, cost, lots, price);
}

// Profit of one lot under rule kind kKind (see PerLotProfit below).
template <int32_t kKind>
inline double PerLotProfitOfKind(const ContractTerms& terms, bool isLong, double entryPrice,
                                 double price) {
  const double gain = isLong ? price - entryPrice : entryPrice - price;
  if constexpr (kKind == 1) {
    return terms.ContractSize * gain;
  } else if constexpr (kKind == 2) {
    // The gain is taken relative to the price; at a price of 0 (a no-trade bar) there is none.
    return price != 0.0 ? terms.ContractSize * gain / price : 0.0;
  } else if constexpr (kKind == 4 || kKind == 5) {
    return terms.LotValue * gain;
  } else {
    return 0.0;
  }
}

// Profit of one lot bought (`isLong`) or sold short at `entryPrice` and valued at `price`: kinds
// 4 and 5 LotValue x (price - entry); kind 1 ContractSize x (price - entry); kinds 2 and 3
// ContractSize x (price - entry) / price; any other kind 0. A short lot gains (entry - price).
inline double PerLotProfit(const ContractTerms& terms, bool isLong, double entryPrice,
                           double price) {
  return WithRuleKind(terms.MarginKind, [&](auto kind) {
    return PerLotProfitOfKind<kind()>(terms, isLong, entryPrice, price);
  });
}

// Return of `profit` on the margin of one lot at `entryPrice`, under rule kind kKind.
template <int32_t kKind>
inline double ReturnOnMarginOfKind(const ContractTerms& terms, const CostSetting& cost,
                                   double profit, double entryPrice) {
  // A lot that needs no margin earns no return rather than a division by zero.
  const double margin = MarginOfKind<kKind>(terms, cost, 1.0, entryPrice);
  return margin != 0.0 ? profit / margin : 0.0;
}

// Return of `profit` on the margin of one lot at `entryPrice`.
inline double ReturnOnMargin(const ContractTerms& terms, const CostSetting& cost, double profit,
                             double entryPrice) {
  return WithRuleKind(terms.MarginKind, [&](auto kind) {
    return ReturnOnMarginOfKind<kind()>(terms, cost, profit, entryPrice);
  });
}

// `price` moved onto the tick grid of `tickSize`, up for a buy and down for a sell, except that a
// price within 1% of a tick of the grid point on the other side goes to that point.
double RoundToTick(double price, double tickSize, PriceDirection direction);

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_MONEY_RULES_H_
