#include "live/QuoteFields.h"

#include "sysfuncs/HostData.h"

#include "util/DateCodec.h"
#include "util/PackedTick.h"

namespace sysfuncs {
namespace {

using Quote = Quill::ITickDeepLevel;

constexpr double kReferenceFloor = 0.0001;

// A price field: a snapshot's zero means the platform has no price.
constexpr QuoteField Price(int32_t number, std::string_view name, double (*read)(const Quote&),
                           bool dayRule = false) {
  return {number, name, read, nullptr, true, dayRule};
}
constexpr QuoteField Amount(int32_t number, std::string_view name, double (*read)(const Quote&),
                            bool dayRule = false) {
  return {number, name, read, nullptr, false, dayRule};
}
constexpr QuoteField Integer(int32_t number, std::string_view name, int32_t (*read)(const Quote&)) {
  return {number, name, nullptr, read, false, false};
}
// A field the platform does not deliver: always the invalid number.
double NoSource(const Quote& /*quote*/) { return kInvalidNumber; }

}  // namespace

double ReferencePrice(const Quote& quote) {
  if (quote.PreSettlePrice > kReferenceFloor) return quote.PreSettlePrice;
  if (quote.PreClosePrice > kReferenceFloor) return quote.PreClosePrice;
  return 0.0;
}

int32_t DirectionFlag(uint8_t changeFlags, int shift) {
  switch ((changeFlags >> shift) & 0x3) {
    case 1:
      return 1;
    case 2:
      return -1;
    default:
      return 0;
  }
}

// clang-format off
const std::array<QuoteField, 30> kQuoteFields = {{
    Price(kQuoteClose, "Q_Close", [](const Quote& q) { return q.ClosePrice; }),
    Price(kQuoteHigh, "Q_High", [](const Quote& q) { return q.HighPrice; }),
    Integer(kQuoteLastDate, "Q_LastDate",
            [](const Quote& q) { return ToFormulaDate(q.TimeStamp); }),
    Amount(kQuoteLastTime, "Q_LastTime", [](const Quote& q) { return ToFormulaTime(q.TimeStamp); }),
    Amount(kQuoteLastVol, "Q_LastVol", [](const Quote& q) { return q.LastVolume; }),
    Price(kQuoteLow, "Q_Low", [](const Quote& q) { return q.LowPrice; }),
    Price(kQuoteOpen, "Q_Open", [](const Quote& q) { return q.OpenPrice; }, true),
    Amount(kQuoteOpenInt, "Q_OpenInt", [](const Quote& q) { return q.OpenInt; }),
    // The day's range, change and change ratio against the reference price; 0 without one.
    Amount(kQuoteOscillation, "Q_Oscillation", [](const Quote& q) {
      const double ref = ReferencePrice(q);
      return ref != 0.0 ? (q.HighPrice - q.LowPrice) / ref : 0.0;
    }),
    Amount(kQuotePriceChg, "Q_PriceChg", [](const Quote& q) {
      const double ref = ReferencePrice(q);
      return ref != 0.0 ? q.LastPrice - ref : 0.0;
    }),
    Amount(kQuotePriceChgRatio, "Q_PriceChgRatio", [](const Quote& q) {
      const double ref = ReferencePrice(q);
      return ref != 0.0 ? (q.LastPrice - ref) / ref : 0.0;  // a fraction, not per cent
    }),
    Amount(kQuoteTickChg, "Q_TickChg", [](const Quote& q) { return q.TickChange; }),
    Amount(kQuoteTotalVol, "Q_TotalVol", [](const Quote& q) { return q.TotalVolume; }),
    Price(kQuotePreSettlePrice, "Q_PreSettlePrice", [](const Quote& q) { return q.PreSettlePrice; },
          true),
    Amount(kQuotePreOpenInt, "Q_PreOpenInt", [](const Quote& q) { return q.PreOpenInt; }, true),
    Price(kQuoteAvgPrice, "Q_AvgPrice", [](const Quote& q) { return q.AvgPrice; }),
    Amount(kQuoteTurnOver, "Q_TurnOver", [](const Quote& q) { return q.TurnOver; }),
    Price(kQuoteHisHigh, "Q_HisHigh", NoSource),
    Price(kQuoteHisLow, "Q_HisLow", NoSource),
    Price(kQuoteUpperLimit, "Q_UpperLimit", [](const Quote& q) { return q.UpperLimit; }, true),
    Price(kQuoteLowerLimit, "Q_LowerLimit", [](const Quote& q) { return q.LowerLimit; }, true),
    Amount(kQuoteInsideVol, "Q_InsideVol", [](const Quote& q) { return q.InsideVolume; }),
    Amount(kQuoteOutsideVol, "Q_OutsideVol", [](const Quote& q) { return q.OutsideVolume; }),
    Amount(kQuoteTodayEntryVol, "Q_TodayEntryVol",
           [](const Quote& q) { return q.TodayEntryVolume; }),
    Amount(kQuoteTodayExitVol, "Q_TodayExitVol", [](const Quote& q) { return q.TodayExitVolume; }),
    Price(kQuoteLast, "Q_Last", [](const Quote& q) { return q.LastPrice; }),
    Integer(kQuoteLastFlag, "Q_LastFlag",
            [](const Quote& q) { return DirectionFlag(q.ChangeFlags, 0); }),
    Integer(kQuoteBidPriceFlag, "Q_BidPriceFlag",
            [](const Quote& q) { return DirectionFlag(q.ChangeFlags, 2); }),
    Integer(kQuoteAskPriceFlag, "Q_AskPriceFlag",
            [](const Quote& q) { return DirectionFlag(q.ChangeFlags, 4); }),
    Integer(kQuoteOpenIntFlag, "Q_OpenIntFlag",
            [](const Quote& q) { return DirectionFlag(q.ChangeFlags, 6); }),
}};
// clang-format on

double DepthValue(const Quill::DepthLevel& level, int32_t side) {
  switch (side) {
    case kBidPrice:
      return level.BidPrice;
    case kBidVolume:
      return level.BidVolume;
    case kAskPrice:
      return level.AskPrice;
    case kAskVolume:
      return level.AskVolume;
    default:
      return kInvalidNumber;
  }
}

double PackedTickDepthValue(double low, double high, int32_t side) {
  switch (side) {
    case kBidPrice:
      return PackedPrice(low);
    case kBidVolume:
      return PackedVolume(low);
    case kAskPrice:
      return PackedPrice(high);
    case kAskVolume:
      return PackedVolume(high);
    default:
      return kInvalidNumber;
  }
}

}  // namespace sysfuncs
