// Real-time quotes, the bound account, broker orders, live orders and stock picking: each
// function forwards to its row of the live subsystem's tables.
#include "sysfuncs/SFImpl.h"
#include "sysfuncs/SystemFuncs.h"

#include "live/Account.h"
#include "live/BrokerOrders.h"
#include "live/QuoteFields.h"

using namespace sysfuncs;

namespace {

constexpr OrderBook kAll = OrderBook::kAll;
constexpr OrderBook kOpen = OrderBook::kOpen;

}  // namespace

// Quotes.
bool CSystemFuncs::QuoteDataExist() { return m_pImpl->QuoteDataExist(); }
double CSystemFuncs::Q_Close() { return m_pImpl->GetQuoteReal(kQuoteClose); }
double CSystemFuncs::Q_High() { return m_pImpl->GetQuoteReal(kQuoteHigh); }
int32_t CSystemFuncs::Q_LastDate() { return m_pImpl->GetQuoteInteger(kQuoteLastDate); }
double CSystemFuncs::Q_LastTime() { return m_pImpl->GetQuoteReal(kQuoteLastTime); }
double CSystemFuncs::Q_LastVol() { return m_pImpl->GetQuoteReal(kQuoteLastVol); }
double CSystemFuncs::Q_Low() { return m_pImpl->GetQuoteReal(kQuoteLow); }
double CSystemFuncs::Q_Open() { return m_pImpl->GetQuoteReal(kQuoteOpen); }
double CSystemFuncs::Q_OpenInt() { return m_pImpl->GetQuoteReal(kQuoteOpenInt); }
double CSystemFuncs::Q_Oscillation() { return m_pImpl->GetQuoteReal(kQuoteOscillation); }
double CSystemFuncs::Q_PriceChg() { return m_pImpl->GetQuoteReal(kQuotePriceChg); }
double CSystemFuncs::Q_PriceChgRatio() { return m_pImpl->GetQuoteReal(kQuotePriceChgRatio); }
double CSystemFuncs::Q_TickChg() { return m_pImpl->GetQuoteReal(kQuoteTickChg); }
double CSystemFuncs::Q_TotalVol() { return m_pImpl->GetQuoteReal(kQuoteTotalVol); }
double CSystemFuncs::Q_PreSettlePrice() { return m_pImpl->GetQuoteReal(kQuotePreSettlePrice); }
double CSystemFuncs::Q_PreOpenInt() { return m_pImpl->GetQuoteReal(kQuotePreOpenInt); }
double CSystemFuncs::Q_AvgPrice() { return m_pImpl->GetQuoteReal(kQuoteAvgPrice); }
double CSystemFuncs::Q_TurnOver() { return m_pImpl->GetQuoteReal(kQuoteTurnOver); }
double CSystemFuncs::Q_HisHigh() { return m_pImpl->GetQuoteReal(kQuoteHisHigh); }
double CSystemFuncs::Q_HisLow() { return m_pImpl->GetQuoteReal(kQuoteHisLow); }
double CSystemFuncs::Q_UpperLimit() { return m_pImpl->GetQuoteReal(kQuoteUpperLimit); }
double CSystemFuncs::Q_LowerLimit() { return m_pImpl->GetQuoteReal(kQuoteLowerLimit); }
double CSystemFuncs::Q_InsideVol() { return m_pImpl->GetQuoteReal(kQuoteInsideVol); }
double CSystemFuncs::Q_OutsideVol() { return m_pImpl->GetQuoteReal(kQuoteOutsideVol); }
double CSystemFuncs::Q_TodayEntryVol() { return m_pImpl->GetQuoteReal(kQuoteTodayEntryVol); }
double CSystemFuncs::Q_TodayExitVol() { return m_pImpl->GetQuoteReal(kQuoteTodayExitVol); }
double CSystemFuncs::Q_Last() { return m_pImpl->GetQuoteReal(kQuoteLast); }
int32_t CSystemFuncs::Q_LastFlag() { return m_pImpl->GetQuoteInteger(kQuoteLastFlag); }
int32_t CSystemFuncs::Q_BidPriceFlag() { return m_pImpl->GetQuoteInteger(kQuoteBidPriceFlag); }
int32_t CSystemFuncs::Q_AskPriceFlag() { return m_pImpl->GetQuoteInteger(kQuoteAskPriceFlag); }
int32_t CSystemFuncs::Q_OpenIntFlag() { return m_pImpl->GetQuoteInteger(kQuoteOpenIntFlag); }
double CSystemFuncs::Q_BidPrice(int32_t level) { return m_pImpl->GetDepthValue(level, kBidPrice); }
double CSystemFuncs::Q_BidVol(int32_t level) { return m_pImpl->GetDepthValue(level, kBidVolume); }
double CSystemFuncs::Q_AskPrice(int32_t level) { return m_pImpl->GetDepthValue(level, kAskPrice); }
double CSystemFuncs::Q_AskVol(int32_t level) { return m_pImpl->GetDepthValue(level, kAskVolume); }

// Account and position.
bool CSystemFuncs::AccountDataExist() { return m_pImpl->AccountDataExist(); }
std::string CSystemFuncs::A_BrokerID() { return m_pData->BrokerID; }
std::string CSystemFuncs::A_AccountID() { return m_pData->AccountID; }
double CSystemFuncs::A_PreviousEquity() { return m_pImpl->GetAccountValue(kAccountPreviousEquity); }
double CSystemFuncs::A_ProfitLoss() { return m_pImpl->GetAccountValue(kAccountProfitLoss); }
double CSystemFuncs::A_CurrentEquity() { return m_pImpl->GetAccountValue(kAccountCurrentEquity); }
double CSystemFuncs::A_FreeMargin() { return m_pImpl->GetAccountValue(kAccountFreeMargin); }
double CSystemFuncs::A_TotalFreeze() { return m_pImpl->GetAccountValue(kAccountTotalFreeze); }
double CSystemFuncs::A_TotalMargin() { return m_pImpl->GetAccountValue(kAccountTotalMargin); }
double CSystemFuncs::A_TodayDeposit() { return m_pImpl->GetAccountValue(kAccountTodayDeposit); }
double CSystemFuncs::A_TodayDrawing() { return m_pImpl->GetAccountValue(kAccountTodayDrawing); }
double CSystemFuncs::A_BuyPosition() { return m_pImpl->GetPositionValue(kPositionBuyPosition); }
double CSystemFuncs::A_BuyAvgPrice() { return m_pImpl->GetPositionValue(kPositionBuyAvgPrice); }
double CSystemFuncs::A_BuyProfitLoss() { return m_pImpl->GetPositionValue(kPositionBuyProfitLoss); }
double CSystemFuncs::A_TodayBuyPosition() {
  return m_pImpl->GetPositionValue(kPositionTodayBuyPosition);
}
double CSystemFuncs::A_SellPosition() { return m_pImpl->GetPositionValue(kPositionSellPosition); }
double CSystemFuncs::A_SellAvgPrice() { return m_pImpl->GetPositionValue(kPositionSellAvgPrice); }
double CSystemFuncs::A_SellProfitLoss() {
  return m_pImpl->GetPositionValue(kPositionSellProfitLoss);
}
double CSystemFuncs::A_TodaySellPosition() {
  return m_pImpl->GetPositionValue(kPositionTodaySellPosition);
}
double CSystemFuncs::A_TotalPosition() { return m_pImpl->GetPositionValue(kPositionTotalPosition); }
double CSystemFuncs::A_TotalAvgPrice() { return m_pImpl->GetPositionValue(kPositionTotalAvgPrice); }
double CSystemFuncs::A_PositionProfitLoss() {
  return m_pImpl->GetPositionValue(kPositionProfitLoss);
}

// Broker orders.
int32_t CSystemFuncs::A_GetOrderCount() { return m_pImpl->OrderCount(kAll); }
int32_t CSystemFuncs::A_GetOpenOrderCount() { return m_pImpl->OrderCount(kOpen); }
int32_t CSystemFuncs::A_GetLastOrderIndex(int32_t buyOrSell, int32_t entryOrExit) {
  return m_pImpl->LastOrderIndex(kAll, buyOrSell, entryOrExit);
}
int32_t CSystemFuncs::A_GetLastOpenOrderIndex(int32_t buyOrSell, int32_t entryOrExit) {
  return m_pImpl->LastOrderIndex(kOpen, buyOrSell, entryOrExit);
}
int32_t CSystemFuncs::A_OrderStatus(int32_t index) {
  return m_pImpl->OrderInteger(kAll, index, kOrderStatus);
}
int32_t CSystemFuncs::A_OpenOrderStatus(int32_t index) {
  return m_pImpl->OrderInteger(kOpen, index, kOrderStatus);
}
std::string CSystemFuncs::A_OrderContractNo(int32_t index) {
  return m_pImpl->OrderText(kAll, index, kOrderContractNo);
}
std::string CSystemFuncs::A_OpenOrderContractNo(int32_t index) {
  return m_pImpl->OrderText(kOpen, index, kOrderContractNo);
}
int32_t CSystemFuncs::A_OrderBuyOrSell(int32_t index) {
  return m_pImpl->OrderInteger(kAll, index, kOrderBuyOrSell);
}
int32_t CSystemFuncs::A_OpenOrderBuyOrSell(int32_t index) {
  return m_pImpl->OrderInteger(kOpen, index, kOrderBuyOrSell);
}
int32_t CSystemFuncs::A_OrderEntryOrExit(int32_t index) {
  return m_pImpl->OrderInteger(kAll, index, kOrderEntryOrExit);
}
int32_t CSystemFuncs::A_OpenOrderEntryOrExit(int32_t index) {
  return m_pImpl->OrderInteger(kOpen, index, kOrderEntryOrExit);
}
double CSystemFuncs::A_OrderTime(int32_t index) {
  return m_pImpl->OrderReal(kAll, index, kOrderTime);
}
double CSystemFuncs::A_OpenOrderTime(int32_t index) {
  return m_pImpl->OrderReal(kOpen, index, kOrderTime);
}
double CSystemFuncs::A_OrderLot(int32_t index) {
  return m_pImpl->OrderReal(kAll, index, kOrderLot);
}
double CSystemFuncs::A_OpenOrderLot(int32_t index) {
  return m_pImpl->OrderReal(kOpen, index, kOrderLot);
}
double CSystemFuncs::A_OrderPrice(int32_t index) {
  return m_pImpl->OrderReal(kAll, index, kOrderPrice);
}
double CSystemFuncs::A_OpenOrderPrice(int32_t index) {
  return m_pImpl->OrderReal(kOpen, index, kOrderPrice);
}
double CSystemFuncs::A_OrderFilledLot(int32_t index) {
  return m_pImpl->OrderReal(kAll, index, kOrderFilledLot);
}
double CSystemFuncs::A_OpenOrderFilledLot(int32_t index) {
  return m_pImpl->OrderReal(kOpen, index, kOrderFilledLot);
}
double CSystemFuncs::A_OrderFilledPrice(int32_t index) {
  return m_pImpl->OrderReal(kAll, index, kOrderFilledPrice);
}
double CSystemFuncs::A_OpenOrderFilledPrice(int32_t index) {
  return m_pImpl->OrderReal(kOpen, index, kOrderFilledPrice);
}
double CSystemFuncs::A_OrderCanceledLot(int32_t index) {
  return m_pImpl->OrderReal(kAll, index, kOrderCanceledLot);
}
std::string CSystemFuncs::A_OrderComment(int32_t index) {
  return m_pImpl->OrderText(kAll, index, kOrderComment);
}
std::string CSystemFuncs::A_OpenOrderComment(int32_t index) {
  return m_pImpl->OrderText(kOpen, index, kOrderComment);
}

// Live orders. The two reserved arguments are accepted and not placed in the order.
bool CSystemFuncs::A_SendOrder(int32_t buyOrSell, int32_t entryOrExit, double lots, double price,
                               double /*reserved1*/, double /*reserved2*/) {
  return m_pImpl->SendOrder(buyOrSell, entryOrExit, lots, price);
}
bool CSystemFuncs::A_DeleteOrder(const std::string& contractNo) {
  return m_pImpl->DeleteOrder(contractNo);
}

// Stock picking.
int32_t CSystemFuncs::StockPoolSize() { return m_pImpl->StockPoolSize(); }
void CSystemFuncs::SetSPSortValue(int32_t index, double value, bool flag) {
  m_pImpl->SetSPSortValue(index, value, flag);
}
int32_t CSystemFuncs::GetSPSortRanking(int32_t index) { return m_pImpl->GetSPSortRanking(index); }
bool CSystemFuncs::StockPickingCheckPoint(int32_t signal, bool flag) {
  return m_pImpl->StockPickingCheckPoint(signal, flag);
}
