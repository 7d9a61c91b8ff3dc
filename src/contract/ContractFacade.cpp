// Contract properties and sessions of the current data source.
#include "sysfuncs/SFImpl.h"
#include "sysfuncs/SystemFuncs.h"

#include "contract/PropertyNumbers.h"

using namespace sysfuncs;

int32_t CSystemFuncs::BarInterval() { return m_pImpl->GetIntProperty(kPropBarInterval); }
int32_t CSystemFuncs::BarType() { return m_pImpl->GetIntProperty(kPropBarType); }
bool CSystemFuncs::CanMarketOrder() { return m_pImpl->GetBoolProperty(kPropCanMarketOrder); }
bool CSystemFuncs::CanShortTrade() { return m_pImpl->GetBoolProperty(kPropCanShortTrade); }
bool CSystemFuncs::CanStopOrder() { return m_pImpl->GetBoolProperty(kPropCanStopOrder); }
bool CSystemFuncs::CanTrade() { return m_pImpl->GetBoolProperty(kPropCanTrade); }
std::string CSystemFuncs::CurrencyName() { return m_pImpl->GetStringProperty(kPropCurrencyName); }
std::string CSystemFuncs::CurrencySymbol() {
  return m_pImpl->GetStringProperty(kPropCurrencySymbol);
}
std::string CSystemFuncs::ExchangeName() { return m_pImpl->GetStringProperty(kPropExchangeName); }
std::string CSystemFuncs::ExpiredDate() { return m_pImpl->GetStringProperty(kPropExpiredDate); }
double CSystemFuncs::InitialMargin() { return m_pImpl->GetDoubleProperty(kPropInitialMargin); }
double CSystemFuncs::MaintenanceMargin() {
  return m_pImpl->GetDoubleProperty(kPropMaintenanceMargin);
}
int32_t CSystemFuncs::MaxSingleTradeSize() {
  return m_pImpl->GetIntProperty(kPropMaxSingleTradeSize);
}
std::string CSystemFuncs::SymbolName() { return m_pImpl->GetStringProperty(kPropSymbolName); }
std::string CSystemFuncs::SymbolType() { return m_pImpl->GetStringProperty(kPropSymbolType); }
int32_t CSystemFuncs::Category() { return m_pImpl->GetIntProperty(kPropCategory); }
int32_t CSystemFuncs::BidAskSize() { return m_pImpl->GetIntProperty(kPropBidAskSize); }
double CSystemFuncs::MarginRatio() { return m_pImpl->GetDoubleProperty(kPropMarginRatio); }
std::string CSystemFuncs::RelativeSymbol() {
  return m_pImpl->GetStringProperty(kPropRelativeSymbol);
}
int32_t CSystemFuncs::OptionType() { return m_pImpl->GetIntProperty(kPropOptionType); }
int32_t CSystemFuncs::OptionStyle() { return m_pImpl->GetIntProperty(kPropOptionStyle); }
double CSystemFuncs::StrikePrice() { return m_pImpl->GetDoubleProperty(kPropStrikePrice); }

// Data source 0 answers these five from the values cached at construction.
double CSystemFuncs::ContractSize() {
  if (m_pData->CurrentData == 0) return m_pImpl->m_dContractSize;
  return m_pImpl->GetDoubleProperty(kPropContractSize);
}
int32_t CSystemFuncs::MinMove() {
  if (m_pData->CurrentData == 0) return m_pImpl->m_nMinMove;
  return m_pImpl->GetIntProperty(kPropMinMove);
}
double CSystemFuncs::PriceScale() {
  if (m_pData->CurrentData == 0) return m_pImpl->m_dPriceScale;
  return m_pImpl->GetDoubleProperty(kPropPriceScale);
}
int32_t CSystemFuncs::ContractUnit() {
  if (m_pData->CurrentData == 0) return m_pImpl->m_nContractUnit;
  return m_pImpl->GetIntProperty(kPropContractUnit);
}
double CSystemFuncs::BigPointValue() {
  if (m_pData->CurrentData == 0) return m_pImpl->m_dBigPointValue;
  return m_pImpl->GetDoubleProperty(kPropBigPointValue);
}

int32_t CSystemFuncs::GetSessionCount() { return m_pImpl->GetIntProperty(kPropSessionCount); }
double CSystemFuncs::GetSessionStartTime(int32_t index) {
  return m_pImpl->GetSessionTime(index, false);
}
double CSystemFuncs::GetSessionEndTime(int32_t index) {
  return m_pImpl->GetSessionTime(index, true);
}
int32_t CSystemFuncs::TradingDayLeft() { return m_pImpl->TradingDayLeft(); }
