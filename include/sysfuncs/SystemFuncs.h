// The system functions of the formula language.
//
// The host creates one CSystemFuncs per running formula instance over the instance's data
// object, moves CurrentData and CurrentBar itself, runs the formula body (which calls these
// functions) and calls BarCheckout once after the body has run on each bar. No function raises
// an error to the formula: refusal and missing data show only in the result (false, the invalid
// number 1.7976931348623157e308, the invalid integer 2147483647, an empty text or "N/A").
#ifndef SYSFUNCS_SYSTEM_FUNCS_H_
#define SYSFUNCS_SYSTEM_FUNCS_H_

#include "sysfuncs/HostData.h"
#include "sysfuncs/Module.h"

#include <cstdint>
#include <string>

class SFImpl;

// Abstract base of the facade.
class SYSFUNCS_API CSysFuncBase {
 public:
  CSysFuncBase() = default;
  CSysFuncBase(const CSysFuncBase&) = default;
  CSysFuncBase& operator=(const CSysFuncBase&) = default;
  virtual ~CSysFuncBase();

  // Per-bar bookkeeping of the simulated strategy; called by the host once after the formula
  // body has run on a bar.
  virtual void BarCheckout() = 0;

 protected:
  CQXBaseData* m_pBaseData = nullptr;  // not owned
};

class SYSFUNCS_API CSystemFuncs : public CSysFuncBase {
 public:
  // Attaches to the host's data object, which must outlive this object. At CurrentBar 0 the
  // strategy state is reset; at CurrentBar >= 1 it is rolled back to the start of that bar, so
  // the bar is evaluated anew.
  explicit CSystemFuncs(CQXBaseData* data);
  // One object per formula instance: it owns its implementation object.
  CSystemFuncs(const CSystemFuncs&) = delete;
  CSystemFuncs& operator=(const CSystemFuncs&) = delete;
  ~CSystemFuncs() override;

  void BarCheckout() override;

  // --- Bar data: the current bar of the current data source, read without any bounds check;
  // HistoryDataExist tells whether that bar exists. The plain fields are read inline, in the
  // host's own code: a formula reads them on every bar.
  double Open() { return HostBar().Open; }
  double O() { return Open(); }
  double High();  // on a packed tick series: the float in the field's upper 32 bits
  double H();
  double Low();  // on a packed tick series: the float in the field's upper 32 bits
  double L();
  double Close() { return HostBar().Close; }
  double C() { return Close(); }
  double Vol() { return HostBar().Vol; }
  double V() { return Vol(); }
  double OpenInt() { return HostBar().OpenInt; }
  int32_t Date();  // YYYYMMDD, local time
  int32_t D();
  double Time();  // 0.HHMMSS, local time
  double T();
  int32_t Year();
  int32_t Month();  // 1 to 12
  int32_t Day();    // 1 to 31
  int32_t Hour();
  int32_t Minute();
  int32_t Second();
  int32_t MilliSecond();  // the bar time modulo 1000, with the sign of the time
  int32_t Weekday();      // 0 Sunday to 6 Saturday
  int32_t BarStatus();    // 0 first bar, 2 last bar, 1 in between
  bool HistoryDataExist();
  int32_t BarCount();
  int32_t DataSourceSize();
  int32_t MaxBarsBack();
  std::string Symbol();
  std::string GetUserID();

  // --- Contract properties of the current data source.
  int32_t BarInterval();
  int32_t BarType();
  bool CanMarketOrder();
  bool CanShortTrade();
  bool CanStopOrder();
  bool CanTrade();
  double ContractSize();
  std::string CurrencyName();
  std::string CurrencySymbol();
  std::string ExchangeName();
  std::string ExpiredDate();
  double InitialMargin();
  double MaintenanceMargin();
  int32_t MaxSingleTradeSize();
  int32_t MinMove();
  double PriceScale();
  std::string SymbolName();
  std::string SymbolType();
  int32_t Category();
  int32_t BidAskSize();
  int32_t ContractUnit();
  double BigPointValue();
  double MarginRatio();
  std::string RelativeSymbol();
  int32_t OptionType();   // 0 put, 1 call
  int32_t OptionStyle();  // 1 American, 0 European
  double StrikePrice();

  // --- Trading sessions and the days to expiry.
  int32_t GetSessionCount();
  double GetSessionStartTime(int32_t index);  // 0.HHMM
  double GetSessionEndTime(int32_t index);    // 0.HHMM
  int32_t TradingDayLeft();                   // calendar days, today counted as 1

  // --- Signal orders, executed at once on the current bar. Lots 0: default lots for an entry,
  // the whole position for an exit. Price 0: market order at the bar's Close. Lots or a price
  // that is the invalid number, NaN or infinite is refused (false, nothing changes).
  bool Buy(double lots, double price);
  bool Sell(double lots, double price);
  bool SellShort(double lots, double price);
  bool BuyToCover(double lots, double price);

  // --- Position and trade statistics of the current data series.
  int32_t MarketPosition() { return m_pData->Ledgers[m_pData->CurrentData].Position(); }
  double CurrentContracts();
  int32_t CurrentEntries();
  int32_t EntryDate();
  double EntryTime();
  double EntryPrice();
  int32_t LastEntryDate();
  double LastEntryTime();
  double LastEntryPrice();
  int32_t ExitDate();
  double ExitTime();
  double ExitPrice();
  double AvgEntryPrice();
  int32_t BarsSinceEntry();
  int32_t BarsSinceLastEntry();
  int32_t BarsSinceExit();
  double ContractProfit();
  double PositionProfit();
  double MaxPositionProfit();
  double MaxPositionLoss();
  double MaxContracts();
  double MaxContractsHeld();
  int32_t MaxEntries();
  int32_t NumWinTrades();
  int32_t NumLosTrades();
  int32_t NumEvenTrades();
  int32_t TotalTrades();
  double PercentProfit();
  int32_t AvgBarsWinTrade();
  int32_t AvgBarsLosTrade();
  int32_t AvgBarsEvenTrade();
  int32_t TotalBarsWinTrades();
  int32_t TotalBarsLosTrades();
  int32_t TotalBarsEvenTrades();
  double LargestWinTrade();
  double LargestLosTrade();
  double GrossProfit();
  double GrossLoss();
  double NetProfit();
  int32_t MaxConsecWinners();
  int32_t MaxConsecLosers();

  // --- Portfolio statistics over every data series of the instance.
  double Portfolio_InitCapital();
  double Portfolio_CurrentCapital();
  double Portfolio_UsedMargin();
  double Portfolio_PositionProfit();
  double Portfolio_CurrentEquity();
  double Portfolio_TotalProfit();
  double Portfolio_GrossProfit();
  double Portfolio_GrossLoss();
  double Portfolio_NetProfit();
  int32_t Portfolio_NumWinTrades();
  int32_t Portfolio_NumLossTrades();
  int32_t Portfolio_TotalTrades();
  double Portfolio_PercentProfit();
  int32_t Portfolio_CurrentEntries();
  double Portfolio_MaxDrawDown();
  double Portfolio_MaxDrawDownRatio();

  // --- Real-time quote of the current data source, answered on the last bar.
  bool QuoteDataExist();
  double Q_Close();
  double Q_High();
  int32_t Q_LastDate();
  double Q_LastTime();
  double Q_LastVol();
  double Q_Low();
  double Q_Open();
  double Q_OpenInt();
  double Q_Oscillation();
  double Q_PriceChg();
  double Q_PriceChgRatio();
  double Q_TickChg();
  double Q_TotalVol();
  double Q_PreSettlePrice();
  double Q_PreOpenInt();
  double Q_AvgPrice();
  double Q_TurnOver();
  double Q_HisHigh();
  double Q_HisLow();
  double Q_UpperLimit();
  double Q_LowerLimit();
  double Q_InsideVol();
  double Q_OutsideVol();
  double Q_TodayEntryVol();
  double Q_TodayExitVol();
  double Q_Last();
  int32_t Q_LastFlag();
  int32_t Q_BidPriceFlag();
  int32_t Q_AskPriceFlag();
  int32_t Q_OpenIntFlag();
  double Q_BidPrice(int32_t level);
  double Q_BidVol(int32_t level);
  double Q_AskPrice(int32_t level);
  double Q_AskVol(int32_t level);

  // --- The bound trading account and its position in the current symbol.
  bool AccountDataExist();
  std::string A_BrokerID();
  std::string A_AccountID();
  double A_PreviousEquity();
  double A_ProfitLoss();
  double A_CurrentEquity();
  double A_FreeMargin();
  double A_TotalFreeze();
  double A_TotalMargin();
  double A_TodayDeposit();
  double A_TodayDrawing();
  double A_BuyPosition();
  double A_BuyAvgPrice();
  double A_BuyProfitLoss();
  double A_TodayBuyPosition();
  double A_SellPosition();
  double A_SellAvgPrice();
  double A_SellProfitLoss();
  double A_TodaySellPosition();
  double A_TotalPosition();
  double A_TotalAvgPrice();
  double A_PositionProfitLoss();

  // --- Broker orders of the current symbol. Indexes are 1-based; index 0 is the last order of
  // the list, or the newest open order.
  int32_t A_GetOrderCount();
  int32_t A_GetOpenOrderCount();
  int32_t A_GetLastOrderIndex(int32_t buyOrSell, int32_t entryOrExit);
  int32_t A_GetLastOpenOrderIndex(int32_t buyOrSell, int32_t entryOrExit);
  int32_t A_OrderStatus(int32_t index);
  int32_t A_OpenOrderStatus(int32_t index);
  std::string A_OrderContractNo(int32_t index);
  std::string A_OpenOrderContractNo(int32_t index);
  int32_t A_OrderBuyOrSell(int32_t index);
  int32_t A_OpenOrderBuyOrSell(int32_t index);
  int32_t A_OrderEntryOrExit(int32_t index);
  int32_t A_OpenOrderEntryOrExit(int32_t index);
  double A_OrderTime(int32_t index);
  double A_OpenOrderTime(int32_t index);
  double A_OrderLot(int32_t index);
  double A_OpenOrderLot(int32_t index);
  double A_OrderPrice(int32_t index);
  double A_OpenOrderPrice(int32_t index);
  double A_OrderFilledLot(int32_t index);
  double A_OpenOrderFilledLot(int32_t index);
  double A_OrderFilledPrice(int32_t index);
  double A_OpenOrderFilledPrice(int32_t index);
  double A_OrderCanceledLot(int32_t index);
  std::string A_OrderComment(int32_t index);
  std::string A_OpenOrderComment(int32_t index);

  // --- Live orders, sent through the trading front end on the last bar. Lots and a price are
  // required (above 0.0001) and finite.
  bool A_SendOrder(int32_t buyOrSell, int32_t entryOrExit, double lots, double price,
                   double reserved1 = 0.0, double reserved2 = 0.0);
  bool A_DeleteOrder(const std::string& contractNo);

  // --- Stock picking.
  int32_t StockPoolSize();
  void SetSPSortValue(int32_t index, double value, bool flag);
  int32_t GetSPSortRanking(int32_t index);
  bool StockPickingCheckPoint(int32_t signal, bool flag);

  // --- Plots. barsAgo addresses the bar CurrentBar - barsAgo; color -1 is no colour. A NaN or
  // infinite value plots as the invalid number (nothing drawn); such a locator is no locator.
  bool PlotBool(const std::string& name, bool value, double locator = 0.0, int32_t color = -1,
                int32_t barsAgo = 0);
  double PlotNumeric(const std::string& name, double value, double locator = 0.0,
                     int32_t color = -1, int32_t barsAgo = 0);
  std::string PlotString(const std::string& name, const std::string& text, double locator = 0.0,
                         int32_t color = -1, int32_t barsAgo = 0);
  bool Unplot(const std::string& name, int32_t barsAgo = 0);

  // --- Alerts, commentary and sound.
  bool Alert(const std::string& text);
  bool AlertEnabled();
  bool Commentary(const std::string& text);
  bool PlayWavSound(const std::string& path);
  std::string FormulaName();

  // --- File output: lines reach their file through the message centre every 3 seconds.
  bool FileAppend(const std::string& file, const std::string& text);
  bool FileDelete(const std::string& file);

  // --- Global variables of the host data object.
  bool SetGlobalVar(int32_t index, double value);
  double GetGlobalVar(int32_t index);
  bool SetGlobalVar2(const std::string& name, double value);
  double GetGlobalVar2(const std::string& name);

  // --- Persistent profile strings.
  bool SetQXProfileString(const std::string& section, const std::string& key,
                          const std::string& value);
  std::string GetQXProfileString(const std::string& section, const std::string& key);
  bool SetQXProfileString2File(const std::string& file, const std::string& section,
                               const std::string& key, const std::string& value);
  std::string GetQXProfileString2File(const std::string& file, const std::string& section,
                                      const std::string& key);

 protected:
  const QXBar& HostBar() const {
    return (*m_pData->DataSources)[m_pData->CurrentData].Bars[m_pData->CurrentBar];
  }

  CQXBaseData* m_pData = nullptr;  // not owned; the same pointer as m_pBaseData
  SFImpl* m_pImpl = nullptr;       // owned
};

#endif  // SYSFUNCS_SYSTEM_FUNCS_H_
