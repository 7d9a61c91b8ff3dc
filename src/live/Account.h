// The bound account's summary and position figures: one row per figure number.
#ifndef SYSFUNCS_LIVE_ACCOUNT_H_
#define SYSFUNCS_LIVE_ACCOUNT_H_

#include "sysfuncs/DataAdapter.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace sysfuncs {

enum AccountFieldNumber : int32_t {
  kAccountPreviousEquity = 0,
  kAccountProfitLoss,
  kAccountCurrentEquity,
  kAccountFreeMargin,
  kAccountTotalFreeze,
  kAccountTotalMargin,
  kAccountTodayDeposit,
  kAccountTodayDrawing,
};

enum PositionFieldNumber : int32_t {
  kPositionBuyPosition = 0,
  kPositionBuyAvgPrice,
  kPositionBuyProfitLoss,
  kPositionTodayBuyPosition,
  kPositionSellPosition,
  kPositionSellAvgPrice,
  kPositionSellProfitLoss,
  kPositionTodaySellPosition,
  kPositionTotalPosition,
  kPositionTotalAvgPrice,
  kPositionProfitLoss,
};

struct AccountField {
  int32_t Number;
  std::string_view Name;  // the system function, also its cache key
  double Quill::ITradeAcctSummary::*Value;
};

struct PositionField {
  int32_t Number;
  std::string_view Name;  // the system function, the tail of its cache key
  double (*Read)(const Quill::ITradePosition&);
};

extern const std::array<AccountField, 8> kAccountFields;
extern const std::array<PositionField, 11> kPositionFields;

}  // namespace sysfuncs

#endif  // SYSFUNCS_LIVE_ACCOUNT_H_
