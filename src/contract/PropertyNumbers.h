// Numbers of the symbol properties: the index of each entry in a property list.
#ifndef SYSFUNCS_CONTRACT_PROPERTY_NUMBERS_H_
#define SYSFUNCS_CONTRACT_PROPERTY_NUMBERS_H_

#include <cstdint>

namespace sysfuncs {

enum PropertyNumber : int32_t {
  kPropBarInterval = 0,
  kPropBarType = 1,
  kPropCanMarketOrder = 2,
  kPropCanShortTrade = 3,
  kPropCanStopOrder = 4,
  kPropCanTrade = 5,
  kPropContractSize = 6,
  kPropCurrencyName = 7,
  kPropCurrencySymbol = 8,
  kPropExchangeName = 9,
  kPropExpiredDate = 10,
  kPropInitialMargin = 11,
  kPropMaintenanceMargin = 12,
  kPropMaxSingleTradeSize = 13,
  kPropMinMove = 14,
  kPropPriceScale = 15,
  kPropSymbolName = 16,
  kPropSecondName = 17,
  kPropSymbolType = 18,
  kPropCategory = 19,
  kPropBidAskSize = 20,
  kPropContractUnit = 21,
  kPropBigPointValue = 22,
  kPropMarginRatio = 23,
  kPropMarginKind = 24,
  kPropRelativeSymbol = 25,
  kPropTickSize = 26,
  kPropContractUnitFloat = 27,
  kPropSessionCount = 28,
  kPropSessions = 29,
  kPropOptionType = 30,
  kPropOptionStyle = 31,
  kPropStrikePrice = 32,
};

inline constexpr int32_t kPropertyCount = 33;

}  // namespace sysfuncs

#endif  // SYSFUNCS_CONTRACT_PROPERTY_NUMBERS_H_
