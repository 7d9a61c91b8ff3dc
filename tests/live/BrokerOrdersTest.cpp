// Broker order queries: the two index families, the code mappings and the order fields.
#include "live/BrokerOrders.h"
#include "live/LiveHost.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

Quill::ITradeOrder Order(const std::string& contractNo, int32_t status, int64_t stamp,
                         int32_t buyOrSell = 1, int32_t entryOrExit = 1, double lot = 1) {
  Quill::ITradeOrder order;
  order.ContractNo = contractNo;
  order.Status = status;
  order.TimeStamp = stamp;
  order.BuyOrSell = buyOrSell;
  order.EntryOrExit = entryOrExit;
  order.Lot = lot;
  return order;
}

TEST(BrokerOrders, PlatformCodesMapToTheFormulaLanguagesCodes) {
  const int32_t statuses[][2] = {{1, 11},
                                 {2, 1},
                                 {3, 5},
                                 {4, 2},
                                 {5, 3},
                                 {6, 0},
                                 {7, 4},
                                 {0, 0},
                                 {8, 0},
                                 {-1, 0},
                                 {kNoInteger, kNoInteger}};
  for (const auto& [platform, formula] : statuses) {
    EXPECT_EQ(MapOrderStatus(platform), formula) << "status " << platform;
  }
  const int32_t entries[][2] = {{1, 0}, {4, 1}, {5, 2}, {7, 7}, {0, 0}, {kNoInteger, kNoInteger}};
  for (const auto& [platform, formula] : entries) {
    EXPECT_EQ(MapEntryOrExit(platform), formula) << "entry or exit " << platform;
  }
  for (const int32_t code : {1, 2, 3, 0, -5}) EXPECT_EQ(MapBuyOrSell(code), code);
}

TEST(BrokerOrders, IndexZeroIsTheLastOfAllOrdersButTheNewestOpenOrder) {
  LiveHost live;
  // Stamps 5000, 9000, 9000: the newest is the first of the two equal stamps.
  const std::vector<Quill::ITradeOrder> list = {
      Order("A1", 2, 5000, 1, 1, 1), Order("A2", 2, 9000, 2, 4, 2), Order("A3", 2, 9000, 1, 5, 3)};
  live.adapter.orders["rb2410"] = list;
  live.adapter.openOrders["rb2410"] = list;
  CSystemFuncs& f = live.AtLastBar();
  const struct {
    int32_t index;
    double all, open;
  } rows[] = {{0, 3, 2},
              {1, 1, 1},
              {2, 2, 2},
              {3, 3, 3},
              {4, kNoNumber, kNoNumber},
              {-1, kNoNumber, kNoNumber}};
  for (const auto& row : rows) {
    EXPECT_EQ(f.A_OrderLot(row.index), row.all) << row.index;
    EXPECT_EQ(f.A_OpenOrderLot(row.index), row.open) << row.index;
  }
  EXPECT_EQ(f.A_OrderContractNo(0), "A3");
  EXPECT_EQ(f.A_OpenOrderContractNo(0), "A2");
  EXPECT_EQ(f.A_OrderContractNo(-2), "");
  EXPECT_EQ(f.A_GetOrderCount(), 3);
  EXPECT_EQ(f.A_GetOpenOrderCount(), 3);
  // Each call asks for the whole list afresh, after the symbol's identity: 6 rows + 3 calls of
  // all orders, 6 rows + 2 calls of open orders.
  EXPECT_EQ(live.adapter.orderCalls, 9);
  EXPECT_EQ(live.adapter.openOrderCalls, 8);
  EXPECT_EQ(live.adapter.codeIdCalls, 17);
}

TEST(BrokerOrders, OpenOrdersWithoutAPositiveStampHaveNoNewest) {
  LiveHost live;
  live.adapter.openOrders["rb2410"] = {Order("B1", 2, 0), Order("B2", 2, -5)};
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.A_OpenOrderStatus(0), kNoInteger);
  EXPECT_EQ(f.A_OpenOrderStatus(2), 1);
  live.adapter.openOrders["rb2410"].clear();
  EXPECT_EQ(f.A_OpenOrderStatus(0), kNoInteger);
  EXPECT_EQ(f.A_GetOpenOrderCount(), 0);
}

TEST(BrokerOrders, EveryFieldOfAnOrderIsTranslated) {
  LiveHost live;
  Quill::ITradeOrder order = Order("C9", 6, ShanghaiInstant(2024, 3, 5, 14, 5, 9, 999), 2, 4, 5);
  order.FilledLot = 2;
  order.FilledPrice = 4012.4;
  order.Price = 4012.6;
  order.Comment = "手工";
  live.adapter.orders["rb2410"] = {order};
  live.adapter.openOrders["rb2410"] = {order};
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.A_OrderStatus(1), 0) << "partly filled, rest cancelled";
  EXPECT_EQ(f.A_OrderBuyOrSell(1), 2);
  EXPECT_EQ(f.A_OrderEntryOrExit(1), 1);
  EXPECT_DOUBLE_EQ(f.A_OrderTime(1), 0.140509);
  EXPECT_EQ(f.A_OrderLot(1), 5);
  EXPECT_EQ(f.A_OrderPrice(1), 4012.6);
  EXPECT_EQ(f.A_OrderFilledLot(1), 2);
  EXPECT_EQ(f.A_OrderFilledPrice(1), 4012.4);
  EXPECT_EQ(f.A_OrderCanceledLot(1), 3);  // 5 - 2
  EXPECT_EQ(f.A_OrderComment(1), "手工");
  EXPECT_EQ(f.A_OrderContractNo(1), "C9");
  // The open-order family reads the same fields of its own list.
  const std::tuple<double, double> same[] = {
      {f.A_OpenOrderStatus(1), 0},      {f.A_OpenOrderBuyOrSell(1), 2},
      {f.A_OpenOrderEntryOrExit(1), 1}, {f.A_OpenOrderTime(1), 0.140509},
      {f.A_OpenOrderLot(1), 5},         {f.A_OpenOrderPrice(1), 4012.6},
      {f.A_OpenOrderFilledLot(1), 2},   {f.A_OpenOrderFilledPrice(1), 4012.4}};
  for (const auto& [got, want] : same) EXPECT_DOUBLE_EQ(got, want);
  EXPECT_EQ(f.A_OpenOrderComment(1) + f.A_OpenOrderContractNo(1), "手工C9");
  // Only a cancellation takes lots off: cancelled (7) does, filled (5) does not.
  live.adapter.orders["rb2410"][0].Status = 7;
  EXPECT_EQ(f.A_OrderCanceledLot(1), 3);
  EXPECT_EQ(f.A_OrderStatus(1), 4);
  live.adapter.orders["rb2410"][0].Status = 5;
  EXPECT_EQ(f.A_OrderCanceledLot(1), 0);
}

TEST(BrokerOrders, TheLastMatchingOrderIsTheNewestOfItsCodes) {
  LiveHost live;
  live.adapter.orders["rb2410"] = {Order("D1", 5, 30, 2, 1), Order("D2", 5, 10, 1, 1),
                                   Order("D3", 5, 20, 1, 1), Order("D4", 5, 40, 1, 4),
                                   Order("D5", 5, 20, 1, 1)};
  live.adapter.openOrders["rb2410"] = {Order("E1", 2, 0, 1, 5), Order("E2", 2, 50, 1, 5)};
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.A_GetLastOrderIndex(1, 0), 3) << "buy entries stamped 10, 20, 20: the first 20";
  EXPECT_EQ(f.A_GetLastOrderIndex(2, 0), 1);
  EXPECT_EQ(f.A_GetLastOrderIndex(1, 1), 4) << "arguments are the formula's codes: exit is 1";
  EXPECT_EQ(f.A_GetLastOrderIndex(1, 4), kNoInteger) << "not the platform's close code";
  EXPECT_EQ(f.A_GetLastOrderIndex(2, 1), kNoInteger);
  EXPECT_EQ(f.A_GetLastOpenOrderIndex(1, 2), 2) << "a stamp of 0 never counts";
}

TEST(BrokerOrders, OffTheLastBarOrWithoutAnAccountNothingIsAsked) {
  LiveHost live;
  live.adapter.orders["rb2410"] = {Order("F1", 2, 10)};
  CSystemFuncs& f = live.Funcs(1);
  EXPECT_EQ(f.A_GetOrderCount(), kNoInteger);
  EXPECT_EQ(f.A_OrderLot(1), kNoNumber);
  live.host.At(0, live.LastBar());
  live.host.data.BrokerID = "";
  EXPECT_EQ(f.A_GetOpenOrderCount(), kNoInteger);
  EXPECT_EQ(f.A_GetLastOrderIndex(1, 0), kNoInteger);
  EXPECT_EQ(live.adapter.LiveCalls(), 0);
  live.host.data.BrokerID = "8|abc";
  EXPECT_EQ(f.A_GetOpenOrderCount(), kNoInteger) << "a failed query counts nothing, not 0";
  EXPECT_EQ(f.A_GetOrderCount(), 1);
}

}  // namespace
}  // namespace sysfuncs::testing
