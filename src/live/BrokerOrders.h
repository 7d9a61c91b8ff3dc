// Broker orders of the bound account: the platform's codes in the formula language's terms, the
// two ways an index picks an order, and the order fields a formula reads.
#ifndef SYSFUNCS_LIVE_BROKER_ORDERS_H_
#define SYSFUNCS_LIVE_BROKER_ORDERS_H_

#include "sysfuncs/DataAdapter.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sysfuncs {

// Every order of the day, or only the working ones.
enum class OrderBook { kAll, kOpen };

// Platform status 1 sending, 2 reported, 3 rejected, 4 partly filled, 5 filled, 7 cancelled give
// 11, 1, 5, 2, 3, 4; partly filled with the rest cancelled (6) and unknown codes give 0. The
// invalid integer passes through.
int32_t MapOrderStatus(int32_t status);
// 1 buy and 2 sell as they are; every other value unchanged.
int32_t MapBuyOrSell(int32_t buyOrSell);
// Platform open (1), close (4), close today (5) give 0 entry, 1 exit, 2 exit today; every other
// value unchanged.
int32_t MapEntryOrExit(int32_t entryOrExit);

// 1-based position of the order with the greatest time stamp above 0 (the earlier one on equal
// stamps); -1 when there is none.
int32_t NewestOrderIndex(const std::vector<Quill::ITradeOrder>& list);
// The same over the orders whose mapped direction and open/close codes equal the arguments.
int32_t LastMatchingOrderIndex(const std::vector<Quill::ITradeOrder>& list, int32_t buyOrSell,
                               int32_t entryOrExit);

// 1-based position that `index` selects, -1 when it selects none. Of all orders, 0 is the last in
// the list; of open orders, 0 is the newest by time stamp. Any other index is the position itself.
int32_t SelectOrder(OrderBook book, const std::vector<Quill::ITradeOrder>& list, int32_t index);

enum OrderIntegerField : int32_t { kOrderStatus = 0, kOrderBuyOrSell, kOrderEntryOrExit };
enum OrderRealField : int32_t {
  kOrderTime = 0,
  kOrderLot,
  kOrderPrice,
  kOrderFilledLot,
  kOrderFilledPrice,
  kOrderCanceledLot,
};
enum OrderTextField : int32_t { kOrderContractNo = 0, kOrderComment };

// One readable field of an order; `Name` is the field's part of the system functions' names.
struct OrderIntegerRow {
  int32_t Number;
  std::string_view Name;
  int32_t (*Read)(const Quill::ITradeOrder&);
};
struct OrderRealRow {
  int32_t Number;
  std::string_view Name;
  double (*Read)(const Quill::ITradeOrder&);
};
struct OrderTextRow {
  int32_t Number;
  std::string_view Name;
  std::string Quill::ITradeOrder::*Value;
};

extern const std::array<OrderIntegerRow, 3> kOrderIntegerFields;
extern const std::array<OrderRealRow, 6> kOrderRealFields;
extern const std::array<OrderTextRow, 2> kOrderTextFields;

}  // namespace sysfuncs

#endif  // SYSFUNCS_LIVE_BROKER_ORDERS_H_
