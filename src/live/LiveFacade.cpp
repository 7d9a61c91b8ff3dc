// Real-time quotes, the bound account, broker orders, live orders and stock picking.
//
// Not built yet: every function answers its invalid value.
#include "sysfuncs/SystemFuncs.h"

using sysfuncs::kInvalidInteger;
using sysfuncs::kInvalidNumber;

bool CSystemFuncs::QuoteDataExist() { return false; }
double CSystemFuncs::Q_Close() { return kInvalidNumber; }
double CSystemFuncs::Q_High() { return kInvalidNumber; }
int32_t CSystemFuncs::Q_LastDate() { return kInvalidInteger; }
double CSystemFuncs::Q_LastTime() { return kInvalidNumber; }
double CSystemFuncs::Q_LastVol() { return kInvalidNumber; }
double CSystemFuncs::Q_Low() { return kInvalidNumber; }
double CSystemFuncs::Q_Open() { return kInvalidNumber; }
double CSystemFuncs::Q_OpenInt() { return kInvalidNumber; }
double CSystemFuncs::Q_Oscillation() { return kInvalidNumber; }
double CSystemFuncs::Q_PriceChg() { return kInvalidNumber; }
double CSystemFuncs::Q_PriceChgRatio() { return kInvalidNumber; }
double CSystemFuncs::Q_TickChg() { return kInvalidNumber; }
double CSystemFuncs::Q_TotalVol() { return kInvalidNumber; }
double CSystemFuncs::Q_PreSettlePrice() { return kInvalidNumber; }
double CSystemFuncs::Q_PreOpenInt() { return kInvalidNumber; }
double CSystemFuncs::Q_AvgPrice() { return kInvalidNumber; }
double CSystemFuncs::Q_TurnOver() { return kInvalidNumber; }
double CSystemFuncs::Q_HisHigh() { return kInvalidNumber; }
double CSystemFuncs::Q_HisLow() { return kInvalidNumber; }
double CSystemFuncs::Q_UpperLimit() { return kInvalidNumber; }
double CSystemFuncs::Q_LowerLimit() { return kInvalidNumber; }
double CSystemFuncs::Q_InsideVol() { return kInvalidNumber; }
double CSystemFuncs::Q_OutsideVol() { return kInvalidNumber; }
double CSystemFuncs::Q_TodayEntryVol() { return kInvalidNumber; }
double CSystemFuncs::Q_TodayExitVol() { return kInvalidNumber; }
double CSystemFuncs::Q_Last() { return kInvalidNumber; }
int32_t CSystemFuncs::Q_LastFlag() { return kInvalidInteger; }
int32_t CSystemFuncs::Q_BidPriceFlag() { return kInvalidInteger; }
int32_t CSystemFuncs::Q_AskPriceFlag() { return kInvalidInteger; }
int32_t CSystemFuncs::Q_OpenIntFlag() { return kInvalidInteger; }
double CSystemFuncs::Q_BidPrice(int32_t /*level*/) { return kInvalidNumber; }
double CSystemFuncs::Q_BidVol(int32_t /*level*/) { return kInvalidNumber; }
double CSystemFuncs::Q_AskPrice(int32_t /*level*/) { return kInvalidNumber; }
double CSystemFuncs::Q_AskVol(int32_t /*level*/) { return kInvalidNumber; }
bool CSystemFuncs::AccountDataExist() { return false; }
std::string CSystemFuncs::A_BrokerID() { return {}; }
std::string CSystemFuncs::A_AccountID() { return {}; }
double CSystemFuncs::A_PreviousEquity() { return kInvalidNumber; }
double CSystemFuncs::A_ProfitLoss() { return kInvalidNumber; }
double CSystemFuncs::A_CurrentEquity() { return kInvalidNumber; }
double CSystemFuncs::A_FreeMargin() { return kInvalidNumber; }
double CSystemFuncs::A_TotalFreeze() { return kInvalidNumber; }
double CSystemFuncs::A_TotalMargin() { return kInvalidNumber; }
double CSystemFuncs::A_TodayDeposit() { return kInvalidNumber; }
double CSystemFuncs::A_TodayDrawing() { return kInvalidNumber; }
double CSystemFuncs::A_BuyPosition() { return kInvalidNumber; }
double CSystemFuncs::A_BuyAvgPrice() { return kInvalidNumber; }
double CSystemFuncs::A_BuyProfitLoss() { return kInvalidNumber; }
double CSystemFuncs::A_TodayBuyPosition() { return kInvalidNumber; }
double CSystemFuncs::A_SellPosition() { return kInvalidNumber; }
double CSystemFuncs::A_SellAvgPrice() { return kInvalidNumber; }
double CSystemFuncs::A_SellProfitLoss() { return kInvalidNumber; }
double CSystemFuncs::A_TodaySellPosition() { return kInvalidNumber; }
double CSystemFuncs::A_TotalPosition() { return kInvalidNumber; }
double CSystemFuncs::A_TotalAvgPrice() { return kInvalidNumber; }
double CSystemFuncs::A_PositionProfitLoss() { return kInvalidNumber; }
int32_t CSystemFuncs::A_GetOrderCount() { return kInvalidInteger; }
int32_t CSystemFuncs::A_GetOpenOrderCount() { return kInvalidInteger; }
int32_t CSystemFuncs::A_GetLastOrderIndex(int32_t /*buyOrSell*/, int32_t /*entryOrExit*/) {
  return kInvalidInteger;
}
int32_t CSystemFuncs::A_GetLastOpenOrderIndex(int32_t /*buyOrSell*/, int32_t /*entryOrExit*/) {
  return kInvalidInteger;
}
int32_t CSystemFuncs::A_OrderStatus(int32_t /*index*/) { return kInvalidInteger; }
int32_t CSystemFuncs::A_OpenOrderStatus(int32_t /*index*/) { return kInvalidInteger; }
std::string CSystemFuncs::A_OrderContractNo(int32_t /*index*/) { return {}; }
std::string CSystemFuncs::A_OpenOrderContractNo(int32_t /*index*/) { return {}; }
int32_t CSystemFuncs::A_OrderBuyOrSell(int32_t /*index*/) { return kInvalidInteger; }
int32_t CSystemFuncs::A_OpenOrderBuyOrSell(int32_t /*index*/) { return kInvalidInteger; }
int32_t CSystemFuncs::A_OrderEntryOrExit(int32_t /*index*/) { return kInvalidInteger; }
int32_t CSystemFuncs::A_OpenOrderEntryOrExit(int32_t /*index*/) { return kInvalidInteger; }
double CSystemFuncs::A_OrderTime(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OpenOrderTime(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OrderLot(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OpenOrderLot(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OrderPrice(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OpenOrderPrice(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OrderFilledLot(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OpenOrderFilledLot(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OrderFilledPrice(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OpenOrderFilledPrice(int32_t /*index*/) { return kInvalidNumber; }
double CSystemFuncs::A_OrderCanceledLot(int32_t /*index*/) { return kInvalidNumber; }
std::string CSystemFuncs::A_OrderComment(int32_t /*index*/) { return {}; }
std::string CSystemFuncs::A_OpenOrderComment(int32_t /*index*/) { return {}; }
bool CSystemFuncs::A_SendOrder(int32_t /*buyOrSell*/, int32_t /*entryOrExit*/, double /*lots*/,
                               double /*price*/, double /*reserved1*/, double /*reserved2*/) {
  return false;
}
bool CSystemFuncs::A_DeleteOrder(const std::string& /*contractNo*/) { return false; }
int32_t CSystemFuncs::StockPoolSize() { return kInvalidInteger; }
void CSystemFuncs::SetSPSortValue(int32_t /*index*/, double /*value*/, bool /*flag*/) {}
int32_t CSystemFuncs::GetSPSortRanking(int32_t /*index*/) { return kInvalidInteger; }
bool CSystemFuncs::StockPickingCheckPoint(int32_t /*signal*/, bool /*flag*/) { return false; }
