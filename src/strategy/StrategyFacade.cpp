// Signal orders, position and trade statistics, and portfolio statistics.
//
// Not built yet: every function answers its invalid value.
#include "sysfuncs/SystemFuncs.h"

using sysfuncs::kInvalidInteger;
using sysfuncs::kInvalidNumber;

bool CSystemFuncs::Buy(double /*lots*/, double /*price*/) { return false; }
bool CSystemFuncs::Sell(double /*lots*/, double /*price*/) { return false; }
bool CSystemFuncs::SellShort(double /*lots*/, double /*price*/) { return false; }
bool CSystemFuncs::BuyToCover(double /*lots*/, double /*price*/) { return false; }
int32_t CSystemFuncs::MarketPosition() { return kInvalidInteger; }
double CSystemFuncs::CurrentContracts() { return kInvalidNumber; }
int32_t CSystemFuncs::CurrentEntries() { return kInvalidInteger; }
int32_t CSystemFuncs::EntryDate() { return kInvalidInteger; }
double CSystemFuncs::EntryTime() { return kInvalidNumber; }
double CSystemFuncs::EntryPrice() { return kInvalidNumber; }
int32_t CSystemFuncs::LastEntryDate() { return kInvalidInteger; }
double CSystemFuncs::LastEntryTime() { return kInvalidNumber; }
double CSystemFuncs::LastEntryPrice() { return kInvalidNumber; }
int32_t CSystemFuncs::ExitDate() { return kInvalidInteger; }
double CSystemFuncs::ExitTime() { return kInvalidNumber; }
double CSystemFuncs::ExitPrice() { return kInvalidNumber; }
double CSystemFuncs::AvgEntryPrice() { return kInvalidNumber; }
int32_t CSystemFuncs::BarsSinceEntry() { return kInvalidInteger; }
int32_t CSystemFuncs::BarsSinceLastEntry() { return kInvalidInteger; }
int32_t CSystemFuncs::BarsSinceExit() { return kInvalidInteger; }
double CSystemFuncs::ContractProfit() { return kInvalidNumber; }
double CSystemFuncs::PositionProfit() { return kInvalidNumber; }
double CSystemFuncs::MaxPositionProfit() { return kInvalidNumber; }
double CSystemFuncs::MaxPositionLoss() { return kInvalidNumber; }
double CSystemFuncs::MaxContracts() { return kInvalidNumber; }
double CSystemFuncs::MaxContractsHeld() { return kInvalidNumber; }
int32_t CSystemFuncs::MaxEntries() { return kInvalidInteger; }
int32_t CSystemFuncs::NumWinTrades() { return kInvalidInteger; }
int32_t CSystemFuncs::NumLosTrades() { return kInvalidInteger; }
int32_t CSystemFuncs::NumEvenTrades() { return kInvalidInteger; }
int32_t CSystemFuncs::TotalTrades() { return kInvalidInteger; }
double CSystemFuncs::PercentProfit() { return kInvalidNumber; }
int32_t CSystemFuncs::AvgBarsWinTrade() { return kInvalidInteger; }
int32_t CSystemFuncs::AvgBarsLosTrade() { return kInvalidInteger; }
int32_t CSystemFuncs::AvgBarsEvenTrade() { return kInvalidInteger; }
int32_t CSystemFuncs::TotalBarsWinTrades() { return kInvalidInteger; }
int32_t CSystemFuncs::TotalBarsLosTrades() { return kInvalidInteger; }
int32_t CSystemFuncs::TotalBarsEvenTrades() { return kInvalidInteger; }
double CSystemFuncs::LargestWinTrade() { return kInvalidNumber; }
double CSystemFuncs::LargestLosTrade() { return kInvalidNumber; }
double CSystemFuncs::GrossProfit() { return kInvalidNumber; }
double CSystemFuncs::GrossLoss() { return kInvalidNumber; }
double CSystemFuncs::NetProfit() { return kInvalidNumber; }
int32_t CSystemFuncs::MaxConsecWinners() { return kInvalidInteger; }
int32_t CSystemFuncs::MaxConsecLosers() { return kInvalidInteger; }
double CSystemFuncs::Portfolio_InitCapital() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_CurrentCapital() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_UsedMargin() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_PositionProfit() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_CurrentEquity() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_TotalProfit() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_GrossProfit() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_GrossLoss() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_NetProfit() { return kInvalidNumber; }
int32_t CSystemFuncs::Portfolio_NumWinTrades() { return kInvalidInteger; }
int32_t CSystemFuncs::Portfolio_NumLossTrades() { return kInvalidInteger; }
int32_t CSystemFuncs::Portfolio_TotalTrades() { return kInvalidInteger; }
double CSystemFuncs::Portfolio_PercentProfit() { return kInvalidNumber; }
int32_t CSystemFuncs::Portfolio_CurrentEntries() { return kInvalidInteger; }
double CSystemFuncs::Portfolio_MaxDrawDown() { return kInvalidNumber; }
double CSystemFuncs::Portfolio_MaxDrawDownRatio() { return kInvalidNumber; }
