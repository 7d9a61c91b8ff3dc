#include "sysfuncs/SFImpl.h"

#include "contract/PropertyNumbers.h"
#include "contract/Sessions.h"
#include "support/AllocationCounter.h"
#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace sysfuncs::testing {
namespace {

constexpr double kPriceScale = 0.20000000298023224;     // 0.2f widened
constexpr double kBigPointValue = 0.10000000149011612;  // 0.1f widened
constexpr const char* kDaySessions = "09:00-10:15,10:30-11:30,13:30-15:00,";

// A contract whose fields all differ, so a field read into the wrong property shows. Flags,
// market and option terms are set by the table that decodes them.
Quill::ICodeProperty Record() {
  return {.Tradable = true,
          .CurrencyName = "人民币",
          .CurrencySymbol = "￥",
          .ExpiryDate = "2025/06/16",
          .MaxSingleTradeSize = 500,
          .MinMove = 10,
          .PriceScale = 0.2f,
          .SymbolName = "沪铜2506",
          .SecondName = "铜",
          .Category = 7,
          .BidAskSize = 9,
          .ContractUnit = 5,
          .BigPointValue = 0.1f,
          .MarginKind = 2,
          .RelativeSymbol = "cu888",
          .Sessions = kDaySessions,
          .OptionDescriptor = ""};
}

// Data source 0 "IF2506" (1-minute bars, market 0, margin ratio 0.12) and data source 1 "cu2506"
// (15-minute bars, market 39, margin ratio 0.08); the adapter knows the codes given records.
struct Contracts {
  explicit Contracts(std::map<std::string, Quill::ICodeProperty> known) {
    adapter.properties = std::move(known);
    host.AddSource("IF2506", EvenBars(0, 60000, 3));
    host.AddSource("cu2506", EvenBars(0, 900000, 3), 1, 15, 39);
    host.data.SourceInfos[0].MarginRatio = 0.12;
    host.data.SourceInfos[1].MarginRatio = 0.08;
  }
  CSystemFuncs& Funcs() {  // built on first use
    if (!funcs) funcs = std::make_unique<CSystemFuncs>(&host.data);
    return *funcs;
  }
  TestHost host;
  FakeAdapter adapter;
  ScopedAdapter scoped{&adapter};
  std::unique_ptr<CSystemFuncs> funcs;
};

TEST(SymbolProperties, AnotherDataSourceReadsEveryFunctionThroughItsList) {
  Contracts c({{"cu2506", Record()}});
  CSystemFuncs& f = c.Funcs();
  c.host.At(1, 2);
  SFImpl impl(&c.host.data);  // for the properties no function reads
  // Tuples, not aggregates: integer answers widen to double without a narrowing error.
  const std::tuple<const char*, double, double> numbers[] = {
      {"BarInterval", f.BarInterval(), 15},
      {"BarType", f.BarType(), 1},
      {"ContractSize", f.ContractSize(), 0},
      {"InitialMargin", f.InitialMargin(), 0},
      {"MaintenanceMargin", f.MaintenanceMargin(), 0},
      {"MaxSingleTradeSize", f.MaxSingleTradeSize(), 500},
      {"MinMove", f.MinMove(), 10},
      {"PriceScale", f.PriceScale(), kPriceScale},
      {"Category", f.Category(), 7},
      {"BidAskSize", f.BidAskSize(), 9},
      {"ContractUnit", f.ContractUnit(), 5},
      {"BigPointValue", f.BigPointValue(), kBigPointValue},
      {"MarginRatio", f.MarginRatio(), 0.08},
      {"margin kind", impl.GetIntProperty(kPropMarginKind), 2},
      {"contract unit", impl.GetDoubleProperty(kPropContractUnitFloat), 5}};
  for (const auto& [name, got, want] : numbers) EXPECT_EQ(got, want) << name;
  const std::tuple<const char*, std::string, std::string> texts[] = {
      {"CurrencyName", f.CurrencyName(), "人民币"},
      {"CurrencySymbol", f.CurrencySymbol(), "￥"},
      {"ExpiredDate", f.ExpiredDate(), "2025/06/16"},
      {"SymbolName", f.SymbolName(), "沪铜2506"},
      {"SymbolType", f.SymbolType(), "cu"},
      {"RelativeSymbol", f.RelativeSymbol(), "cu888"},
      {"second name", impl.GetStringProperty(kPropSecondName), "铜"}};
  for (const auto& [name, got, want] : texts) EXPECT_EQ(got, want) << name;
  EXPECT_EQ(c.adapter.lastKey.MarketId, 39);
  EXPECT_EQ(std::string(c.adapter.lastKey.Code), "cu2506");
  AllocationCounter counter;  // numbers and flags of a cached list are read without allocating
  const double sum = f.BigPointValue() + f.MinMove() + f.GetSessionCount() + f.CanTrade();
  EXPECT_EQ(counter.Count(), 0);
  EXPECT_EQ(sum, kBigPointValue + 10 + 3 + 1);
}

TEST(SymbolProperties, AnUnknownSymbolAnswersInvalidValuesAndIsAskedAgainOnTheNextCall) {
  Contracts c({{"cu2506", Record()}});
  CSystemFuncs& f = c.Funcs();  // asks for data source 0
  c.host.At(1, 0);
  ASSERT_EQ(f.Category(), 7);  // the cache grows to data source 1; 0's place stays empty
  c.host.At(0, 0);
  // Each call asks again (braces keep the calls in order).
  EXPECT_EQ(
      (std::tuple{f.Category(), f.GetSessionCount(), f.StrikePrice(), f.GetSessionStartTime(0),
                  f.CanTrade(), f.SymbolName(), f.TradingDayLeft()}),
      std::tuple(kNoInteger, kNoInteger, kNoNumber, kNoNumber, false, "", 0));
  EXPECT_EQ(c.adapter.propertyCalls, 9);  // 1 at construction, 1 for data source 1, then each call
  c.adapter.properties["IF2506"] = Record();
  EXPECT_EQ(f.SymbolName(), "沪铜2506");
  EXPECT_EQ(f.Category(), 7);
  EXPECT_EQ(c.adapter.propertyCalls, 10) << "a known symbol's list is served from the cache";
}

TEST(SymbolProperties, DataSourceZeroAnswersFiveFunctionsFromValuesCachedAtConstruction) {
  Contracts known({{"IF2506", Record()}});
  CSystemFuncs& k = known.Funcs();
  known.host.data.Symbols->Properties[0] = SymbolPropertyList(kPropertyCount);  // zeros from now
  Contracts unknown({{"cu2506", Record()}});
  CSystemFuncs& u = unknown.Funcs();
  unknown.host.At(1, 0);
  ASSERT_EQ(u.Category(), 7);  // leaves data source 0's place in the cache empty
  unknown.host.At(0, 0);
  unknown.adapter.properties["IF2506"] = Record();
  CSystemFuncs later(&unknown.host.data);  // fills the empty place at construction
  // Name, answers of the three instances, and the answers when known and when unknown.
  const std::tuple<const char*, double, double, double, double, double> rows[] = {
      {"MinMove", k.MinMove(), u.MinMove(), later.MinMove(), 10, 1},
      {"PriceScale", k.PriceScale(), u.PriceScale(), later.PriceScale(), kPriceScale, 1},
      {"ContractUnit", k.ContractUnit(), u.ContractUnit(), later.ContractUnit(), 5, 1},
      {"BigPointValue", k.BigPointValue(), u.BigPointValue(), later.BigPointValue(), kBigPointValue,
       1},
      {"ContractSize", k.ContractSize(), u.ContractSize(), later.ContractSize(), 0, 1}};
  for (const auto& [name, knownAnswer, unknownAnswer, laterAnswer, ifKnown, ifUnknown] : rows) {
    EXPECT_EQ(knownAnswer, ifKnown) << name;
    EXPECT_EQ(unknownAnswer, ifUnknown) << name;
    EXPECT_EQ(laterAnswer, ifKnown) << name;
  }
  EXPECT_EQ(u.BidAskSize(), 9) << "other functions read the list obtained now";
}

TEST(SymbolProperties, TickSizeCarriesExactlySixDecimals) {
  const std::tuple<int32_t, float, double> rows[] = {
      {1, 0.01f, 0.01},              // 0.01f is 0.0099999998
      {3, 0.1f, 0.3},                // 3 x 0.1f is 0.3000000119 in float
      {7, 1e-7f, 0.000001},          // 7.0e-7 prints as 0.000001
      {16777217, 1.0f, 16777216.0},  // 2^24 + 1 has no float: it rounds to 2^24
  };
  for (const auto& [minMove, priceScale, tick] : rows) {
    Quill::ICodeProperty record = Record();
    record.MinMove = minMove;
    record.PriceScale = priceScale;
    Contracts c({{"IF2506", record}});
    SFImpl impl(&c.host.data);
    EXPECT_EQ(impl.GetDoubleProperty(kPropTickSize), tick) << "MinMove " << minMove;
    EXPECT_EQ(impl.m_dProp26, tick) << "MinMove " << minMove;
  }
}

TEST(SymbolProperties, RecordFieldsDecodedIntoProperties) {
  // Order flags: bit 0 market, bit 1 stop orders; trade flags: bit 2 or 3 short selling. Options:
  // "OT:C" call, "OS:A" American, the strike after three characters; under four fields: none.
  const struct {
    uint32_t orderFlags, tradeFlags;
    bool tradable, canMarket, canShort, canStop;
    int32_t market;
    const char* exchange;
    const char* option;
    int32_t type, style;
    double strike;
  } rows[] = {
      {0x1, 0x4, true, true, true, false, 13, "香港交易所", "OT:C|OS:A|SP:3500|X", 1, 1, 3500},
      {0x2, 0x8, false, false, true, true, 37, "", "OT:P|OS:E|SP:2.45|X", 0, 0, 2.45},
      {0x3, 0x3, true, true, false, true, 0, "上海期货交易所", "OT:C|OS:B|SP:12.5|X|Y", 1, 0, 12.5},
      {0xFFFFFFFC, 0xFFFFFFF3, false, false, false, false, -1, "", "OT:C|OS:A|K=3500|X", 1, 1, 500},
      {0x0, 0xC, true, false, true, false, 40, "", "OT:C|OS:A|SP:3500", 0, 0, 0}};
  for (const auto& row : rows) {
    Quill::ICodeProperty record = Record();
    record.OrderFlags = row.orderFlags;
    record.TradeFlags = row.tradeFlags;
    record.Tradable = row.tradable;
    record.MarketId = row.market;
    record.OptionDescriptor = row.option;
    Contracts c({{"IF2506", record}});
    CSystemFuncs& f = c.Funcs();
    EXPECT_EQ(f.CanTrade(), row.tradable) << row.option;
    EXPECT_EQ(f.CanMarketOrder(), row.canMarket) << row.option;
    EXPECT_EQ(f.CanShortTrade(), row.canShort) << row.option;
    EXPECT_EQ(f.CanStopOrder(), row.canStop) << row.option;
    EXPECT_EQ(f.ExchangeName(), row.exchange) << row.option;
    EXPECT_EQ(f.OptionType(), row.type) << row.option;
    EXPECT_EQ(f.OptionStyle(), row.style) << row.option;
    EXPECT_EQ(f.StrikePrice(), row.strike) << row.option;
  }
}

TEST(Sessions, ReadFromTheFixedWidthItemsOfTheSessionText) {
  const struct {
    std::string text;
    int32_t count, index;
    double start, end;  // hour x 0.01 + minute x 0.0001
  } rows[] = {
      {kDaySessions, 3, 1, 0.103, 0.113},
      {kDaySessions, 3, 2, 0.133, 0.15},
      {kDaySessions, 3, 3, kNoNumber, kNoNumber},
      {"09:00-10:15,10:30-11:30", 1, 1, kNoNumber, kNoNumber},  // 23 characters: one item
      {"21x00y02z30w", 1, 0, 0.21, 0.023},  // across midnight; separators are not examined
      {"ab:cd-ef:gh,", 1, 0, 0, 0},
      {"", 0, 0, kNoNumber, kNoNumber},
  };
  for (const auto& row : rows) {
    Quill::ICodeProperty record = Record();
    record.Sessions = row.text;
    Contracts c({{"IF2506", record}});
    CSystemFuncs& f = c.Funcs();
    EXPECT_EQ(f.GetSessionCount(), row.count) << row.text << " #" << row.index;
    EXPECT_DOUBLE_EQ(f.GetSessionStartTime(row.index), row.start) << row.text << " #" << row.index;
    EXPECT_DOUBLE_EQ(f.GetSessionEndTime(row.index), row.end) << row.text << " #" << row.index;
  }
  // The item texts keep what stands there, with ':' between hour and minute.
  const std::vector<TradingSession> sessions = ParseSessions("21x00y02z30wab:cd-ef:gh,");
  ASSERT_EQ(sessions.size(), 2u);
  EXPECT_EQ(sessions[0].StartText + " " + sessions[0].EndText, "21:00 02:30");
  EXPECT_EQ(sessions[1].StartText + " " + sessions[1].EndText, "ab:cd ef:gh");
}

// Expiry texts against the clock, in the tests' zone (Asia/Shanghai).
TEST(TradingDayLeft, CountsWholeDaysToTheExpiryPlusOne) {
  const int64_t noon = ShanghaiInstant(2025, 6, 19, 12);
  const struct {
    const char* expiry;
    int64_t now;
    int32_t days;
    std::string message;
  } rows[] = {
      {"2025/06/19 18:00:00", noon, 1, ""},   // later today: 6 h
      {"2025/06/21 00:00:00", noon, 2, ""},   // 36 h: 1 day + 1
      {"2025/06/20", noon, 1, ""},            // midnight, 12 h ahead
      {"2025/06/19 08:00:00", noon, 1, ""},   // passed 4 h ago: 0 + 1
      {"2025/06/17 12:00:00", noon, -1, ""},  // passed 2 days: -2 + 1
      {"2025/06/20 00:30:00", ShanghaiInstant(2025, 6, 19, 23, 30), 1, ""},  // across midnight
      // Whole seconds are compared: 0.999 s of the clock are dropped, leaving exactly 1 day.
      {"2025-06-20 12:00:00", ShanghaiInstant(2025, 6, 19, 12, 0, 0, 999), 2, ""},
      {"2025/6/20", noon, 0, ""},  // 9 characters: too short to be read at all
      {"2025.06.20", noon, 0, "数据文件的日期时间格式有误，请检查数据格式！"}};
  for (const auto& row : rows) {
    Quill::ICodeProperty record = Record();
    record.ExpiryDate = row.expiry;
    Contracts c({{"IF2506", record}});
    std::string shown;
    SysFuncsPlatform services;
    services.Now = [&row] { return row.now; };
    services.MessageBox = [&shown](const std::string& text) { shown += text; };
    ScopedPlatform platform(services);
    CSystemFuncs& f = c.Funcs();
    EXPECT_EQ(f.TradingDayLeft(), row.days) << row.expiry << " at " << row.now;
    EXPECT_EQ(shown, row.message) << row.expiry << " at " << row.now;
  }
}

// Four bars one minute apart: bar i is stamped kBase + 60 i seconds (milliseconds in the bar).
constexpr int64_t kBase = 1750000000;

Quill::IFutureRolloverValue RolloverAt(int64_t offset) {
  return {.Time = kBase + offset, .Text = "rb2410", .Value1 = 0.0, .Value2 = 0.0};
}

// The rollover points stored for a data source marked "QXRollover" whose adapter reports
// rollovers at the given seconds after kBase, as "milliseconds after kBase@bar" items, for a run
// starting at `startBar`.
std::string MatchedPoints(const std::vector<int64_t>& offsets, int32_t startBar = 0) {
  TestHost host;
  host.AddSource("rb888", EvenBars(kBase * 1000, 60000, 4));
  host.data.SourceInfos[0].Name = "QXRollover";
  host.At(0, startBar);
  FakeAdapter adapter;
  for (int64_t offset : offsets) adapter.rollovers["rb888"].push_back(RolloverAt(offset));
  ScopedAdapter scoped(&adapter);
  SFImpl impl(&host.data);
  if (host.data.Symbols->Rollovers.empty()) return "not loaded";
  std::string text;
  for (const RolloverPoint& point : host.data.Symbols->Rollovers[0]) {
    text += std::to_string(point.Time - kBase * 1000) + "@" + std::to_string(point.Bar) + " ";
  }
  return text;
}

TEST(Rollovers, EachGoesToTheFirstBarStampedAfterItAtMostOnePerBar) {
  const struct {
    const char* name;
    std::vector<int64_t> offsets;
    std::string points;
  } rows[] = {
      {"inside bar 1's window", {30}, "30000@1 "},
      {"at bar 1's time: the next bar's", {60}, "60000@2 "},
      {"at bar 0's time: bar 1's window starts there", {0}, "0@1 "},
      {"before the first bar", {-100}, "-100000@0 "},
      {"one per window, windows skipped", {10, 70, 150}, "10000@1 70000@2 150000@3 "},
      {"the second of a pair waits for the next window", {10, 60}, "10000@1 60000@2 "},
      {"one that fits no later window holds back the rest", {10, 20, 130}, "10000@1 "},
      {"at the last bar's time: left over", {180}, ""},
      {"after the last bar: left over", {170, 200}, "170000@3 "},
      {"none", {}, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(MatchedPoints(row.offsets), row.points) << row.name;
  EXPECT_EQ(MatchedPoints({30}, 2), "not loaded") << "only a run starting at bar 0 loads them";
}

TEST(Rollovers, OnlySourcesMarkedQXRolloverWithBarsAreAskedForTheSpanOfTheirBars) {
  const struct {
    std::string code;
    const char* name;
    int bars;
  } sources[] = {{"rb2410", "", 4},
                 {"hc888", "qxrollover", 4},
                 {"i888", "QXRollover ", 4},
                 {"j888", "QXRollover", 0},
                 {"rb888-ABCDEFGHIJKLMNOPQRSTUVWXYZ0123", "QXRollover", 4}};  // 36 characters
  TestHost host;
  FakeAdapter adapter;
  for (const auto& source : sources) {
    host.AddSource(source.code, EvenBars(kBase * 1000, 60000, source.bars), 1, 1, 29);
    host.data.SourceInfos.back().Name = source.name;
    adapter.rollovers[source.code.substr(0, 31)] = {RolloverAt(90)};
  }
  ScopedAdapter scoped(&adapter);
  SFImpl impl(&host.data);
  EXPECT_EQ(adapter.rolloverCalls, 1);
  EXPECT_EQ(adapter.lastKey.MarketId, 29);
  EXPECT_EQ(std::string(adapter.lastKey.Code), "rb888-ABCDEFGHIJKLMNOPQRSTUVWXY");  // cut to 31
  EXPECT_EQ(adapter.lastBeginTime, kBase * 1000);
  EXPECT_EQ(adapter.lastEndTime, (kBase + 180) * 1000);  // bar 3
  EXPECT_EQ(adapter.lastFlag, 1);
  const std::vector<std::vector<RolloverPoint>>& lists = host.data.Symbols->Rollovers;
  ASSERT_EQ(lists.size(), 5u) << "stored at the data source's index";
  for (size_t index = 0; index < 4; ++index) EXPECT_TRUE(lists[index].empty()) << index;
  ASSERT_EQ(lists[4].size(), 1u);
  EXPECT_EQ(lists[4][0].Time, (kBase + 90) * 1000);
  EXPECT_EQ(lists[4][0].Bar, 2);
  ScopedAdapter none(nullptr);
  SFImpl without(&host.data);
  EXPECT_TRUE(lists[4].empty()) << "without an adapter there is nothing to report";
}

}  // namespace
}  // namespace sysfuncs::testing
