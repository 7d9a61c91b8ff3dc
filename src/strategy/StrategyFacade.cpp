// Signal orders, position and trade statistics, and portfolio statistics: one-line forwards.
#include "sysfuncs/SFImpl.h"
#include "sysfuncs/SystemFuncs.h"

#include "strategy/LedgerStatistics.h"
#include "strategy/PortfolioStatistics.h"

namespace s = sysfuncs;

// --- Signal orders.
bool CSystemFuncs::Buy(double lots, double price) {
  return m_pImpl->Buy(lots, price, kOriginFormula);
}
bool CSystemFuncs::Sell(double lots, double price) {
  return m_pImpl->Sell(lots, price, kOriginFormula);
}
bool CSystemFuncs::SellShort(double lots, double price) {
  return m_pImpl->SellShort(lots, price, kOriginFormula);
}
bool CSystemFuncs::BuyToCover(double lots, double price) {
  return m_pImpl->BuyToCover(lots, price, kOriginFormula);
}

// --- Position and trade statistics of the current series.
double CSystemFuncs::CurrentContracts() { return s::CurrentContracts(m_pImpl->CurrentLedger()); }
int32_t CSystemFuncs::CurrentEntries() { return s::CurrentEntries(m_pImpl->CurrentLedger()); }
int32_t CSystemFuncs::EntryDate() { return s::EntryDate(m_pImpl->CurrentSeries()); }
double CSystemFuncs::EntryTime() { return s::EntryTime(m_pImpl->CurrentSeries()); }
double CSystemFuncs::EntryPrice() { return s::EntryPrice(m_pImpl->CurrentLedger()); }
int32_t CSystemFuncs::LastEntryDate() { return s::LastEntryDate(m_pImpl->CurrentSeries()); }
double CSystemFuncs::LastEntryTime() { return s::LastEntryTime(m_pImpl->CurrentSeries()); }
double CSystemFuncs::LastEntryPrice() { return s::LastEntryPrice(m_pImpl->CurrentLedger()); }
int32_t CSystemFuncs::ExitDate() { return s::ExitDate(m_pImpl->CurrentSeries()); }
double CSystemFuncs::ExitTime() { return s::ExitTime(m_pImpl->CurrentSeries()); }
double CSystemFuncs::ExitPrice() { return s::ExitPrice(m_pImpl->CurrentLedger()); }
double CSystemFuncs::AvgEntryPrice() { return s::AvgEntryPrice(m_pImpl->CurrentLedger()); }
int32_t CSystemFuncs::BarsSinceEntry() { return s::BarsSinceEntry(m_pImpl->CurrentSeries()); }
int32_t CSystemFuncs::BarsSinceLastEntry() {
  return s::BarsSinceLastEntry(m_pImpl->CurrentSeries());
}
int32_t CSystemFuncs::BarsSinceExit() { return s::BarsSinceExit(m_pImpl->CurrentSeries()); }
double CSystemFuncs::ContractProfit() { return s::ContractProfit(m_pImpl->CurrentSeries()); }
double CSystemFuncs::PositionProfit() { return s::PositionProfit(m_pImpl->CurrentSeries()); }
double CSystemFuncs::MaxPositionProfit() { return s::MaxPositionProfit(m_pImpl->CurrentSeries()); }
double CSystemFuncs::MaxPositionLoss() { return s::MaxPositionLoss(m_pImpl->CurrentSeries()); }
double CSystemFuncs::MaxContracts() { return s::MaxContracts(m_pImpl->CurrentLedger().Stats); }
double CSystemFuncs::MaxContractsHeld() {
  return s::MaxContractsHeld(m_pImpl->CurrentLedger().Stats);
}
int32_t CSystemFuncs::MaxEntries() { return s::MaxEntries(m_pImpl->CurrentLedger().Stats); }
int32_t CSystemFuncs::NumWinTrades() { return s::NumWinTrades(m_pImpl->CurrentLedger().Stats); }
int32_t CSystemFuncs::NumLosTrades() { return s::NumLosTrades(m_pImpl->CurrentLedger().Stats); }
int32_t CSystemFuncs::NumEvenTrades() { return s::NumEvenTrades(m_pImpl->CurrentLedger().Stats); }
int32_t CSystemFuncs::TotalTrades() { return s::TotalTrades(m_pImpl->CurrentLedger().Stats); }
double CSystemFuncs::PercentProfit() { return s::PercentProfit(m_pImpl->CurrentLedger().Stats); }
int32_t CSystemFuncs::AvgBarsWinTrade() {
  return s::AvgBarsWinTrade(m_pImpl->CurrentLedger().Stats);
}
int32_t CSystemFuncs::AvgBarsLosTrade() {
  return s::AvgBarsLosTrade(m_pImpl->CurrentLedger().Stats);
}
int32_t CSystemFuncs::AvgBarsEvenTrade() {
  return s::AvgBarsEvenTrade(m_pImpl->CurrentLedger().Stats);
}
int32_t CSystemFuncs::TotalBarsWinTrades() {
  return s::TotalBarsWinTrades(m_pImpl->CurrentLedger().Stats);
}
int32_t CSystemFuncs::TotalBarsLosTrades() {
  return s::TotalBarsLosTrades(m_pImpl->CurrentLedger().Stats);
}
int32_t CSystemFuncs::TotalBarsEvenTrades() {
  return s::TotalBarsEvenTrades(m_pImpl->CurrentLedger().Stats);
}
double CSystemFuncs::LargestWinTrade() {
  return s::LargestWinTrade(m_pImpl->CurrentLedger().Stats);
}
double CSystemFuncs::LargestLosTrade() {
  return s::LargestLosTrade(m_pImpl->CurrentLedger().Stats);
}
double CSystemFuncs::GrossProfit() { return s::GrossProfit(m_pImpl->CurrentLedger().Stats); }
double CSystemFuncs::GrossLoss() { return s::GrossLoss(m_pImpl->CurrentLedger().Stats); }
double CSystemFuncs::NetProfit() { return s::NetProfit(m_pImpl->CurrentLedger().Stats); }
int32_t CSystemFuncs::MaxConsecWinners() {
  return s::MaxConsecWinners(m_pImpl->CurrentLedger().Stats);
}
int32_t CSystemFuncs::MaxConsecLosers() {
  return s::MaxConsecLosers(m_pImpl->CurrentLedger().Stats);
}

// --- Portfolio statistics over every series.
double CSystemFuncs::Portfolio_InitCapital() { return m_pData->InitCapital; }
double CSystemFuncs::Portfolio_CurrentCapital() { return m_pImpl->PortfolioCurrentCapital(); }
double CSystemFuncs::Portfolio_UsedMargin() { return m_pImpl->PortfolioUsedMargin(); }
double CSystemFuncs::Portfolio_PositionProfit() { return m_pImpl->PortfolioPositionProfit(); }
double CSystemFuncs::Portfolio_CurrentEquity() {
  return m_pImpl->SharedAccount()->Capital + Portfolio_PositionProfit();
}
double CSystemFuncs::Portfolio_TotalProfit() {
  return Portfolio_PositionProfit() + m_pImpl->SharedAccount()->Capital - m_pData->InitCapital;
}
double CSystemFuncs::Portfolio_GrossProfit() {
  return s::GrossProfit(m_pImpl->SharedAccount()->Stats);
}
double CSystemFuncs::Portfolio_GrossLoss() { return s::GrossLoss(m_pImpl->SharedAccount()->Stats); }
double CSystemFuncs::Portfolio_NetProfit() { return s::NetProfit(m_pImpl->SharedAccount()->Stats); }
int32_t CSystemFuncs::Portfolio_NumWinTrades() {
  return s::NumWinTrades(m_pImpl->SharedAccount()->Stats);
}
int32_t CSystemFuncs::Portfolio_NumLossTrades() {
  return s::NumLosTrades(m_pImpl->SharedAccount()->Stats);
}
int32_t CSystemFuncs::Portfolio_TotalTrades() {
  return s::TotalTrades(m_pImpl->SharedAccount()->Stats);
}
double CSystemFuncs::Portfolio_PercentProfit() {
  return s::PortfolioPercentProfit(m_pImpl->SharedAccount()->Stats);
}
int32_t CSystemFuncs::Portfolio_CurrentEntries() { return m_pImpl->PortfolioCurrentEntries(); }
double CSystemFuncs::Portfolio_MaxDrawDown() { return m_pImpl->PortfolioMaxDrawDown(); }
double CSystemFuncs::Portfolio_MaxDrawDownRatio() { return m_pImpl->PortfolioMaxDrawDownRatio(); }
