// The quote fields of a snapshot: one row per field number, and the four sides of the order book.
#ifndef SYSFUNCS_LIVE_QUOTE_FIELDS_H_
#define SYSFUNCS_LIVE_QUOTE_FIELDS_H_

#include "sysfuncs/DataAdapter.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace sysfuncs {

// Field numbers, in the order of the table below.
enum QuoteFieldNumber : int32_t {
  kQuoteClose = 0,
  kQuoteHigh,
  kQuoteLastDate,
  kQuoteLastTime,
  kQuoteLastVol,
  kQuoteLow,
  kQuoteOpen,
  kQuoteOpenInt,
  kQuoteOscillation,
  kQuotePriceChg,
  kQuotePriceChgRatio,
  kQuoteTickChg,
  kQuoteTotalVol,
  kQuotePreSettlePrice,
  kQuotePreOpenInt,
  kQuoteAvgPrice,
  kQuoteTurnOver,
  kQuoteHisHigh,
  kQuoteHisLow,
  kQuoteUpperLimit,
  kQuoteLowerLimit,
  kQuoteInsideVol,
  kQuoteOutsideVol,
  kQuoteTodayEntryVol,
  kQuoteTodayExitVol,
  kQuoteLast,
  kQuoteLastFlag,
  kQuoteBidPriceFlag,
  kQuoteAskPriceFlag,
  kQuoteOpenIntFlag,
};

// How one field is read from a snapshot. A real field has `Real`, an integer field `Integer`.
struct QuoteField {
  int32_t Number;
  std::string_view Name;  // the system function, also the tail of the cache key
  double (*Real)(const Quill::ITickDeepLevel&);
  int32_t (*Integer)(const Quill::ITickDeepLevel&);
  bool ZeroRule;  // a price: zero or below reads as the invalid number
  bool DayRule;   // constant over a trading day: answered on every bar of the last bar's day
};

// Previous settlement when above 0.0001, else previous close when above 0.0001, else 0 (none).
double ReferencePrice(const Quill::ITickDeepLevel& quote);
// The 2-bit direction group of ChangeFlags at `shift`: 1 up (1), 2 down (-1), 0 and 3 none (0).
int32_t DirectionFlag(uint8_t changeFlags, int shift);

extern const std::array<QuoteField, 30> kQuoteFields;

// The row of a field number; null outside 0..29.
inline const QuoteField* FindQuoteField(int32_t number) {
  return number >= 0 && number < static_cast<int32_t>(kQuoteFields.size()) ? &kQuoteFields[number]
                                                                           : nullptr;
}

// Sides of a depth level.
enum DepthSide : int32_t { kBidPrice = 0, kBidVolume = 1, kAskPrice = 2, kAskVolume = 3 };

// The `side` member of a depth level; the invalid number for any other side.
double DepthValue(const Quill::DepthLevel& level, int32_t side);

// The best bid and ask packed into a tick bar: Low carries the bid, High the ask, each as a
// single-precision price in the upper 32 bits and a 32-bit volume in the lower 32 bits. The
// `side` value; the invalid number for any other side.
double PackedTickDepthValue(double low, double high, int32_t side);

}  // namespace sysfuncs

#endif  // SYSFUNCS_LIVE_QUOTE_FIELDS_H_
