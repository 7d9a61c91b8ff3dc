// Real-time quotes: the field table, the value cache, the day and zero rules, depth values, and
// the day's limits cached at construction.
#include "sysfuncs/SFImpl.h"

#include "live/Account.h"
#include "live/LiveHost.h"
#include "live/QuoteFields.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

// A snapshot whose fields all differ, so a field read from the wrong source shows. Depth level
// n (price x volume): bid (4049 - n) x (10 + n), ask (4050 + n) x (20 + n). ChangeFlags 157:
// 2-bit groups from bit 6 down 2, 1, 3, 1.
Quill::ITickDeepLevel Snapshot() {
  std::vector<Quill::DepthLevel> depth;
  for (double n = 0; n < 5; ++n) depth.push_back({4049 - n, 10 + n, 4050 + n, 20 + n});
  return {.TimeStamp = ShanghaiInstant(2024, 3, 5, 9, 30, 15, 500),
          .PreSettlePrice = 4000,
          .PreClosePrice = 3990,
          .OpenPrice = 4010,
          .LastPrice = 4050,
          .DepthLevels = depth,
          .HighPrice = 4080,
          .LowPrice = 3980,
          .TotalVolume = 12000,
          .TurnOver = 480000000,
          .PreOpenInt = 150000,
          .OpenInt = 152000,
          .AvgPrice = 4031.5,
          .LastVolume = 6,
          .ClosePrice = 4045,
          .UpperLimit = 4280,
          .LowerLimit = 3720,
          .InsideVolume = 5800,
          .OutsideVolume = 6200,
          .TodayExitVolume = 3000,
          .TodayEntryVolume = 5000,
          .TickChange = 2,
          .ChangeFlags = 157};
}

using Real = std::function<double(CSystemFuncs&)>;

TEST(Quotes, EveryFieldReadsItsSourceOnTheLastBar) {
  LiveHost live;
  live.adapter.quotes["rb2410"] = Snapshot();
  CSystemFuncs& f = live.AtLastBar();
  const std::tuple<const char*, Real, double> rows[] = {
      {"Q_Close", &CSystemFuncs::Q_Close, 4045},
      {"Q_High", &CSystemFuncs::Q_High, 4080},
      {"Q_LastTime", &CSystemFuncs::Q_LastTime, 0.093015},
      {"Q_LastVol", &CSystemFuncs::Q_LastVol, 6},
      {"Q_Low", &CSystemFuncs::Q_Low, 3980},
      {"Q_Open", &CSystemFuncs::Q_Open, 4010},
      {"Q_OpenInt", &CSystemFuncs::Q_OpenInt, 152000},
      {"Q_Oscillation", &CSystemFuncs::Q_Oscillation, 0.025},       // (4080 - 3980) / 4000
      {"Q_PriceChg", &CSystemFuncs::Q_PriceChg, 50},                // 4050 - 4000
      {"Q_PriceChgRatio", &CSystemFuncs::Q_PriceChgRatio, 0.0125},  // 50 / 4000
      {"Q_TickChg", &CSystemFuncs::Q_TickChg, 2},
      {"Q_TotalVol", &CSystemFuncs::Q_TotalVol, 12000},
      {"Q_PreSettlePrice", &CSystemFuncs::Q_PreSettlePrice, 4000},
      {"Q_PreOpenInt", &CSystemFuncs::Q_PreOpenInt, 150000},
      {"Q_AvgPrice", &CSystemFuncs::Q_AvgPrice, 4031.5},
      {"Q_TurnOver", &CSystemFuncs::Q_TurnOver, 480000000},
      {"Q_HisHigh", &CSystemFuncs::Q_HisHigh, kNoNumber},
      {"Q_HisLow", &CSystemFuncs::Q_HisLow, kNoNumber},
      {"Q_UpperLimit", &CSystemFuncs::Q_UpperLimit, 4280},
      {"Q_LowerLimit", &CSystemFuncs::Q_LowerLimit, 3720},
      {"Q_InsideVol", &CSystemFuncs::Q_InsideVol, 5800},
      {"Q_OutsideVol", &CSystemFuncs::Q_OutsideVol, 6200},
      {"Q_TodayEntryVol", &CSystemFuncs::Q_TodayEntryVol, 5000},
      {"Q_TodayExitVol", &CSystemFuncs::Q_TodayExitVol, 3000},
      {"Q_Last", &CSystemFuncs::Q_Last, 4050},
      {"Q_BidPrice(0)", [](CSystemFuncs& s) { return s.Q_BidPrice(0); }, 4049},
      {"Q_BidVol(2)", [](CSystemFuncs& s) { return s.Q_BidVol(2); }, 12},
      {"Q_AskPrice(4)", [](CSystemFuncs& s) { return s.Q_AskPrice(4); }, 4054},
      {"Q_AskVol(1)", [](CSystemFuncs& s) { return s.Q_AskVol(1); }, 21},
      {"Q_BidPrice(5)", [](CSystemFuncs& s) { return s.Q_BidPrice(5); }, kNoNumber},
      {"Q_AskVol(-1)", [](CSystemFuncs& s) { return s.Q_AskVol(-1); }, kNoNumber}};
  for (const auto& [name, read, want] : rows) EXPECT_DOUBLE_EQ(read(f), want) << name;
  // Milliseconds are not part of the date or time.
  EXPECT_EQ(f.Q_LastDate(), 20240305);
  // ChangeFlags 157: last price up, bid group 3 (none), ask up, open interest down.
  EXPECT_EQ(f.Q_LastFlag(), 1);
  EXPECT_EQ(f.Q_BidPriceFlag(), 0);
  EXPECT_EQ(f.Q_AskPriceFlag(), 1);
  EXPECT_EQ(f.Q_OpenIntFlag(), -1);
  // One fetch per key: 25 real fields, 4 depth keys answered, 2 out of range, 5 integer fields.
  EXPECT_EQ(live.adapter.quoteCalls, 25 + 6 + 5);
}

TEST(Quotes, ZeroAndNegativePricesReadAsInvalidWhileAmountsKeepTheirZero) {
  LiveHost live;
  Quill::ITickDeepLevel quote;  // every field 0 but a negative last price
  quote.LastPrice = -1;
  live.adapter.quotes["rb2410"] = quote;
  CSystemFuncs& f = live.AtLastBar();
  const std::tuple<const char*, Real, double> rows[] = {
      {"Q_Close", &CSystemFuncs::Q_Close, kNoNumber},
      {"Q_High", &CSystemFuncs::Q_High, kNoNumber},
      {"Q_Low", &CSystemFuncs::Q_Low, kNoNumber},
      {"Q_Open", &CSystemFuncs::Q_Open, kNoNumber},
      {"Q_PreSettlePrice", &CSystemFuncs::Q_PreSettlePrice, kNoNumber},
      {"Q_AvgPrice", &CSystemFuncs::Q_AvgPrice, kNoNumber},
      {"Q_UpperLimit", &CSystemFuncs::Q_UpperLimit, kNoNumber},
      {"Q_LowerLimit", &CSystemFuncs::Q_LowerLimit, kNoNumber},
      {"Q_Last", &CSystemFuncs::Q_Last, kNoNumber},
      {"Q_LastVol", &CSystemFuncs::Q_LastVol, 0},
      {"Q_OpenInt", &CSystemFuncs::Q_OpenInt, 0},
      {"Q_PreOpenInt", &CSystemFuncs::Q_PreOpenInt, 0},
      {"Q_TurnOver", &CSystemFuncs::Q_TurnOver, 0},
      // No reference price: change and ratio are 0, not a division by zero.
      {"Q_PriceChg", &CSystemFuncs::Q_PriceChg, 0},
      {"Q_PriceChgRatio", &CSystemFuncs::Q_PriceChgRatio, 0},
      {"Q_Oscillation", &CSystemFuncs::Q_Oscillation, 0}};
  for (const auto& [name, read, want] : rows) {
    EXPECT_EQ(read(f), want) << name;
    EXPECT_EQ(read(f), want) << name << ", answered from the cache";
  }
  EXPECT_EQ(live.adapter.quoteCalls, 16) << "the raw zero is cached, the rule applies per read";
}

TEST(Quotes, TheReferencePriceFallsBackToThePreviousClose) {
  LiveHost live;
  Quill::ITickDeepLevel quote;
  quote.PreClosePrice = 10;
  quote.LastPrice = 11;
  quote.HighPrice = 12;
  quote.LowPrice = 9;
  live.adapter.quotes["rb2410"] = quote;
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.Q_PriceChg(), 1);
  EXPECT_DOUBLE_EQ(f.Q_PriceChgRatio(), 0.1);
  EXPECT_DOUBLE_EQ(f.Q_Oscillation(), 0.3);  // (12 - 9) / 10
}

TEST(Quotes, EachKeyIsFetchedOncePerInstanceAndANewInstanceFetchesAgain) {
  LiveHost live;
  live.adapter.quotes["rb2410"] = Snapshot();
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_EQ(f.Q_Close(), 4045);
  live.adapter.quotes["rb2410"].ClosePrice = 4100;  // the market moves on
  live.adapter.quotes["rb2410"].ChangeFlags = 2;
  EXPECT_EQ(f.Q_Close(), 4045) << "the first answer stands for the instance's life";
  EXPECT_EQ(f.Q_LastFlag(), -1);
  EXPECT_EQ(f.Q_LastFlag(), -1);
  EXPECT_EQ(live.adapter.quoteCalls, 2);

  // The host builds the instance anew for the newest bar: an empty cache.
  CSystemFuncs again(&live.host.data);
  live.adapter.quoteCalls = 0;
  EXPECT_EQ(again.Q_Close(), 4100);
  EXPECT_EQ(again.Q_Close(), 4100);
  EXPECT_EQ(live.adapter.quoteCalls, 1);
  // QuoteDataExist asks every time.
  EXPECT_TRUE(again.QuoteDataExist());
  EXPECT_TRUE(again.QuoteDataExist());
  EXPECT_EQ(live.adapter.quoteCalls, 3);
}

TEST(Quotes, ValuesAreKeptUnderTheirKeyTextsWithTheRawValue) {
  LiveHost live;
  live.adapter.quotes["rb2410"] = Snapshot();
  live.adapter.quotes["rb2410"].LastPrice = 0;
  live.adapter.summary.CurrentEquity = 1020;
  live.AtLastBar();
  SFImpl impl(&live.host.data);
  EXPECT_EQ(impl.GetQuoteReal(kQuoteLast), kNoNumber);
  EXPECT_EQ(impl.GetQuoteInteger(kQuoteOpenIntFlag), -1);
  EXPECT_EQ(impl.GetDepthValue(-1, 0), kNoNumber);
  EXPECT_EQ(impl.GetDepthValue(2, 1), 12);
  EXPECT_EQ(impl.GetAccountValue(kAccountCurrentEquity), 1020);
  EXPECT_EQ(impl.GetPositionValue(kPositionBuyPosition), 0);
  const struct {
    const char* key;
    int32_t kind;
    double real;
    int32_t integer;
  } rows[] = {{"Data0.Q_Last", 4, 0, 0},  // the raw 0: the zero rule applies per read
              {"Data0.Q_OpenIntFlag", 10, 0, -1}, {"Data0.Q_BSType[-1,0]", 4, kNoNumber, 0},
              {"Data0.Q_BSType[2,1]", 4, 12, 0},  {"A_CurrentEquity", 4, 1020, 0},
              {"Data0.A_BuyPosition", 4, 0, 0}};
  for (const auto& row : rows) {
    const CachedValue* entry = impl.m_valueCache.Find(row.key);
    ASSERT_NE(entry, nullptr) << row.key;
    EXPECT_EQ(entry->Kind, row.kind) << row.key;
    EXPECT_EQ(entry->RealValue, row.real) << row.key;
    EXPECT_EQ(entry->IntValue, row.integer) << row.key;
    EXPECT_EQ(entry->Text, "") << row.key;
  }
  EXPECT_EQ(impl.m_valueCache.Size(), 8u) << "and the two limits read at construction";
}

TEST(Quotes, EachDataSourceAsksForItsOwnSymbol) {
  LiveHost live;
  live.host.AddSource("cu2410", ThreeBars());
  live.adapter.quotes["rb2410"] = Snapshot();
  live.adapter.quotes["cu2410"] = Snapshot();
  live.adapter.quotes["cu2410"].LastPrice = 70120;
  CSystemFuncs& f = live.AtLastBar();
  for (int round = 0; round < 2; ++round) {
    live.host.At(1, 2);
    EXPECT_EQ(f.Q_Last(), 70120);
    live.host.At(0, 2);
    EXPECT_EQ(f.Q_Last(), 4050);
  }
  EXPECT_EQ(live.adapter.quoteCalls, 2);
}

TEST(Quotes, OffTheLastBarOnlyTheDayConstantFieldsAnswer) {
  LiveHost live;
  live.adapter.quotes["rb2410"] = Snapshot();
  CSystemFuncs& f = live.Funcs(1);  // same trading day as the last bar
  EXPECT_EQ(live.adapter.quoteCalls, 0) << "bar 0 is another day: no limits at construction";
  EXPECT_EQ(std::vector<double>({f.Q_Last(), f.Q_Close(), f.Q_BidPrice(0), f.A_CurrentEquity()}),
            std::vector<double>(4, kNoNumber));
  EXPECT_EQ(std::tuple(f.Q_LastFlag(), f.Q_LastDate()), std::tuple(kNoInteger, kNoInteger));
  EXPECT_EQ(live.adapter.LiveCalls(), 0);
  EXPECT_EQ(std::vector<double>({f.Q_Open(), f.Q_PreSettlePrice(), f.Q_PreOpenInt(),
                                 f.Q_UpperLimit(), f.Q_LowerLimit()}),
            std::vector<double>({4010, 4000, 150000, 4280, 3720}));
  EXPECT_EQ(live.adapter.quoteCalls, 5);
  live.host.At(0, 0);  // Monday: another trading day
  EXPECT_EQ(f.Q_Open(), kNoNumber);
  EXPECT_EQ(live.adapter.quoteCalls, 5);
}

TEST(Quotes, TheTradingDayStartsAt17AndTheWeekendBelongsToMonday) {
  const struct {
    int64_t bar, last;
    bool answered;
    const char* row;
  } rows[] = {
      {ShanghaiInstant(2024, 3, 8, 21), ShanghaiInstant(2024, 3, 11, 10), true,
       "Fri 21:00, Mon 10:00"},
      {ShanghaiInstant(2024, 3, 8, 16, 59), ShanghaiInstant(2024, 3, 8, 17, 1), false,
       "Fri 16:59, 17:01"},
      {ShanghaiInstant(2024, 3, 9, 10), ShanghaiInstant(2024, 3, 11, 9), true,
       "Sat 10:00, Mon 09:00"},
  };
  for (const auto& row : rows) {
    LiveHost live({MakeBar(row.bar, 1, 1, 1, 1), MakeBar(row.last, 1, 1, 1, 1)});
    live.adapter.quotes["rb2410"] = Snapshot();
    CSystemFuncs& f = live.Funcs(0);
    live.adapter.quoteCalls = 0;
    EXPECT_EQ(f.Q_Open() != kNoNumber, row.answered) << row.row;
    EXPECT_EQ(live.adapter.quoteCalls, row.answered ? 1 : 0) << row.row;
  }
}

TEST(Quotes, AHistoricalPackedTickBarAnswersDepthFromTheBarWhateverTheLevel) {
  // Low packs the bid 4000.5 x 7, High the ask 4001.5 x 9: price in the upper half, volume below.
  const auto pack = [](float price, int32_t volume) {
    const uint64_t bits =
        (uint64_t{std::bit_cast<uint32_t>(price)} << 32) | static_cast<uint32_t>(volume);
    return std::bit_cast<double>(bits);
  };
  std::vector<QXBar> bars = ThreeBars();
  bars[1].Low = pack(4000.5f, 7);
  bars[1].High = pack(4001.5f, -9);
  LiveHost live(bars, 2, 0);
  CSystemFuncs& f = live.Funcs(1);
  EXPECT_EQ(f.Q_BidPrice(7), 4000.5);
  EXPECT_EQ(f.Q_BidVol(0), 7);
  EXPECT_EQ(f.Q_AskPrice(-3), 4001.5);
  EXPECT_EQ(f.Q_AskVol(1), -9);
  EXPECT_EQ(live.adapter.quoteCalls, 0);
  LiveHost minutes(bars);  // the same bar of a minute series: no depth off the last bar
  EXPECT_EQ(minutes.Funcs(1).Q_AskVol(1), kNoNumber);
}

TEST(Quotes, FailuresAndBadAddressesAnswerInvalidValuesAndStoreNothing) {
  LiveHost live;
  CSystemFuncs& f = live.AtLastBar();
  EXPECT_FALSE(f.QuoteDataExist());
  EXPECT_EQ(f.Q_Last(), kNoNumber);
  EXPECT_EQ(f.Q_LastDate(), kNoInteger);
  EXPECT_EQ(f.Q_AskPrice(0), kNoNumber);
  EXPECT_EQ(live.adapter.quoteCalls, 4);
  live.adapter.quotes["rb2410"] = {};  // an answer without depth
  live.adapter.quotes["rb2410"].LastPrice = 4050;
  EXPECT_EQ(f.Q_AskPrice(0), kNoNumber);
  EXPECT_EQ(f.Q_Last(), 4050) << "asked again";
  live.adapter.quotes["rb2410"].DepthLevels = {{4049, 1, 4051, 2}};
  EXPECT_EQ(f.Q_AskPrice(0), 4051) << "asked again";
  EXPECT_EQ(live.adapter.quoteCalls, 7);

  live.host.data.CurrentData = 3;  // a data source the host lacks
  live.adapter.quoteCalls = 0;
  EXPECT_EQ(std::tuple(f.Q_Open(), f.Q_LastFlag(), f.Q_BidPrice(1), f.QuoteDataExist()),
            std::tuple(kNoNumber, kNoInteger, kNoNumber, false));
  EXPECT_EQ(f.A_BuyPosition(), 0) << "a position that cannot be asked for reads as none";
  EXPECT_EQ(live.adapter.LiveCalls(), 0);

  live.host.data.CurrentData = 0;
  ScopedAdapter none(nullptr);  // the module is not started
  CSystemFuncs fresh(&live.host.data);
  EXPECT_EQ(std::tuple(fresh.Q_Close(), fresh.A_CurrentEquity(), fresh.A_GetOrderCount(),
                       fresh.A_DeleteOrder("")),
            std::tuple(kNoNumber, kNoNumber, kNoInteger, false));
}

TEST(Quotes, ACachedHitAllocatesNothing) {
  LiveHost live;
  live.adapter.quotes["rb2410"] = Snapshot();
  live.adapter.summary.CurrentEquity = 250000;
  CSystemFuncs& f = live.AtLastBar();
  ASSERT_EQ(f.Q_Last(), 4050);
  ASSERT_EQ(f.A_CurrentEquity(), 250000);
  ASSERT_EQ(f.Q_BidPrice(1), 4048);
  ASSERT_EQ(f.Q_LastFlag(), 1);
  AllocationCounter counter;
  const double sum = f.Q_Last() + f.A_CurrentEquity() + f.Q_BidPrice(1) + f.Q_LastFlag();
  EXPECT_EQ(counter.Count(), 0);
  EXPECT_EQ(sum, 4050 + 250000 + 4048 + 1);
}

// The day's limits of the main series are read once, at construction; a last-bar Buy above the
// upper limit on today's bar executes at the limit.
TEST(Quotes, TheDayLimitsCachedAtConstructionClampALastBarBuy) {
  for (const bool today : {true, false}) {
    // Three bars of one trading day: the limits answer on bar 0 already.
    LiveHost live({MakeBar(ShanghaiInstant(2024, 3, 5, 9), 4000, 4010, 3990, 4005, 10),
                   MakeBar(ShanghaiInstant(2024, 3, 5, 10), 4005, 4020, 4000, 4010, 10),
                   MakeBar(ShanghaiInstant(2024, 3, 5, 11), 4010, 4020, 4000, 4015, 10)});
    live.adapter.quotes["rb2410"] = Snapshot();  // limits 3720 to 4280
    const int64_t lastBar = live.host.sources[0].Bars.back().Time;
    const int64_t now = today ? lastBar + 3600000 : lastBar + 86400000;
    SysFuncsPlatform clock;
    clock.Now = [now] { return now; };
    ScopedPlatform platform(clock);
    CSystemFuncs& f = live.Funcs(0);
    EXPECT_EQ(live.adapter.quoteCalls, 2) << "upper and lower limit";
    live.host.At(0, live.LastBar());
    EXPECT_EQ(f.Q_UpperLimit(), 4280);
    EXPECT_EQ(live.adapter.quoteCalls, 2) << "answered from the cache";
    ASSERT_TRUE(f.Buy(1, 4400.1));
    const StrategyLedger& ledger = live.host.data.Ledgers[0];
    ASSERT_EQ(ledger.OpenEntries.size(), 1u);
    // 4400.1 is put on the 0.2 grid upwards first: 4400.2.
    EXPECT_DOUBLE_EQ(ledger.OpenEntries[0].Price, today ? 4280 : 4400.2) << today;
  }
}

}  // namespace
}  // namespace sysfuncs::testing
