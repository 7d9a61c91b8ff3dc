// The platform's data and trade adapter and the records it exchanges with the library.
//
// A host derives from CDataAdapter and overrides the operations it can serve; every default
// answers "no data" or "failed", so the library falls back to its documented invalid values.
#ifndef SYSFUNCS_DATA_ADAPTER_H_
#define SYSFUNCS_DATA_ADAPTER_H_

#include "sysfuncs/Module.h"

#include <cstdint>
#include <string>
#include <vector>

// Key of a symbol in every platform look-up: market number and code.
struct tagSymbol {
  uint16_t MarketId = 0;
  // The symbol code, zero-terminated; codes of 32 characters or more are not supported.
  char Code[32] = {};
};

namespace Quill {

// Contract properties of one symbol, filled by CDataAdapter::GetSymbolProperty.
struct ICodeProperty {
  int32_t MarketId = 0;        // market number, looked up in the exchange table
  uint32_t OrderFlags = 0;     // bit 0 market orders allowed, bit 1 stop orders allowed
  uint32_t TradeFlags = 0;     // bit 2 or bit 3 set: short selling allowed
  bool Tradable = false;       // the symbol can be traded at all
  std::string CurrencyName;    // e.g. the currency's display name
  std::string CurrencySymbol;  // e.g. "¥"
  std::string ExpiryDate;      // "YYYY/MM/DD" or "YYYY-MM-DD[ hh:mm:ss]"; empty when none
  int32_t MaxSingleTradeSize = 0;
  int32_t MinMove = 0;      // minimum move in price-scale units
  float PriceScale = 0.0f;  // price of one price-scale unit
  std::string SymbolName;   // display name
  std::string SecondName;   // a second name text of the symbol
  int32_t Category = 0;     // symbol category code
  int32_t BidAskSize = 0;
  int32_t ContractUnit = 0;      // units (shares, tons, ...) per lot
  float BigPointValue = 0.0f;    // money per unit of price per contract unit
  int32_t MarginKind = 0;        // 1 to 5, the money rule of the contract
  std::string RelativeSymbol;    // related symbol code
  std::string Sessions;          // trading sessions, 12 characters each: "HH:MM-HH:MM,"
  std::string OptionDescriptor;  // "OT:C|OS:A|SP:3500|..." for options, empty otherwise
};

// One futures rollover, as GetFutureRollover reports it.
struct IFutureRolloverValue {
  int64_t Time = 0;  // seconds since 1970-01-01 UTC
  std::string Text;  // carried along, not interpreted by the library
  double Value1 = 0.0;
  double Value2 = 0.0;
};

// One level of the order book, best level first.
struct DepthLevel {
  double BidPrice = 0.0;
  double BidVolume = 0.0;
  double AskPrice = 0.0;
  double AskVolume = 0.0;
};

// A real-time quote snapshot, filled by GetMarketQuote.
struct ITickDeepLevel {
  int64_t TimeStamp = 0;  // milliseconds since 1970-01-01 UTC
  double PreSettlePrice = 0.0;
  double PreClosePrice = 0.0;
  double OpenPrice = 0.0;
  double LastPrice = 0.0;
  std::vector<DepthLevel> DepthLevels;
  double HighPrice = 0.0;
  double LowPrice = 0.0;
  double TotalVolume = 0.0;
  double TurnOver = 0.0;
  double PreOpenInt = 0.0;
  double OpenInt = 0.0;
  double AvgPrice = 0.0;
  double LastVolume = 0.0;
  double ClosePrice = 0.0;
  double UpperLimit = 0.0;
  double LowerLimit = 0.0;
  double InsideVolume = 0.0;
  double OutsideVolume = 0.0;
  double TodayExitVolume = 0.0;
  double TodayEntryVolume = 0.0;
  double TickChange = 0.0;
  // Four 2-bit direction flags (1 up, 2 down): bits 0-1 last price, 2-3 bid, 4-5 ask, 6-7 open
  // interest.
  uint8_t ChangeFlags = 0;
};

// Summary of a trading account, filled by GetAccountSummary.
struct ITradeAcctSummary {
  double PreviousEquity = 0.0;
  double ProfitLoss = 0.0;
  double CurrentEquity = 0.0;
  double FreeMargin = 0.0;
  double TotalFreeze = 0.0;
  double TotalMargin = 0.0;
  double TodayDeposit = 0.0;
  double TodayDrawing = 0.0;
};

// The platform's identity of an instrument: filled by GetICodeID and handed back to the adapter
// unchanged. The library reads MarketKind and CodeKind only.
struct ICodeID {
  int32_t MarketKind = 0;
  int32_t CodeKind = 0;
  int32_t MarketId = 0;
  std::string Code;
};

// Position of an account in one instrument, filled by GetPosition.
struct ITradePosition {
  int64_t BuyPosition = 0;
  int64_t TodayBuyPosition = 0;
  double BuyAvgPrice = 0.0;
  double BuyProfitLoss = 0.0;
  int64_t SellPosition = 0;
  int64_t TodaySellPosition = 0;
  double SellAvgPrice = 0.0;
  double SellProfitLoss = 0.0;
  int64_t TotalPosition = 0;
  double TotalAvgPrice = 0.0;
};

// A broker order: listed by GetOrders and GetOpenOrders, and built by the library for the
// trading front end when a formula sends a live order.
struct ITradeOrder {
  int32_t BrokerNo = 0;   // account number: the broker number of the bound account
  std::string AccountID;  // account text
  ICodeID CodeID;
  std::string Source;  // originating function
  std::string Comment;
  std::string ContractNo;  // the broker's order number
  int32_t Status = 0;      // 1 sending, 2 reported, 3 rejected, 4 partly filled, 5 filled,
                           // 6 partly filled and rest cancelled, 7 cancelled
  int64_t TimeStamp = 0;   // milliseconds since 1970-01-01 UTC
  double Lot = 0.0;
  int64_t FilledLot = 0;
  double FilledPrice = 0.0;
  double Price = 0.0;
  int32_t BuyOrSell = 0;    // 1 buy, 2 sell
  int32_t EntryOrExit = 0;  // 1 open, 4 close, 5 close today, 7 close (sent by the library)
};

}  // namespace Quill

// The platform's data and trade adapter. Operations answering int return non-zero on success.
// The library calls it on the formula's evaluation thread.
class SYSFUNCS_API CDataAdapter {
 public:
  virtual ~CDataAdapter();

  // Contract properties of a symbol; false when the platform does not know it.
  virtual bool GetSymbolProperty(const tagSymbol& symbol, Quill::ICodeProperty& property);

  // Rollovers of a futures symbol between two bar times (milliseconds since 1970 UTC), oldest
  // first; false when there are none to report.
  virtual bool GetFutureRollover(const tagSymbol& symbol, int64_t beginTime, int64_t endTime,
                                 int32_t flag, std::vector<Quill::IFutureRolloverValue>& values);

  virtual int GetMarketQuote(const tagSymbol& symbol, Quill::ITickDeepLevel& quote);

  virtual void GetICodeID(const tagSymbol& symbol, Quill::ICodeID& codeId);
  virtual void GetICodeID(int marketId, const std::string& code, Quill::ICodeID& codeId);

  virtual int GetAccountSummary(int brokerNo, const std::string& accountId,
                                Quill::ITradeAcctSummary& summary);
  virtual int GetPosition(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                          Quill::ITradePosition& position);
  virtual int GetOrders(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                        std::vector<Quill::ITradeOrder>& orders);
  virtual int GetOpenOrders(int brokerNo, const std::string& accountId,
                            const Quill::ICodeID& codeId, std::vector<Quill::ITradeOrder>& orders);
  virtual int CancelOrder(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                          const std::string& contractNo);

  // A value of the platform's configuration store; false (value untouched) when there is none.
  virtual bool GetConfigFileProperty(const std::string& store, const std::string& section,
                                     const std::string& key, std::string& value);
  virtual void SetConfigFileProperty(const std::string& store, const std::string& section,
                                     const std::string& key, const std::string& value);
};

#endif  // SYSFUNCS_DATA_ADAPTER_H_
