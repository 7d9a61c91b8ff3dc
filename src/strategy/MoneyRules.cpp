#include "strategy/MoneyRules.h"

#include <cmath>

namespace sysfuncs {

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
