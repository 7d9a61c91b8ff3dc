#include "strategy/MoneyRules.h"

#include <cmath>

namespace sysfuncs {

double Commission(const ContractTerms& terms, const CostSetting& cost, double lots, double price) {
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

double Slippage(const ContractTerms& terms, const CostSetting& cost, double lots) {
  const double perLots = std::trunc(lots) * cost.Slippage;
  return cost.SlippageKind != 0 ? perLots * terms.LotValue * terms.TickSize : perLots;
}

double EntryCost(const ContractTerms& terms, const CostSetting& cost, double lots, double price) {
  const double slippage = Slippage(terms, cost, lots);
  return cost.NoEntryCommission ? slippage : slippage + Commission(terms, cost, lots, price);
}

double ExitCost(const ContractTerms& terms, const CostSetting& cost, double lots, double price,
                bool sameTradingDay) {
  const double slippage = Slippage(terms, cost, lots);
  if (cost.SameDayExitFree && sameTradingDay) return slippage;
  return slippage + Commission(terms, cost, lots, price);
}

double RoundToTick(double price, double tickSize, PriceDirection direction) {
  if (!(tickSize > 0.0)) return price;  // no grid to round to
  const double lower = std::trunc(price / tickSize) * tickSize;
  const double upper = lower + tickSize;
  const double tolerance = 0.01 * tickSize;
  if (direction == PriceDirection::kBuy) {
    // A buy price is rounded up unless it is within 1% of a tick above a grid point.
    return price - lower > tolerance ? upper : lower;
  }
  // A sell price is rounded down unless it is within 1% of a tick below the next grid point.
  return upper - price > tolerance ? lower : upper;
}

}  // namespace sysfuncs
