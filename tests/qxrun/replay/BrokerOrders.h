// Orders as the trading front end hands them to the paper broker, for the broker's tests.
#ifndef TESTS_QXRUN_REPLAY_BROKER_ORDERS_H_
#define TESTS_QXRUN_REPLAY_BROKER_ORDERS_H_

#include "sysfuncs/DataAdapter.h"

namespace qxrun_test {

// An order of account "acc" in symbol "IF" of market 0.
inline Quill::ITradeOrder BrokerOrder(int32_t buyOrSell, int32_t entryOrExit, double lots,
                                      double price) {
  Quill::ITradeOrder order;
  order.BrokerNo = 1;
  order.AccountID = "acc";
  order.CodeID.Code = "IF";
  order.BuyOrSell = buyOrSell;
  order.EntryOrExit = entryOrExit;
  order.Lot = lots;
  order.Price = price;
  order.Source = "A_SendOrder";
  return order;
}

}  // namespace qxrun_test

#endif  // TESTS_QXRUN_REPLAY_BROKER_ORDERS_H_
