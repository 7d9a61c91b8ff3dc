// The per-instance implementation object behind CSystemFuncs.
//
// SFImpl holds the state of one formula instance that is not the host's: the cached properties
// of the main data source, the quote and account value cache, the bound account's identity and
// the calendar cache of bar times. Each subsystem defines the operations it owns in its own
// folder; this header declares them in one place, section by section.
#ifndef SYSFUNCS_SYSFUNCS_SF_IMPL_H_
#define SYSFUNCS_SYSFUNCS_SF_IMPL_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/HostData.h"

#include "live/BrokerOrders.h"
#include "live/QuoteFields.h"
#include "live/ValueCache.h"
#include "strategy/LedgerStatistics.h"
#include "strategy/MoneyRules.h"
#include "strategy/SignalOrders.h"
#include "util/LocalCalendar.h"

#include <IceUtil/Shared.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class SFImpl : public IceUtil::Shared {
 public:
  // Attaches to the host's data object: takes references to its shared account and symbol
  // cache (creating them when the host has none), caches the properties and price limits of
  // data source 0, loads the rollover lists when the run starts at bar 0 and splits the bound
  // account's identity.
  explicit SFImpl(CQXBaseData* data);
  ~SFImpl() override;

  SFImpl(const SFImpl&) = delete;
  SFImpl& operator=(const SFImpl&) = delete;

  // --- Bars.
  // Local calendar fields of the current bar's time.
  sysfuncs::CalendarFields BarFields() {
    return m_calendar.Fields(sysfuncs::InstantSeconds(CurrentBarRecord().Time));
  }
  bool IsLastBar() const { return m_pData->CurrentBar == m_pData->BarCount - 1; }
  const QXDataSource& DataSource(int32_t dataIndex) const {
    return (*m_pData->DataSources)[dataIndex];
  }
  const QXBar& CurrentBarRecord() const {
    return DataSource(m_pData->CurrentData).Bars[m_pData->CurrentBar];
  }
  // Every series of the instance is a single-price series when the main one holds packed ticks.
  bool SinglePriceBars() const { return m_bTickPacked; }

  // --- Symbol properties (contract subsystem).
  // Fills `list` with the 33 properties of a data source; false when the adapter does not know
  // the symbol.
  bool GetSymbolPropertyList(int32_t dataIndex, SymbolPropertyList& list);
  // The cached list of a data source, loaded from the adapter when the cache has none; null when
  // the adapter does not know the symbol (the next call asks again).
  const SymbolPropertyList* ObtainSymbolPropertyList(int32_t dataIndex);
  // Entry `id` of the current data source's list, loading and caching the list when needed; the
  // invalid value of the type when the properties cannot be obtained.
  int32_t GetIntProperty(int32_t id);
  double GetDoubleProperty(int32_t id);
  bool GetBoolProperty(int32_t id);
  std::string GetStringProperty(int32_t id);
  // Loads the rollover lists of the data sources marked "QXRollover".
  void LoadRolloverLists();
  // Start or end (0.HHMM) of trading session `index` of the current data source; the invalid
  // number past the last session.
  double GetSessionTime(int32_t index, bool end);
  // Calendar days until the current data source's contract expires, today counted as 1.
  int32_t TradingDayLeft();

  // --- Live market and account access (live subsystem). Answers come only while the newest
  // bar is evaluated (a few day-constant quote fields also on earlier bars of its trading day);
  // everywhere else the invalid value, without asking the adapter.
  // Quotes. Values are memoised in m_valueCache under "Data<d>.<name>".
  bool QuoteDataExist();
  bool QuoteFieldValid(int32_t dataIndex, int32_t field);
  double GetQuoteReal(int32_t field, std::string_view name);
  double FetchQuoteReal(int32_t dataIndex, int32_t field, std::string_view key);
  int32_t GetQuoteInteger(int32_t field, std::string_view name);
  int32_t FetchQuoteInteger(int32_t dataIndex, int32_t field, std::string_view key);
  // The field's own name is the cache key's tail.
  double GetQuoteReal(int32_t field);
  int32_t GetQuoteInteger(int32_t field);
  double GetDepthValue(int32_t level, int32_t side);
  // A data source of the host; null for an index it lacks.
  const QXDataSource* FindDataSource(int32_t dataIndex) const;
  // Fills `key` with the symbol of a data source; false for a data source the host lacks.
  bool MakeSymbolKey(int32_t dataIndex, tagSymbol& key) const;
  // One snapshot of a data source's quote; false when it cannot be had.
  bool FetchQuote(int32_t dataIndex, Quill::ITickDeepLevel& quote) const;
  // The platform identity of the current data source's symbol; false (nothing asked) without an
  // adapter or for a data source the host lacks.
  bool CurrentCodeID(Quill::ICodeID& codeId) const;

  // Account and position. The summary is memoised under the function's name, the position
  // under "Data<d>.<name>".
  bool AccountBound() const { return !m_pData->AccountID.empty() && !m_pData->BrokerID.empty(); }
  bool AccountDataExist() const { return IsLastBar() && AccountBound(); }
  double GetAccountValue(int32_t number);
  double GetPositionValue(int32_t number);

  // Broker orders of the current data source's symbol; false (no adapter call) off the newest
  // bar or without a bound account, and when the adapter fails.
  bool FetchOrderList(std::vector<Quill::ITradeOrder>& list) const;
  bool FetchOpenOrderList(std::vector<Quill::ITradeOrder>& list) const;
  bool FetchOrders(sysfuncs::OrderBook book, std::vector<Quill::ITradeOrder>& list) const;
  // The invalid integer when the list cannot be had.
  int32_t OrderCount(sysfuncs::OrderBook book) const;
  // 1-based position of the newest order of the given formula-language codes; the invalid
  // integer when none matches.
  int32_t LastOrderIndex(sysfuncs::OrderBook book, int32_t buyOrSell, int32_t entryOrExit) const;
  // A field (a row of the order field tables) of the order `index` selects; the invalid value of
  // the field's type when the list cannot be had or the index selects nothing.
  int32_t OrderInteger(sysfuncs::OrderBook book, int32_t index, int32_t field) const;
  double OrderReal(sysfuncs::OrderBook book, int32_t index, int32_t field) const;
  std::string OrderText(sysfuncs::OrderBook book, int32_t index, int32_t field) const;

  // Live orders, handed to the trading front end.
  bool SendOrder(int32_t buyOrSell, int32_t entryOrExit, double lots, double price);
  bool DeleteOrder(const std::string& contractNo);
  void CancelOneOrder(const std::string& contractNo) const;
  void RoundPriceToTick(bool isBuy, double& price);
  void ClampPriceToLimits(double& price);

  // Stock picking, recorded in the shared account by the current bar's time.
  int32_t StockPoolSize() const { return m_spStrategyAccount->PoolSize; }
  void SetSPSortValue(int32_t index, double value, bool flag);
  int32_t GetSPSortRanking(int32_t index) const;
  bool StockPickingCheckPoint(int32_t signal, bool flag);

  // --- Strategy state (strategy subsystem).
  // Per-bar bookkeeping after the formula body has run on the current bar.
  void BarCheckout();
  // Empties the saved order records and resets the strategy state to its start.
  void ResetStrategyState();
  // Rolls the state back to the start of the current bar, which is evaluated anew.
  void RollBackToCurrentBar();
  // Starts the account, every ledger and the equity curve over, as of CurrentBar.
  void ResetStrategy();
  // Grows the host's ledgers and cost settings to one per data source.
  void CoverEverySeries();

  // Signal orders on the current series, executed at once on the current bar; `origin` (an
  // OrderOrigin) is or-ed into the kinds of the records. True when the order (both legs of a
  // reversal) executed.
  bool Buy(double lots, double price, uint32_t origin);
  bool Sell(double lots, double price, uint32_t origin);
  bool SellShort(double lots, double price, uint32_t origin);
  bool BuyToCover(double lots, double price, uint32_t origin);
  // 1 long, -1 short, 0 flat: the position of the current series.
  int32_t MarketPosition() { return sysfuncs::MarketPosition(CurrentLedger()); }
  // Realised capital less the margin of every open position at its current bar's Open.
  double AvailableCapital();

  // Series as the order engine sees them. Data source 0 trades under the cached values above,
  // the others under their property lists.
  sysfuncs::ContractTerms TermsOf(int32_t dataIndex) {
    if (dataIndex == 0) return {m_nProp24, m_dContractSize, m_dPointValue, m_dProp26};
    return ListedTerms(dataIndex);
  }
  // Bar CurrentBar of a data source (its last bar when it has fewer).
  const QXBar& SeriesBar(int32_t dataIndex) const {
    static const QXBar kNoBar;
    const std::vector<QXBar>& bars = DataSource(dataIndex).Bars;
    // A negative CurrentBar wraps to a huge index: one comparison, on pointers, covers the usual
    // case.
    const auto bar = static_cast<size_t>(static_cast<uint32_t>(m_pData->CurrentBar));
    if (bars.data() + bar < bars.data() + bars.size()) [[likely]] {
      return bars.data()[bar];
    }
    return bars.empty() ? kNoBar : bars[SeriesBarIndex(dataIndex)];
  }
  // Index of that bar: CurrentBar, or the series' last bar when it has fewer bars (-1: none).
  int32_t SeriesBarIndex(int32_t dataIndex) const {
    const int32_t last = static_cast<int32_t>(DataSource(dataIndex).Bars.size()) - 1;
    return std::min(std::max(m_pData->CurrentBar, 0), last);
  }
  // The day's price limits of a data source; the invalid number where there is none.
  sysfuncs::PriceLimits DayPriceLimits(int32_t dataIndex);
  StrategyLedger& CurrentLedger() { return m_pData->Ledgers[m_pData->CurrentData]; }
  sysfuncs::SeriesView SeriesOf(int32_t dataIndex);
  sysfuncs::SeriesView CurrentSeries() { return SeriesOf(m_pData->CurrentData); }
  sysfuncs::OrderContext CurrentOrderContext();
  // A counted reference to the strategy account, held for the duration of a read.
  StrategyAccountPtr SharedAccount() const { return m_spStrategyAccount; }

  // Portfolio statistics that sum over the series.
  double PortfolioCurrentCapital();
  double PortfolioUsedMargin();
  double PortfolioPositionProfit();
  int32_t PortfolioCurrentEntries();
  double PortfolioMaxDrawDown();
  double PortfolioMaxDrawDownRatio();

  // Steps of the checkout. A bar with any of the rare steps (a reset, the last two bars,
  // rollovers, check points) takes them all in their order.
  void CheckOutUnusualBar();
  void RepositionRollovers();
  // Values the positions and records the bar's equity point, drawdown and orders.
  void RecordBar();
  void FollowCheckPoint();
  // The end of the run on the last bar.
  void SettleRun();

  // --- State.
  bool m_bTickPacked = false;      // data source 0 holds packed ticks: bar type 2, interval 0
  CQXBaseData* m_pData = nullptr;  // not owned
  StrategyAccountPtr m_spStrategyAccount;
  SymbolCachePtr m_spSymbolCache;

  // Properties of data source 0, taken once at construction; the initial values stand when the
  // adapter does not know the symbol.
  int32_t m_nProp24 = 4;  // margin kind
  int32_t m_nContractUnit = 1;
  double m_dBigPointValue = 1.0;
  double m_dContractSize = 1.0;
  int32_t m_nMinMove = 1;
  double m_dPriceScale = 1.0;
  double m_dProp26 = 1.0;      // tick size
  double m_dPointValue = 1.0;  // contract unit x big point value: the money value of one lot
  double m_dUpperLimit = sysfuncs::kInvalidNumber;  // the day's price limits; invalid: none
  double m_dLowerLimit = sysfuncs::kInvalidNumber;

  // Quote and account values, by key; inserted once, never replaced.
  sysfuncs::ValueCache m_valueCache;

  // The bound account, split from the host's "number|code" broker key at construction.
  int32_t m_nBrokerNo = 0;
  std::string m_strBrokerCode;
  std::string m_strAccountID;

  sysfuncs::LocalCalendar m_calendar;  // local calendar fields of bar times

 private:
  void CachePrimarySymbol();
  // A quote value through the cache; `slot` (kNoSlot: none) remembers the entry of its key.
  double QuoteReal(int32_t field, std::string_view name, size_t slot);
  int32_t QuoteInteger(int32_t field, std::string_view name, size_t slot);
  // The entry of a quote value, fetched when the cache has none; null when the fetch failed.
  const CachedValue* QuoteEntry(const sysfuncs::QuoteField& row, std::string_view name,
                                size_t slot);
  template <typename Result, typename Read>
  Result ReadOrder(sysfuncs::OrderBook book, int32_t index, Read read, Result invalid) const;
  // The contract terms of a series other than the main one, from its property list.
  sysfuncs::ContractTerms ListedTerms(int32_t dataIndex);
};

#endif  // SYSFUNCS_SYSFUNCS_SF_IMPL_H_
