#include "sysfuncs/SFImpl.h"

#include "contract/PropertyNumbers.h"
#include "support/AllocationCounter.h"
#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace sysfuncs::testing {
namespace {

// A futures contract whose every field differs from the others, so a field read into the wrong
// entry shows.
Quill::ICodeProperty CopperRecord() {
  Quill::ICodeProperty p;
  p.MarketId = 13;  // the data sources below are on market 0: the record's market is named
  p.OrderFlags = 0x1;
  p.TradeFlags = 0x8;
  p.Tradable = true;
  p.CurrencyName = "人民币";
  p.CurrencySymbol = "￥";
  p.ExpiryDate = "2025/06/16";
  p.MaxSingleTradeSize = 500;
  p.MinMove = 10;
  p.PriceScale = 0.2f;
  p.SymbolName = "沪铜2506";
  p.SecondName = "铜";
  p.Category = 7;
  p.BidAskSize = 9;
  p.ContractUnit = 5;
  p.BigPointValue = 0.1f;
  p.MarginKind = 3;
  p.RelativeSymbol = "cu888";
  p.Sessions = "21:00-01:00,09:00-10:15,10:30-11:30,13:30-15:00,";  // 48 characters: 4 items
  p.OptionDescriptor = "OT:C|OS:A|SP:4.25|U:1";
  return p;
}

constexpr double kPriceScale = 0.20000000298023224;     // 0.2f widened
constexpr double kBigPointValue = 0.10000000149011612;  // 0.1f widened

// Two data sources: 0 "IF2506" (1-minute bars), 1 "cu2506" (15-minute bars).
struct TwoSources {
  TwoSources() {
    host.AddSource("IF2506", EvenBars(0, 60000, 3));
    host.AddSource("cu2506", EvenBars(0, 900000, 3), 1, 15);
    host.data.SourceInfos[1].MarginRatio = 0.08;
  }
  TestHost host;
  FakeAdapter adapter;
  ScopedAdapter scoped{&adapter};
};

TEST(PropertyList, EntriesComeInNumberOrderWithTheirKindAndValue) {
  TwoSources s;
  s.adapter.properties["cu2506"] = CopperRecord();
  SFImpl impl(&s.host.data);
  SymbolPropertyList list;
  ASSERT_TRUE(impl.GetSymbolPropertyList(1, list));
  ASSERT_EQ(list.size(), 33u);

  const struct {
    int32_t id;
    int32_t value;
  } ints[] = {{0, 15}, {1, 1},  {13, 500}, {14, 10}, {19, 7}, {20, 9},
              {21, 5}, {24, 3}, {28, 4},   {30, 1},  {31, 1}};
  for (const auto& row : ints) {
    EXPECT_EQ(list[row.id].Kind, 10u) << "property " << row.id;
    EXPECT_EQ(list[row.id].IntValue, row.value) << "property " << row.id;
  }
  const struct {
    int32_t id;
    double value;
  } doubles[] = {{6, 0.0},   {11, 0.0}, {12, 0.0}, {15, kPriceScale}, {22, kBigPointValue},
                 {23, 0.08}, {26, 2.0},  // 10 x 0.2f = 2.0000000298 -> 2.0f
                 {27, 5.0},  {32, 4.25}};
  for (const auto& row : doubles) {
    EXPECT_EQ(list[row.id].Kind, 4u) << "property " << row.id;
    EXPECT_EQ(list[row.id].DoubleValue, row.value) << "property " << row.id;
  }
  const struct {
    int32_t id;
    std::string value;
  } strings[] = {{7, "人民币"},
                 {8, "￥"},
                 {9, "香港交易所"},
                 {10, "2025/06/16"},
                 {16, "沪铜2506"},
                 {17, "铜"},
                 {18, "cu"},
                 {25, "cu888"},
                 {29, "21:00-01:00,09:00-10:15,10:30-11:30,13:30-15:00,"}};
  for (const auto& row : strings) {
    EXPECT_EQ(list[row.id].Kind, 7u) << "property " << row.id;
    EXPECT_EQ(list[row.id].StringValue, row.value) << "property " << row.id;
  }
  const struct {
    int32_t id;
    bool value;
  } bools[] = {{2, true}, {3, true}, {4, false}, {5, true}};
  for (const auto& row : bools) {
    EXPECT_EQ(list[row.id].Kind, 1u) << "property " << row.id;
    EXPECT_EQ(list[row.id].BoolValue, row.value) << "property " << row.id;
  }
  // Value fields other than the entry's own stay zero or empty.
  for (size_t id = 0; id < list.size(); ++id) {
    const SymbolPropertyItem& item = list[id];
    if (item.Kind != 1) {
      EXPECT_FALSE(item.BoolValue) << "property " << id;
    }
    if (item.Kind != 4) {
      EXPECT_EQ(item.DoubleValue, 0.0) << "property " << id;
    }
    if (item.Kind != 7) {
      EXPECT_EQ(item.StringValue, "") << "property " << id;
    }
    if (item.Kind != 10) {
      EXPECT_EQ(item.IntValue, 0) << "property " << id;
    }
  }
}

TEST(PropertyList, SymbolKeyCarriesMarketAndCodeCutTo31Characters) {
  const std::string longCode = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";  // 36 characters
  const std::string cut = longCode.substr(0, 31);
  TestHost host;
  host.AddSource(longCode, EvenBars(0, 60000, 3), 1, 1, 39);
  FakeAdapter adapter;
  adapter.properties[cut] = CopperRecord();
  ScopedAdapter scoped(&adapter);
  CSystemFuncs funcs(&host.data);
  EXPECT_EQ(adapter.lastKey.MarketId, 39);
  EXPECT_EQ(std::string(adapter.lastKey.Code), cut);
  EXPECT_EQ(funcs.MinMove(), 10);
}

TEST(PropertyList, TickSizeCarriesExactlySixDecimals) {
  // MinMove x PriceScale in single precision, printed with six decimals and read back.
  const struct {
    int32_t minMove;
    float priceScale;
    double tickSize;
  } rows[] = {
      {1, 0.01f, 0.01},              // 0.01f is 0.0099999998
      {1, 0.2f, 0.2},                // 0.2f is 0.2000000030
      {3, 0.1f, 0.3},                // 3 x 0.1f is 0.3000000119 in float
      {7, 1e-7f, 0.000001},          // 7.0e-7 prints as 0.000001
      {16777217, 1.0f, 16777216.0},  // 2^24 + 1 has no float: it rounds to 2^24
      {0, 0.01f, 0.0},
  };
  for (const auto& row : rows) {
    TestHost host;
    host.AddSource("cu2506", EvenBars(0, 60000, 3));
    FakeAdapter adapter;
    Quill::ICodeProperty record = CopperRecord();
    record.MinMove = row.minMove;
    record.PriceScale = row.priceScale;
    adapter.properties["cu2506"] = record;
    ScopedAdapter scoped(&adapter);
    SFImpl impl(&host.data);
    EXPECT_EQ(impl.GetDoubleProperty(kPropTickSize), row.tickSize)
        << row.minMove << " x " << row.priceScale;
    EXPECT_EQ(impl.m_dProp26, row.tickSize) << row.minMove << " x " << row.priceScale;
  }
}

TEST(PropertyList, OptionTermsComeFromTheDescriptorFields) {
  const struct {
    std::string descriptor;
    int32_t type;
    int32_t style;
    double strike;
  } rows[] = {
      {"OT:C|OS:A|SP:3500|X", 1, 1, 3500.0},
      {"OT:P|OS:E|SP:2.45|X", 0, 0, 2.45},
      {"OT:C|OS:B|SP:12.5|X|Y", 1, 0, 12.5},  // any style but "OS:A" is European
      {"OT:C|OS:A|K=3500|X", 1, 1, 500.0},    // the strike is read after three characters
      {"OT:C|OS:A|SP:|", 1, 1, 0.0},          // four fields, the last empty
      {"ot:c|os:a|SP:1|X", 0, 0, 1.0},        // the markers are compared exactly
      {"OT:C|OS:A|SP:3500", 0, 0, 0.0},       // three fields: no option
      {"", 0, 0, 0.0},
  };
  for (const auto& row : rows) {
    TestHost host;
    host.AddSource("io2506", EvenBars(0, 60000, 3));
    FakeAdapter adapter;
    Quill::ICodeProperty record = CopperRecord();
    record.OptionDescriptor = row.descriptor;
    adapter.properties["io2506"] = record;
    ScopedAdapter scoped(&adapter);
    CSystemFuncs funcs(&host.data);
    EXPECT_EQ(funcs.OptionType(), row.type) << row.descriptor;
    EXPECT_EQ(funcs.OptionStyle(), row.style) << row.descriptor;
    EXPECT_EQ(funcs.StrikePrice(), row.strike) << row.descriptor;
  }
}

TEST(PropertyList, PermissionsComeFromTheirFlagBits) {
  const struct {
    uint32_t orderFlags;
    uint32_t tradeFlags;
    bool tradable;
    bool market, shortTrade, stop, trade;
  } rows[] = {
      {0x1, 0x0, false, true, false, false, false},
      {0x2, 0x0, false, false, false, true, false},
      {0x3, 0x4, true, true, true, true, true},
      {0x0, 0x4, false, false, true, false, false},  // bit 2 alone
      {0x0, 0x8, false, false, true, false, false},  // bit 3 alone
      {0x0, 0x3, false, false, false, false, false},
      {0xFFFFFFFC, 0xFFFFFFF3, false, false, false, false, false},  // every other bit
      {0x0, 0x0, true, false, false, false, true},
  };
  for (const auto& row : rows) {
    TestHost host;
    host.AddSource("cu2506", EvenBars(0, 60000, 3));
    FakeAdapter adapter;
    Quill::ICodeProperty record = CopperRecord();
    record.OrderFlags = row.orderFlags;
    record.TradeFlags = row.tradeFlags;
    record.Tradable = row.tradable;
    adapter.properties["cu2506"] = record;
    ScopedAdapter scoped(&adapter);
    CSystemFuncs funcs(&host.data);
    const std::string label = "order " + std::to_string(row.orderFlags) + " trade " +
                              std::to_string(row.tradeFlags) + " tradable " +
                              std::to_string(row.tradable);
    EXPECT_EQ(funcs.CanMarketOrder(), row.market) << label;
    EXPECT_EQ(funcs.CanShortTrade(), row.shortTrade) << label;
    EXPECT_EQ(funcs.CanStopOrder(), row.stop) << label;
    EXPECT_EQ(funcs.CanTrade(), row.trade) << label;
  }
}

TEST(PropertyList, ExchangeNameIsTheRecordsMarketName) {
  const struct {
    int32_t marketId;
    std::string name;
  } rows[] = {{13, "香港交易所"}, {0, "上海期货交易所"}, {37, ""}, {-1, ""}};
  for (const auto& row : rows) {
    TestHost host;
    host.AddSource("cu2506", EvenBars(0, 60000, 3), 1, 1, 6);
    FakeAdapter adapter;
    Quill::ICodeProperty record = CopperRecord();
    record.MarketId = row.marketId;
    adapter.properties["cu2506"] = record;
    ScopedAdapter scoped(&adapter);
    CSystemFuncs funcs(&host.data);
    EXPECT_EQ(funcs.ExchangeName(), row.name) << "market " << row.marketId;
  }
}

TEST(PropertyList, SymbolTypeIsTheNormalisedCodeOfTheDataSource) {
  const struct {
    std::string symbol;
    std::string type;
  } rows[] = {{"rb2405", "rb"}, {"600000", "600000"}, {"IF", "IF"}, {"rb2405a", "rb2405a"}};
  for (const auto& row : rows) {
    TestHost host;
    host.AddSource(row.symbol, EvenBars(0, 60000, 3));
    FakeAdapter adapter;
    adapter.properties[row.symbol] = CopperRecord();  // its names are not the code's
    ScopedAdapter scoped(&adapter);
    CSystemFuncs funcs(&host.data);
    EXPECT_EQ(funcs.SymbolType(), row.type) << row.symbol;
  }
}

TEST(PropertyList, MarginRatioComesFromTheHostsSourceRecord) {
  TwoSources s;
  s.adapter.properties["IF2506"] = CopperRecord();
  s.adapter.properties["cu2506"] = CopperRecord();
  s.host.data.SourceInfos[0].MarginRatio = 0.12;
  CSystemFuncs funcs(&s.host.data);
  EXPECT_EQ(funcs.MarginRatio(), 0.12);
  s.host.At(1, 0);
  EXPECT_EQ(funcs.MarginRatio(), 0.08);

  s.host.data.SourceInfos.resize(1);  // no record for data source 1
  SFImpl impl(&s.host.data);
  SymbolPropertyList list;
  ASSERT_TRUE(impl.GetSymbolPropertyList(1, list));
  EXPECT_EQ(list[kPropMarginRatio].DoubleValue, 0.0);
}

TEST(PropertyList, MarginsAreZeroForAKnownSymbolAndInvalidForAnUnknownOne) {
  TwoSources s;
  s.adapter.properties["IF2506"] = CopperRecord();
  CSystemFuncs funcs(&s.host.data);
  EXPECT_EQ(funcs.InitialMargin(), 0.0);
  EXPECT_EQ(funcs.MaintenanceMargin(), 0.0);
  s.host.At(1, 0);
  EXPECT_EQ(funcs.InitialMargin(), kInvalidNumber);
  EXPECT_EQ(funcs.MaintenanceMargin(), kInvalidNumber);
}

TEST(PropertyGetters, AnUnknownSymbolAnswersTheInvalidValues) {
  TwoSources s;
  CSystemFuncs funcs(&s.host.data);
  using IntFunction = int32_t (CSystemFuncs::*)();
  using DoubleFunction = double (CSystemFuncs::*)();
  using BoolFunction = bool (CSystemFuncs::*)();
  using StringFunction = std::string (CSystemFuncs::*)();
  const struct {
    const char* name;
    IntFunction function;
  } ints[] = {{"BarInterval", &CSystemFuncs::BarInterval},
              {"BarType", &CSystemFuncs::BarType},
              {"MaxSingleTradeSize", &CSystemFuncs::MaxSingleTradeSize},
              {"Category", &CSystemFuncs::Category},
              {"BidAskSize", &CSystemFuncs::BidAskSize},
              {"OptionType", &CSystemFuncs::OptionType},
              {"OptionStyle", &CSystemFuncs::OptionStyle}};
  const struct {
    const char* name;
    DoubleFunction function;
  } doubles[] = {{"InitialMargin", &CSystemFuncs::InitialMargin},
                 {"MaintenanceMargin", &CSystemFuncs::MaintenanceMargin},
                 {"MarginRatio", &CSystemFuncs::MarginRatio},
                 {"StrikePrice", &CSystemFuncs::StrikePrice}};
  const struct {
    const char* name;
    BoolFunction function;
  } bools[] = {{"CanMarketOrder", &CSystemFuncs::CanMarketOrder},
               {"CanShortTrade", &CSystemFuncs::CanShortTrade},
               {"CanStopOrder", &CSystemFuncs::CanStopOrder},
               {"CanTrade", &CSystemFuncs::CanTrade}};
  const struct {
    const char* name;
    StringFunction function;
  } strings[] = {{"CurrencyName", &CSystemFuncs::CurrencyName},
                 {"CurrencySymbol", &CSystemFuncs::CurrencySymbol},
                 {"ExchangeName", &CSystemFuncs::ExchangeName},
                 {"ExpiredDate", &CSystemFuncs::ExpiredDate},
                 {"SymbolName", &CSystemFuncs::SymbolName},
                 {"SymbolType", &CSystemFuncs::SymbolType},
                 {"RelativeSymbol", &CSystemFuncs::RelativeSymbol}};
  for (int32_t dataIndex : {0, 1}) {
    s.host.At(dataIndex, 0);
    for (const auto& row : ints) {
      EXPECT_EQ((funcs.*row.function)(), kInvalidInteger) << row.name << " of " << dataIndex;
    }
    for (const auto& row : doubles) {
      EXPECT_EQ((funcs.*row.function)(), kInvalidNumber) << row.name << " of " << dataIndex;
    }
    for (const auto& row : bools) {
      EXPECT_FALSE((funcs.*row.function)()) << row.name << " of " << dataIndex;
    }
    for (const auto& row : strings) {
      EXPECT_EQ((funcs.*row.function)(), "") << row.name << " of " << dataIndex;
    }
  }
  for (const SymbolPropertyList& list : s.host.data.Symbols->Properties) {
    EXPECT_TRUE(list.empty()) << "nothing is cached for an unknown symbol";
  }
}

TEST(PropertyGetters, AnUnknownSymbolIsAskedAgainUntilTheAdapterKnowsIt) {
  TwoSources s;
  CSystemFuncs funcs(&s.host.data);
  EXPECT_EQ(s.adapter.propertyCalls, 1);  // data source 0 at construction
  EXPECT_EQ(funcs.SymbolName(), "");
  EXPECT_EQ(s.adapter.propertyCalls, 2);
  EXPECT_EQ(funcs.Category(), kInvalidInteger);
  EXPECT_EQ(s.adapter.propertyCalls, 3);

  s.adapter.properties["IF2506"] = CopperRecord();
  EXPECT_EQ(funcs.SymbolName(), "沪铜2506");
  EXPECT_EQ(s.adapter.propertyCalls, 4);
  EXPECT_EQ(funcs.Category(), 7);
  EXPECT_TRUE(funcs.CanTrade());
  EXPECT_EQ(s.adapter.propertyCalls, 4) << "a known symbol's list is served from the cache";
}

TEST(PropertyGetters, TheAdapterIsTakenAtTheMomentOfUse) {
  TestHost host;
  host.AddSource("cu2506", EvenBars(0, 60000, 3));
  std::unique_ptr<CSystemFuncs> funcs;
  {
    ScopedAdapter none(nullptr);  // the module is not started: construction still works
    funcs = std::make_unique<CSystemFuncs>(&host.data);
    EXPECT_EQ(funcs->SymbolName(), "");
    EXPECT_EQ(funcs->MinMove(), 1);
  }
  FakeAdapter adapter;
  adapter.properties["cu2506"] = CopperRecord();
  ScopedAdapter started(&adapter);
  EXPECT_EQ(funcs->SymbolName(), "沪铜2506");
  EXPECT_EQ(adapter.propertyCalls, 1);
}

TEST(PropertyGetters, NumbersOutsideTheListAnswerTheInvalidValues) {
  TwoSources s;
  s.adapter.properties["IF2506"] = CopperRecord();
  SFImpl impl(&s.host.data);
  for (int32_t id : {-1, 33, 1000}) {
    EXPECT_EQ(impl.GetIntProperty(id), kInvalidInteger) << id;
    EXPECT_EQ(impl.GetDoubleProperty(id), kInvalidNumber) << id;
    EXPECT_FALSE(impl.GetBoolProperty(id)) << id;
    EXPECT_EQ(impl.GetStringProperty(id), "") << id;
  }
}

TEST(PropertyGetters, CachedNumbersAndFlagsAreReadWithoutAllocating) {
  TwoSources s;
  s.adapter.properties["cu2506"] = CopperRecord();
  CSystemFuncs funcs(&s.host.data);
  s.host.At(1, 0);
  ASSERT_EQ(funcs.BigPointValue(), kBigPointValue);  // loads and caches the list

  AllocationCounter counter;
  const double bigPointValue = funcs.BigPointValue();
  const bool canTrade = funcs.CanTrade();
  const int32_t sessions = funcs.GetSessionCount();
  EXPECT_EQ(counter.Count(), 0);
  EXPECT_EQ(bigPointValue, kBigPointValue);
  EXPECT_TRUE(canTrade);
  EXPECT_EQ(sessions, 4);
}

TEST(DataSourceZero, AnUnknownSymbolKeepsTheInitialValuesEvenWhenLaterKnown) {
  TwoSources s;
  CSystemFuncs funcs(&s.host.data);
  s.adapter.properties["IF2506"] = CopperRecord();
  // The five fast functions read what construction cached; the list itself is obtained now.
  EXPECT_EQ(funcs.MinMove(), 1);
  EXPECT_EQ(funcs.PriceScale(), 1.0);
  EXPECT_EQ(funcs.ContractUnit(), 1);
  EXPECT_EQ(funcs.BigPointValue(), 1.0);
  EXPECT_EQ(funcs.ContractSize(), 1.0);
  EXPECT_EQ(funcs.BidAskSize(), 9);
}

TEST(DataSourceZero, AKnownSymbolsValuesAreCachedAtConstruction) {
  TwoSources s;
  Quill::ICodeProperty record = CopperRecord();
  record.BigPointValue = 10.0f;
  s.adapter.properties["IF2506"] = record;
  CSystemFuncs funcs(&s.host.data);
  s.adapter.properties.clear();  // nothing more is asked for these
  EXPECT_EQ(funcs.MinMove(), 10);
  EXPECT_EQ(funcs.PriceScale(), kPriceScale);
  EXPECT_EQ(funcs.ContractUnit(), 5);
  EXPECT_EQ(funcs.BigPointValue(), 10.0);
  EXPECT_EQ(funcs.ContractSize(), 0.0);  // the constant property, not the initial 1.0
  EXPECT_EQ(s.adapter.propertyCalls, 1);

  SFImpl impl(&s.host.data);
  EXPECT_EQ(impl.m_nProp24, 3);
  EXPECT_EQ(impl.m_dProp26, 2.0);       // 10 x 0.2f
  EXPECT_EQ(impl.m_dPointValue, 50.0);  // 5 units x 10.0
}

TEST(DataSourceOne, ReadsEveryFunctionThroughItsList) {
  TwoSources s;
  s.adapter.properties["cu2506"] = CopperRecord();
  CSystemFuncs funcs(&s.host.data);
  s.host.At(1, 2);
  EXPECT_EQ(funcs.BarInterval(), 15);
  EXPECT_EQ(funcs.BarType(), 1);
  EXPECT_EQ(funcs.MinMove(), 10);
  EXPECT_EQ(funcs.PriceScale(), kPriceScale);
  EXPECT_EQ(funcs.ContractUnit(), 5);
  EXPECT_EQ(funcs.BigPointValue(), kBigPointValue);
  EXPECT_EQ(funcs.ContractSize(), 0.0);
  EXPECT_EQ(funcs.MaxSingleTradeSize(), 500);
  EXPECT_EQ(funcs.Category(), 7);
  EXPECT_EQ(funcs.BidAskSize(), 9);
  EXPECT_EQ(funcs.CurrencyName(), "人民币");
  EXPECT_EQ(funcs.CurrencySymbol(), "￥");
  EXPECT_EQ(funcs.ExpiredDate(), "2025/06/16");
  EXPECT_EQ(funcs.SymbolName(), "沪铜2506");
  EXPECT_EQ(funcs.RelativeSymbol(), "cu888");
  EXPECT_EQ(funcs.StrikePrice(), 4.25);
  // Data source 0 is unknown and stays so.
  s.host.At(0, 2);
  EXPECT_EQ(funcs.BarInterval(), kInvalidInteger);
}

TEST(SymbolCache, ListsAreSharedByTheInstancesOfAHost) {
  TwoSources s;
  s.adapter.properties["IF2506"] = CopperRecord();
  s.adapter.properties["cu2506"] = CopperRecord();
  CSystemFuncs first(&s.host.data);
  s.host.At(1, 0);
  EXPECT_EQ(first.Category(), 7);
  ASSERT_EQ(s.adapter.propertyCalls, 2);

  CSystemFuncs second(&s.host.data);
  EXPECT_EQ(second.Category(), 7);
  s.host.At(0, 0);
  EXPECT_EQ(second.MinMove(), 10);
  EXPECT_EQ(s.adapter.propertyCalls, 2) << "both lists came from the shared cache";
}

TEST(SymbolCache, GrowsToTheDataSourceLoaded) {
  TwoSources s;
  s.host.AddSource("ag2506", EvenBars(0, 60000, 3));
  s.adapter.properties["ag2506"] = CopperRecord();
  SFImpl impl(&s.host.data);
  ASSERT_EQ(impl.ObtainSymbolPropertyList(1), nullptr);
  const SymbolPropertyList* list = impl.ObtainSymbolPropertyList(2);
  ASSERT_NE(list, nullptr);
  const std::vector<SymbolPropertyList>& lists = s.host.data.Symbols->Properties;
  ASSERT_EQ(lists.size(), 3u);
  EXPECT_EQ(list, &lists[2]);
  EXPECT_EQ(lists[2].size(), 33u);
  EXPECT_TRUE(lists[0].empty());
  EXPECT_TRUE(lists[1].empty());
  EXPECT_EQ(impl.ObtainSymbolPropertyList(2), list);
  EXPECT_EQ(s.adapter.propertyCalls, 3) << "0 at construction, 1 refused, 2 once";

  // The empty places left by the growth still ask the adapter.
  s.adapter.properties["IF2506"] = CopperRecord();
  EXPECT_EQ(impl.GetIntProperty(kPropCategory), 7);
  EXPECT_EQ(lists[0].size(), 33u);
}

}  // namespace
}  // namespace sysfuncs::testing
