// The host's data object of one formula instance and every record the host shares with the
// library.
//
// The host owns CQXBaseData and everything in it; the library reads and writes its members but
// never frees them. The strategy account and the symbol cache are shared objects: the host holds
// one counted handle, each CSystemFuncs built over the data object holds another.
#ifndef SYSFUNCS_HOST_DATA_H_
#define SYSFUNCS_HOST_DATA_H_

#include <IceUtil/Handle.h>
#include <IceUtil/Shared.h>

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace sysfuncs {
// The formula language's invalid values: what a system function answers when it has no value.
inline constexpr double kInvalidNumber = 1.7976931348623157e308;  // the largest finite double
inline constexpr int32_t kInvalidInteger = 2147483647;
inline constexpr const char* kInvalidText = "N/A";  // plot, alert and profile texts
}  // namespace sysfuncs

// ---------------------------------------------------------------------------------------------
// Bars

// One bar. Time is milliseconds since 1970-01-01 00:00:00 UTC. On a packed tick series (bar
// type 2, interval 0) High and Low carry the best ask and bid: the upper 32 bits a
// single-precision price, the lower 32 bits a signed 32-bit volume.
struct QXBar {
  int64_t Time = 0;
  double Open = 0.0;
  double High = 0.0;
  double Low = 0.0;
  double Close = 0.0;
  double Vol = 0.0;
  double OpenInt = 0.0;
};
static_assert(sizeof(QXBar) == 56, "a bar is seven 8-byte fields");

// One bar series, oldest bar first.
struct QXDataSource {
  uint32_t MarketId = 0;
  std::string Symbol;
  uint32_t BarType = 0;      // 0 day, 1 minute, 2 second (2 with interval 0: packed ticks), ...
  uint32_t BarInterval = 0;  // period units per bar
  std::vector<QXBar> Bars;
};

// The host's auxiliary record of one data source.
struct SourceInfo {
  double MarginRatio = 0.0;
  std::string Name;  // "QXRollover" marks a series whose futures rollovers are loaded
};

// ---------------------------------------------------------------------------------------------
// Contract properties

// One entry of a symbol property list. Kind: 1 boolean, 4 double, 7 string, 10 integer.
struct SymbolPropertyItem {
  uint32_t Kind = 0;
  bool BoolValue = false;
  double DoubleValue = 0.0;
  std::string StringValue;
  int32_t IntValue = 0;
};

// The 33 properties of one data source, indexed by property number.
using SymbolPropertyList = std::vector<SymbolPropertyItem>;

// A futures rollover matched to the bar it falls in.
struct RolloverPoint {
  int64_t Time = 0;  // rollover time, milliseconds since 1970 UTC
  int32_t Bar = 0;   // the first bar stamped after the rollover
};

// Property lists and rollover lists per data source index, shared by the formula instances of a
// host. Both arrays grow on demand to the index + 1.
class SymbolCache : public IceUtil::Shared {
 public:
  std::vector<SymbolPropertyList> Properties;
  std::vector<std::vector<RolloverPoint>> Rollovers;
};
using SymbolCachePtr = IceUtil::Handle<SymbolCache>;

// ---------------------------------------------------------------------------------------------
// Strategy orders, trades and ledgers

// Order kinds (low byte of a kind field) and order origins (higher bits).
enum OrderKind : uint32_t { kBuy = 1, kSell = 2, kSellShort = 3, kBuyToCover = 4 };
enum OrderOrigin : uint32_t {
  kOriginFormula = 0,
  kOriginRollover = 256,
  kOriginSettlement = 512,
  kOriginStockPicking = 1024,
};

// An open entry of a position; an executed order has the same layout.
struct EntryLot {
  uint32_t Kind = 0;  // OrderKind or-ed with OrderOrigin flags
  int32_t Bar = 0;
  int64_t DataIndex = 0;
  double Lots = 0.0;
  double Price = 0.0;
  double Cost = 0.0;  // commission and slippage charged for this order
};
using OrderRecord = EntryLot;

// A closed trade: one entry (or part of one) matched against an exit.
struct TradeRecord {
  uint32_t EntryKind = 0;
  uint32_t ExitKind = 0;
  int32_t EntryBar = 0;
  int32_t ExitBar = 0;
  int64_t DataIndex = 0;
  double Lots = 0.0;
  double EntryPrice = 0.0;
  double ExitPrice = 0.0;
  double EntryCost = 0.0;
  double ExitCost = 0.0;
  double GrossProfit = 0.0;
  double NetProfit = 0.0;
  double Return = 0.0;  // NetProfit / margin of one lot at the entry price
};

// The statistics block of a ledger, saved aside on the last-but-one bar. Counts, runs and bars
// are weighted by lots.
struct LedgerStatistics {
  double MaxContractsRecord = 0.0;
  double MaxContractsHeldRecord = 0.0;
  int32_t MaxEntriesRecord = 0;
  double BestOpenProfit = 0.0;
  double WorstOpenProfit = 0.0;
  int32_t NumWin = 0;
  int32_t NumLos = 0;
  int32_t NumEven = 0;
  int32_t TotalBarsWin = 0;
  int32_t TotalBarsLos = 0;
  int32_t TotalBarsEven = 0;
  double LargestWin = 0.0;
  double LargestLos = 0.0;
  double GrossProfit = 0.0;
  double GrossLoss = 0.0;
  int32_t MaxConsecWin = 0;
  int32_t MaxConsecLos = 0;
  int32_t WinRun = 0;
  int32_t LosRun = 0;
};

// Orders, trades, open position and statistics of one data series.
struct StrategyLedger {
  std::vector<OrderRecord> Orders;
  std::vector<TradeRecord> Trades;
  std::vector<EntryLot> OpenEntries;  // oldest first
  LedgerStatistics Stats;
  // Copies taken when the last-but-one bar is checked out: the state the last bar starts from.
  LedgerStatistics SavedStats;
  std::vector<EntryLot> SavedOpenEntries;

  // 1 when the oldest open entry is a Buy, -1 when it is a SellShort, else 0; 0 when flat.
  int32_t Position() const {
    if (OpenEntries.empty()) return 0;
    switch (OpenEntries.front().Kind & 0xFF) {
      case kBuy:
        return 1;
      case kSellShort:
        return -1;
      default:
        return 0;
    }
  }
};

// Margin, commission and slippage settings of one data series.
struct CostSetting {
  double MarginRate = 1.0;      // the full contract value unless the host sets a rate
  uint32_t CommissionKind = 0;  // 0 money per lot, 1 ticks per lot, 2 turnover in 1/10000
  double CommissionRate = 0.0;
  bool NoEntryCommission = false;  // entries are charged slippage only
  bool SameDayExitFree = false;    // an exit on its entry's trading day is charged slippage only
  uint32_t SlippageKind = 0;       // 0 money per lot, non-zero ticks per lot
  double Slippage = 0.0;
  bool OrderOffsetEnabled = false;  // shown in the cost description only
  int32_t OrderOffsetTicks = 0;
};

// One point of the equity curve, one per bar.
struct EquityPoint {
  int32_t Bar = 0;
  int64_t Time = 0;
  double LongMargin = 0.0;
  double ShortMargin = 0.0;
  double LongLots = 0.0;
  double ShortLots = 0.0;
  double Available = 0.0;      // Equity - LongMargin - ShortMargin
  double Equity = 0.0;         // realised capital + open profit at the Close
  double PercentEquity = 0.0;  // cumulative return + open return, in percent
  double OpenReturn = 0.0;
  double BarCost = 0.0;  // costs of the orders executed on this bar
  double Capital = 0.0;  // realised capital
};

// The drawdown state and the portfolio statistics of an account: the block saved aside on the
// last-but-one bar.
struct AccountStatistics {
  double Trough = 0.0;
  double Peak = 0.0;
  double MaxDrawDown = 0.0;       // zero or negative
  double MaxDrawDownRatio = 0.0;  // zero or positive
  double EpisodeDrawDown = 0.0;   // drawdown of the current episode
  std::vector<double> EpisodeDrawDowns;
  int32_t NumWin = 0;
  int32_t NumLos = 0;
  int32_t NumEven = 0;
  int32_t TotalBarsWin = 0;
  int32_t TotalBarsLos = 0;
  int32_t TotalBarsEven = 0;
  double LargestWin = 0.0;
  double LargestLos = 0.0;
  double GrossProfit = 0.0;
  double GrossProfitLong = 0.0;
  double GrossProfitShort = 0.0;
  double GrossLoss = 0.0;
  double GrossLossLong = 0.0;
  double GrossLossShort = 0.0;
  int32_t MaxConsecWin = 0;
  int32_t MaxConsecLos = 0;
  int32_t WinRun = 0;
  int32_t LosRun = 0;
};

// Extra figures collected on every checkout of a report run (output mode 1 or 2).
struct ReportDetail {
  int32_t MarginBars = 0;  // bars with margin in use
  double MaxTotalMargin = 0.0;
  double MaxLongMargin = 0.0;
  double MaxShortMargin = 0.0;
  double MaxTotalLots = 0.0;
  double MaxLongLots = 0.0;
  double MaxShortLots = 0.0;
  double HighestEquity = 0.0;
  double LowestEquity = 0.0;
  double HighestBasis = 0.0;  // highest drawdown basis (equity, or percent equity)
  double LowestBasis = 0.0;
  int64_t HighestBasisTime = 0;
  int64_t MaxDrawDownTime = 0;
  double MaxDrawDownPeakRatio = 0.0;  // drawdown / peak at the time of the largest drawdown
};

// Net profit and return of one calendar period of a run.
struct PeriodResult {
  int32_t Period = 0;  // YYYY for a year, YYYYMM for a month
  double NetProfit = 0.0;
  double Return = 0.0;  // net profit / capital at the start of the period
};

// Figures of one side (long or short) of a run.
struct SideResult {
  int32_t Trades = 0;
  int32_t WinningTrades = 0;
  double GrossProfit = 0.0;
  double GrossLoss = 0.0;
  double NetProfit = 0.0;
};

// The end-of-run performance report, computed on the last bar; which parts are filled depends
// on the output mode. Trade figures are booked values: money, or returns in percent in
// PercentMode. Ratios are fractions.
struct PerformanceReport {
  bool HasSummary = false;
  bool HasTradeAnalysis = false;
  bool HasDetail = false;

  // Summary.
  double InitCapital = 0.0;
  double FinalEquity = 0.0;
  double NetProfit = 0.0;
  double GrossProfit = 0.0;
  double GrossLoss = 0.0;
  double ProfitFactor = 0.0;
  double MaxDrawDown = 0.0;
  double MaxDrawDownRatio = 0.0;
  double ReturnOnInitialCapital = 0.0;
  double AnnualReturn = 0.0;
  double SharpeRatio = 0.0;   // of the per-bar equity returns, not annualised
  double TimeInMarket = 0.0;  // share of the bars with lots held

  // Trade analysis.
  int32_t TotalTrades = 0;
  int32_t WinningTrades = 0;
  int32_t LosingTrades = 0;
  int32_t EvenTrades = 0;
  double PercentProfitable = 0.0;
  double AvgTrade = 0.0;
  double AvgWin = 0.0;
  double AvgLoss = 0.0;
  double WinLossRatio = 0.0;
  double LargestWin = 0.0;
  double LargestLoss = 0.0;
  int32_t MaxConsecWinners = 0;
  int32_t MaxConsecLosers = 0;
  double AvgBarsWinners = 0.0;
  double AvgBarsLosers = 0.0;
  SideResult Long;
  SideResult Short;

  // Detail.
  double MarginUse = 0.0;      // share of the bars with margin in use
  double MaxMarginUsed = 0.0;  // highest total margin of a bar
  double MaxLotsHeld = 0.0;    // highest total lots of a bar
  std::vector<PeriodResult> Years;
  std::vector<PeriodResult> Months;
};

// A stock-picking decision and the sort values of one bar.
struct CheckPointRecord {
  int32_t Signal = 0;  // 1 hold long, -1 hold short, 0 flat, -999 no decision
  int32_t Bar = 0;
  std::map<int32_t, std::pair<double, bool>> SortValues;
  int32_t Enabled = 0;
};

// The strategy's money over all data series: capital, equity curve, drawdown, portfolio
// statistics, the end-of-run report and the stock-picking state.
class StrategyAccount : public IceUtil::Shared {
 public:
  std::vector<EquityPoint> EquityCurve;
  double Capital = 0.0;    // realised capital
  double CumReturn = 0.0;  // sum of closed trades' returns, in percent
  double PercentEquitySum = 0.0;
  AccountStatistics Stats;
  std::vector<TradeRecord> Trades;  // every closed trade of every series
  int32_t FinalPosition = 0;
  // The orders of every series, recorded when their bar is checked out: in bar order, the orders
  // of one bar in series order. A bar checked out again has its orders replaced. A run started
  // over keeps the room of the list: it records without allocating until it outgrows it.
  std::vector<OrderRecord> BarOrders;
  ReportDetail Detail;
  PerformanceReport Report;
  AccountStatistics SavedStats;  // taken on the last-but-one bar

  // Stock picking: written by the host, except CheckPoints, which the library fills.
  int32_t PoolSize = 0;
  std::map<int64_t, CheckPointRecord> CheckPoints;             // by bar time
  std::map<int64_t, std::map<int32_t, int32_t>> RankingTable;  // bar time -> criterion -> rank
  bool PoolMode = false;

  // The index in BarOrders of the first order recorded for bar `bar` or a later bar (the size
  // when there is none).
  size_t FirstOrderFrom(int32_t bar) const {
    return static_cast<size_t>(
        std::partition_point(BarOrders.begin(), BarOrders.end(),
                             [bar](const OrderRecord& order) { return order.Bar < bar; }) -
        BarOrders.begin());
  }
  // The recorded orders of bar `bar`, in series order; empty when it had none.
  std::span<const OrderRecord> OrdersOfBar(int32_t bar) const {
    const size_t first = FirstOrderFrom(bar);
    size_t last = first;
    while (last < BarOrders.size() && BarOrders[last].Bar == bar) ++last;
    return std::span<const OrderRecord>(BarOrders).subspan(first, last - first);
  }
};
using StrategyAccountPtr = IceUtil::Handle<StrategyAccount>;

// ---------------------------------------------------------------------------------------------
// Output

// One bar of one plot series, whole: what PlotSeries::Cell answers and SetCell takes. Locators
// hold the invalid number until one is given.
struct PlotCell {
  double boolLocator = sysfuncs::kInvalidNumber;
  double numericLocator = sysfuncs::kInvalidNumber;
  double numericValue = 0.0;
  double stringLocator = sysfuncs::kInvalidNumber;
  std::string text;
  int32_t color = 0;  // -1: no colour
  bool boolSet = false;
  bool boolValue = false;
  bool numericSet = false;
  bool stringSet = false;
  bool colorSet = false;
};

// A named plot series of one cell per bar, stored compactly: the value, colour and flags of every
// cell in one dense array of 16 bytes a bar; the three locators and the text only for the cells
// that have a locator or a non-empty text, in a side store keyed by bar. A numeric series without
// locators thus costs 16 bytes a bar; a cell with a side record about 90 bytes more. Cells are
// read and written whole, as copies (Cell, SetCell); a reader that only draws the numeric values
// reads them in place (NumericSet, NumericValue).
class PlotSeries {
 public:
  std::string name;

  // Cells, one per bar.
  size_t Size() const { return dense_.size(); }

  // Cells past `bars` are dropped; new cells are as a default PlotCell.
  void Resize(size_t bars) {
    if (bars < dense_.size() && !sparse_.empty()) {
      std::erase_if(sparse_, [bars](const auto& entry) { return entry.first >= bars; });
    }
    dense_.resize(bars);
  }

  // The whole cell of `bar`. REQUIRES: bar < Size().
  PlotCell Cell(size_t bar) const {
    const DenseCell& dense = dense_[bar];
    PlotCell cell;
    cell.numericValue = dense.numericValue;
    cell.color = dense.color;
    cell.boolSet = (dense.flags & kBoolSet) != 0;
    cell.boolValue = (dense.flags & kBoolValue) != 0;
    cell.numericSet = (dense.flags & kNumericSet) != 0;
    cell.stringSet = (dense.flags & kStringSet) != 0;
    cell.colorSet = (dense.flags & kColorSet) != 0;
    if ((dense.flags & kHasSideRecord) != 0) {
      const SideRecord& side = sparse_.at(bar);
      cell.boolLocator = side.boolLocator;
      cell.numericLocator = side.numericLocator;
      cell.stringLocator = side.stringLocator;
      cell.text = side.text;
    }
    return cell;
  }

  // Replaces the cell of `bar`. REQUIRES: bar < Size().
  void SetCell(size_t bar, const PlotCell& cell) {
    DenseCell& dense = dense_[bar];
    dense.numericValue = cell.numericValue;
    dense.color = cell.color;
    dense.flags =
        static_cast<uint8_t>((cell.boolSet ? kBoolSet : 0) | (cell.boolValue ? kBoolValue : 0) |
                             (cell.numericSet ? kNumericSet : 0) |
                             (cell.stringSet ? kStringSet : 0) | (cell.colorSet ? kColorSet : 0));
    const bool side = cell.boolLocator != sysfuncs::kInvalidNumber ||
                      cell.numericLocator != sysfuncs::kInvalidNumber ||
                      cell.stringLocator != sysfuncs::kInvalidNumber || !cell.text.empty();
    if (!side) {
      sparse_.erase(bar);
      return;
    }
    dense.flags |= kHasSideRecord;
    SideRecord& record = sparse_[bar];
    record.boolLocator = cell.boolLocator;
    record.numericLocator = cell.numericLocator;
    record.stringLocator = cell.stringLocator;
    record.text = cell.text;
  }

  // The numeric part of a cell alone, for readers that draw the series. REQUIRES: bar < Size().
  bool NumericSet(size_t bar) const { return (dense_[bar].flags & kNumericSet) != 0; }
  double NumericValue(size_t bar) const { return dense_[bar].numericValue; }

 private:
  enum : uint8_t {
    kBoolSet = 1,
    kBoolValue = 2,
    kNumericSet = 4,
    kStringSet = 8,
    kColorSet = 16,
    kHasSideRecord = 32,  // the cell's locators and text are in sparse_
  };
  struct DenseCell {
    double numericValue = 0.0;
    int32_t color = 0;
    uint8_t flags = 0;
  };
  static_assert(sizeof(DenseCell) == 16, "a plotted bar costs 16 bytes");
  struct SideRecord {
    double boolLocator;
    double numericLocator;
    double stringLocator;
    std::string text;
  };

  std::vector<DenseCell> dense_;
  std::unordered_map<size_t, SideRecord> sparse_;
};
// The list of series grows by moving each series, never by copying its cells.
static_assert(std::is_nothrow_move_constructible_v<PlotSeries>);

// ---------------------------------------------------------------------------------------------
// The host data object

class CQXBaseData {
 public:
  // Addressing: bar-data functions read Bars[CurrentBar] of (*DataSources)[CurrentData].
  int32_t CurrentData = 0;
  int32_t CurrentBar = 0;
  int32_t BarCount = 0;  // bars of the current data source
  int32_t DataCount = 0;
  int32_t MaxBarsBack = 0;
  std::vector<QXDataSource>* DataSources = nullptr;  // not owned: instances may share one array
  std::vector<SourceInfo> SourceInfos;               // one per data source

  // 0 interactive run with chart output, 1 report run, 2 detailed report run. Any non-zero value
  // suppresses plots, alerts and commentary.
  int32_t OutputMode = 0;
  int32_t ResetPending = 0;  // host request to reset the strategy state before ResetBar
  int32_t ResetBar = 0;

  // Strategy settings.
  double InitCapital = 0.0;
  uint32_t DefaultLotsMode = 0;  // 0 fixed lots, 1 percent of available capital, 2 fixed money
  int32_t DefaultLotsValue = 1;
  int32_t MaxOpenEntries = 1;
  int32_t MaxPositionLots = 1;
  bool PercentMode = false;  // statistics and drawdown booked by return instead of money
  bool LifoExits = false;
  bool SuppressSummary = false;
  std::vector<CostSetting> CostSettings;  // one per data source

  // Strategy state.
  std::vector<StrategyLedger> Ledgers;  // one per data source
  StrategyAccountPtr Account;
  SymbolCachePtr Symbols;
  std::vector<OrderRecord> SavedOrders;  // emptied when a run starts at bar 0

  // The bound trading account: BrokerID is "number|code"; both empty when none is bound.
  std::string BrokerID;
  std::string AccountID;
  std::string FormulaName;

  // Output.
  std::vector<PlotSeries> Plots;
  std::vector<std::vector<std::string>> Commentaries;  // index = bar
  std::vector<std::string> Alerts;
  bool AlertEnabled = false;

  // Global variables, by index and by name.
  std::map<int32_t, double> GlobalVars;
  std::map<std::string, double> NamedGlobalVars;

  // The formula's series variables, one value per bar; cut back when a bar is evaluated anew.
  // Flags are bytes so that a formula can hold a reference to one.
  std::vector<std::vector<double>> NumericSeries;
  std::vector<std::vector<uint8_t>> BoolSeries;
  std::vector<std::vector<std::string>> StringSeries;
};

#endif  // SYSFUNCS_HOST_DATA_H_
