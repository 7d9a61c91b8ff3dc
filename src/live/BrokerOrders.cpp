#include "live/BrokerOrders.h"

#include "sysfuncs/SFImpl.h"

#include "contract/SymbolKey.h"
#include "util/DateCodec.h"

namespace sysfuncs {
namespace {

using Order = Quill::ITradeOrder;

// Keeps the first order of greatest time stamp above 0 among those `accepts` lets through.
template <typename Accepts>
int32_t LatestIndex(const std::vector<Order>& list, Accepts accepts) {
  int32_t best = -1;
  int64_t bestStamp = 0;
  for (size_t position = 0; position < list.size(); ++position) {
    const Order& order = list[position];
    if (!accepts(order) || order.TimeStamp <= bestStamp) continue;
    best = static_cast<int32_t>(position) + 1;
    bestStamp = order.TimeStamp;
  }
  return best;
}

constexpr int32_t kPartlyCancelled = 6;
constexpr int32_t kCancelled = 7;

}  // namespace

int32_t MapOrderStatus(int32_t status) {
  switch (status) {
    case 1:  // sending
      return 11;
    case 2:  // reported
      return 1;
    case 3:  // rejected
      return 5;
    case 4:  // partly filled
      return 2;
    case 5:  // filled
      return 3;
    case kCancelled:
      return 4;
    case kInvalidInteger:
      return kInvalidInteger;
    default:  // partly filled with the rest cancelled has no code of its own
      return 0;
  }
}

int32_t MapBuyOrSell(int32_t buyOrSell) { return buyOrSell; }

int32_t MapEntryOrExit(int32_t entryOrExit) {
  switch (entryOrExit) {
    case 1:  // open
      return 0;
    case 4:  // close
      return 1;
    case 5:  // close today
      return 2;
    default:
      return entryOrExit;
  }
}

int32_t NewestOrderIndex(const std::vector<Order>& list) {
  return LatestIndex(list, [](const Order&) { return true; });
}

int32_t LastMatchingOrderIndex(const std::vector<Order>& list, int32_t buyOrSell,
                               int32_t entryOrExit) {
  return LatestIndex(list, [buyOrSell, entryOrExit](const Order& order) {
    return MapBuyOrSell(order.BuyOrSell) == buyOrSell &&
           MapEntryOrExit(order.EntryOrExit) == entryOrExit;
  });
}

int32_t SelectOrder(OrderBook book, const std::vector<Order>& list, int32_t index) {
  const auto count = static_cast<int64_t>(list.size());
  if (index < 0 || index > count) return -1;
  if (index != 0) return index;
  if (book == OrderBook::kOpen) return NewestOrderIndex(list);
  return count >= 1 ? static_cast<int32_t>(count) : -1;
}

const std::array<OrderIntegerRow, 3> kOrderIntegerFields = {{
    {kOrderStatus, "Status", [](const Order& o) { return MapOrderStatus(o.Status); }},
    {kOrderBuyOrSell, "BuyOrSell", [](const Order& o) { return MapBuyOrSell(o.BuyOrSell); }},
    {kOrderEntryOrExit, "EntryOrExit",
     [](const Order& o) { return MapEntryOrExit(o.EntryOrExit); }},
}};

const std::array<OrderRealRow, 6> kOrderRealFields = {{
    {kOrderTime, "Time", [](const Order& o) { return ToFormulaTime(o.TimeStamp); }},
    {kOrderLot, "Lot", [](const Order& o) { return o.Lot; }},
    {kOrderPrice, "Price", [](const Order& o) { return o.Price; }},
    {kOrderFilledLot, "FilledLot", [](const Order& o) { return static_cast<double>(o.FilledLot); }},
    {kOrderFilledPrice, "FilledPrice", [](const Order& o) { return o.FilledPrice; }},
    // What a cancellation took off the order; nothing while the order stands.
    {kOrderCanceledLot, "CanceledLot",
     [](const Order& o) {
       const bool cancelled = o.Status == kPartlyCancelled || o.Status == kCancelled;
       return cancelled ? o.Lot - static_cast<double>(o.FilledLot) : 0.0;
     }},
}};

const std::array<OrderTextRow, 2> kOrderTextFields = {{
    {kOrderContractNo, "ContractNo", &Order::ContractNo},
    {kOrderComment, "Comment", &Order::Comment},
}};

}  // namespace sysfuncs

// ---------------------------------------------------------------------------------------------
// The order queries of SFImpl: each call fetches the list afresh, answers and discards it.

bool SFImpl::FetchOrders(sysfuncs::OrderBook book, std::vector<Quill::ITradeOrder>& list) const {
  if (!AccountDataExist()) return false;
  Quill::ICodeID codeId;
  if (!CurrentCodeID(codeId)) return false;
  CDataAdapter* adapter = sysfuncs::CurrentAdapter();
  const int result = book == sysfuncs::OrderBook::kOpen
                         ? adapter->GetOpenOrders(m_nBrokerNo, m_strAccountID, codeId, list)
                         : adapter->GetOrders(m_nBrokerNo, m_strAccountID, codeId, list);
  return result != 0;
}

bool SFImpl::FetchOrderList(std::vector<Quill::ITradeOrder>& list) const {
  return FetchOrders(sysfuncs::OrderBook::kAll, list);
}

bool SFImpl::FetchOpenOrderList(std::vector<Quill::ITradeOrder>& list) const {
  return FetchOrders(sysfuncs::OrderBook::kOpen, list);
}

int32_t SFImpl::OrderCount(sysfuncs::OrderBook book) const {
  std::vector<Quill::ITradeOrder> list;
  if (!FetchOrders(book, list)) return sysfuncs::kInvalidInteger;
  return static_cast<int32_t>(list.size());
}

int32_t SFImpl::LastOrderIndex(sysfuncs::OrderBook book, int32_t buyOrSell,
                               int32_t entryOrExit) const {
  std::vector<Quill::ITradeOrder> list;
  if (!FetchOrders(book, list)) return sysfuncs::kInvalidInteger;
  const int32_t position = sysfuncs::LastMatchingOrderIndex(list, buyOrSell, entryOrExit);
  return position > 0 ? position : sysfuncs::kInvalidInteger;
}

template <typename Result, typename Read>
Result SFImpl::ReadOrder(sysfuncs::OrderBook book, int32_t index, Read read, Result invalid) const {
  std::vector<Quill::ITradeOrder> list;
  if (!FetchOrders(book, list)) return invalid;
  const int32_t position = sysfuncs::SelectOrder(book, list, index);
  if (position < 1) return invalid;
  return read(list[static_cast<size_t>(position) - 1]);
}

int32_t SFImpl::OrderInteger(sysfuncs::OrderBook book, int32_t index, int32_t field) const {
  return ReadOrder(book, index, sysfuncs::kOrderIntegerFields[field].Read,
                   sysfuncs::kInvalidInteger);
}

double SFImpl::OrderReal(sysfuncs::OrderBook book, int32_t index, int32_t field) const {
  return ReadOrder(book, index, sysfuncs::kOrderRealFields[field].Read, sysfuncs::kInvalidNumber);
}

std::string SFImpl::OrderText(sysfuncs::OrderBook book, int32_t index, int32_t field) const {
  const auto value = sysfuncs::kOrderTextFields[field].Value;
  return ReadOrder(
      book, index, [value](const Quill::ITradeOrder& order) { return order.*value; },
      std::string());
}
