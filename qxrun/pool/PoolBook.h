// The pool's book: what each symbol's decisions hold over the pool's dates, and the money of it.
//
// A symbol's decision on a bar (its check point: 1 hold long, -1 hold short, 0 or a disabled
// decision flat, -999 or no check point: as before) takes effect at that bar's close, as a market
// order of a back-test fills. Each held symbol holds `lots` lots. The pool's equity at a date is
// the initial capital plus the realised profit plus the open profit of every holding at its
// symbol's latest close (a symbol without a bar that day keeps its last close and its holding).
// Without costs. At the end every holding is closed at its symbol's last close.
#ifndef QXRUN_POOL_POOL_BOOK_H_
#define QXRUN_POOL_POOL_BOOK_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qxrun {

// One symbol of the pool as the book reads it. The pointers outlive the book's computation.
struct PoolSymbol {
  std::string Code;
  const std::vector<QXBar>* Bars = nullptr;
  const std::map<int64_t, CheckPointRecord>* CheckPoints = nullptr;
  const std::map<int64_t, std::map<int32_t, int32_t>>* Ranks = nullptr;  // for the decisions file
  double LotValue = 1.0;                                                 // money per point per lot
};

struct PoolBook {
  std::vector<int64_t> Times;             // every bar time of any symbol, in order
  std::vector<std::vector<int8_t>> Held;  // [date][symbol]: 1 long, -1 short, 0 flat
  std::vector<EquityPoint> EquityCurve;   // one point per date (Bar: the date's index)
  std::vector<TradeRecord> Trades;  // as closed (the final closes last); DataIndex: the symbol
};

// Every bar time of any symbol, in increasing order, each once.
std::vector<int64_t> PoolTimes(const std::vector<const std::vector<QXBar>*>& series);

PoolBook BookPool(const std::vector<PoolSymbol>& symbols, double lots, double initCapital);

}  // namespace qxrun

#endif  // QXRUN_POOL_POOL_BOOK_H_
