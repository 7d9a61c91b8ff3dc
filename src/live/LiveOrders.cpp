// Live orders for the bound account, confirmed and submitted by the trading front end, and their
// cancellation through the adapter.
#include "live/LiveOrders.h"

#include "sysfuncs/SFImpl.h"

#include "contract/PropertyNumbers.h"
#include "contract/SymbolKey.h"
#include "platform/Services.h"
#include "strategy/MoneyRules.h"
#include "strategy/SignalOrders.h"

#include <cmath>

namespace sysfuncs {

int32_t EntryOrExitToPlatform(int32_t entryOrExit) {
  switch (entryOrExit) {
    case 0:
      return 1;
    case 2:
      return 5;
    default:
      return 7;
  }
}

}  // namespace sysfuncs

namespace {

constexpr double kLeastAmount = 0.0001;  // lots and prices must exceed this
constexpr int32_t kBuyCode = 1;
constexpr int32_t kSellCode = 2;

// Lots of share-like instruments (code kinds 5 and 6) are board lots, sent as a share count;
// market kind 5 trades them in lots.
bool CountsShares(const Quill::ICodeID& codeId) {
  return (codeId.CodeKind == 5 || codeId.CodeKind == 6) && codeId.MarketKind != 5;
}

}  // namespace

void SFImpl::RoundPriceToTick(bool isBuy, double& price) {
  const double tickSize =
      m_pData->CurrentData == 0 ? m_dProp26 : GetDoubleProperty(sysfuncs::kPropTickSize);
  // An unknown symbol has no grid (its tick reads as the invalid number): the price stays.
  if (tickSize == sysfuncs::kInvalidNumber) return;
  price = sysfuncs::RoundToTick(
      price, tickSize, isBuy ? sysfuncs::PriceDirection::kBuy : sysfuncs::PriceDirection::kSell);
}

void SFImpl::ClampPriceToLimits(double& price) {
  // Limits are the day's: a bar of an earlier day keeps its price.
  if (!sysfuncs::IsOnOrAfterToday(CurrentBarRecord().Time, sysfuncs::NowMillis())) return;
  const sysfuncs::PriceLimits limits = DayPriceLimits(m_pData->CurrentData);
  if (limits.Upper != sysfuncs::kInvalidNumber && price > limits.Upper) price = limits.Upper;
  // The lower limit wins when both apply.
  if (limits.Lower != sysfuncs::kInvalidNumber && price < limits.Lower) price = limits.Lower;
}

bool SFImpl::SendOrder(int32_t buyOrSell, int32_t entryOrExit, double lots, double price) {
  if (!AccountBound() || !IsLastBar()) return false;
  if (!GetBoolProperty(sysfuncs::kPropCanTrade)) return false;
  if (buyOrSell != kBuyCode && buyOrSell != kSellCode) return false;
  if (static_cast<uint32_t>(entryOrExit) > 2) return false;  // negative codes fail too
  // A price is required: there is no market order. Infinite lots or prices are refused.
  if (!(lots > kLeastAmount) || !(price > kLeastAmount)) return false;
  if (!std::isfinite(lots) || !std::isfinite(price)) return false;
  const QXDataSource* source = FindDataSource(m_pData->CurrentData);
  CDataAdapter* adapter = sysfuncs::CurrentAdapter();
  if (source == nullptr || adapter == nullptr) return false;

  RoundPriceToTick(buyOrSell == kBuyCode, price);
  ClampPriceToLimits(price);

  Quill::ITradeOrder order;
  order.BrokerNo = m_nBrokerNo;
  order.AccountID = m_strAccountID;
  adapter->GetICodeID(static_cast<int>(source->MarketId), source->Symbol, order.CodeID);
  order.BuyOrSell = buyOrSell;
  order.EntryOrExit = sysfuncs::EntryOrExitToPlatform(entryOrExit);
  order.Lot = lots;
  if (CountsShares(order.CodeID)) {
    const int32_t unit =
        m_pData->CurrentData == 0 ? m_nContractUnit : GetIntProperty(sysfuncs::kPropContractUnit);
    order.Lot *= unit;
  }
  order.Price = price;
  order.Source = "A_SendOrder";
  order.Comment = "A_SendOrder#" + m_pData->FormulaName;

  const std::shared_ptr<const SysFuncsPlatform> services = sysfuncs::PlatformServices();
  return services->ShowConfirmOrder && services->ShowConfirmOrder(&order, 0, 0) != 0;
}

bool SFImpl::DeleteOrder(const std::string& contractNo) {
  std::vector<Quill::ITradeOrder> list;
  if (!FetchOpenOrderList(list)) return false;
  for (const Quill::ITradeOrder& order : list) {
    if (contractNo.empty() || order.ContractNo == contractNo) CancelOneOrder(order.ContractNo);
  }
  // Only whether the list could be read is reported, not what the cancellations did.
  return true;
}

void SFImpl::CancelOneOrder(const std::string& contractNo) const {
  if (contractNo.empty()) return;
  Quill::ICodeID codeId;
  if (!CurrentCodeID(codeId)) return;
  sysfuncs::CurrentAdapter()->CancelOrder(m_nBrokerNo, m_strAccountID, codeId, contractNo);
}
