#include "util/DisplayNames.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace sysfuncs {
namespace {

// Type ids used below: 1 Bool, 2 BoolRef, 4 Numeric, 5 NumericRef, 6 NumericSeries, 7 String,
// 8 StringRef, 9 StringSeries, 10 Integer.

TEST(DisplayNamesTest, CodeTablesGiveTheirTextsAndAFallback) {
  using Lookup = std::string (*)(int64_t);
  const Lookup currency = [](int64_t c) { return GetCurrencyText(static_cast<uint32_t>(c)); };
  const Lookup tradeKind = [](int64_t c) { return GetTradeKindText(static_cast<int32_t>(c)); };
  const Lookup status = [](int64_t c) { return GetOrderStatusText(static_cast<int32_t>(c)); };
  const Lookup offset = [](int64_t c) { return GetOffsetText(static_cast<int32_t>(c)); };
  const Lookup hedge = [](int64_t c) { return GetHedgeText(static_cast<uint32_t>(c)); };
  const Lookup functionKind = [](int64_t c) {
    return GetFunctionKindText(static_cast<int32_t>(c));
  };
  const Lookup typeName = [](int64_t c) { return GetTypeName(static_cast<uint32_t>(c)); };
  const struct {
    const char* family;
    Lookup lookup;
    int64_t code;
    std::string expected;
  } rows[] = {
      {"currency", currency, 0, "人民币"},
      {"currency", currency, 8, "瑞士法郎"},
      {"currency", currency, 10, "令吉"},
      {"currency", currency, 11, "未知"},  // unassigned
      {"currency", currency, 12, "美分"},
      {"currency", currency, 13, "未知"},
      {"trade kind", tradeKind, 1, "买入"},
      {"trade kind", tradeKind, 8, "现券还券"},
      {"trade kind", tradeKind, 0, "未知"},
      {"trade kind", tradeKind, 9, "未知"},
      {"order status", status, 1, "发送中"},
      {"order status", status, 6, "部成部撤"},
      {"order status", status, 7, "已撤单"},
      {"order status", status, 8, "未知"},
      {"offset", offset, 1, "开仓"},
      {"offset", offset, 7, "平仓自动"},
      {"offset", offset, 0, "未知"},
      {"hedge", hedge, 1, "投机"},
      {"hedge", hedge, 4, "做市商"},
      {"hedge", hedge, 5, "未知"},
      {"function kind", functionKind, 2, "用户函数"},
      {"function kind", functionKind, 3, "公式应用"},
      {"function kind", functionKind, 1, ""},
      {"function kind", functionKind, 4, ""},
      {"type", typeName, 0, "Void"},
      {"type", typeName, 3, "BoolSeries"},
      {"type", typeName, 10, "Integer"},
      {"type", typeName, 11, "BoolArray"},
      {"type", typeName, 15, "NumericArrayRef"},
      {"type", typeName, 18, "StringArrayRef"},
      {"type", typeName, 13, "无效类型"},
      {"type", typeName, 16, "无效类型"},
      {"type", typeName, 19, "无效类型"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.lookup(row.code), row.expected) << row.family << " " << row.code;
  }
}

TEST(DisplayNamesTest, TextsAreGbkBytes) {
  EXPECT_EQ(GetCurrencyText(0), "\xC8\xCB\xC3\xF1\xB1\xD2");                 // 人民币
  EXPECT_EQ(GetHedgeText(0), "\xCE\xB4\xD6\xAA");                            // 未知
  EXPECT_EQ(GetPositionText(0x0103), "\xBF\xD5\xCD\xB7(\xBB\xBB\xD4\xC2)");  // 空头(换月)
  EXPECT_EQ(GetBarPeriodText(60, 1), "1\xD0\xA1\xCA\xB1\xCF\xDF");           // 1小时线
}

TEST(DisplayNamesTest, TypeClassesCoverScalarRefSeriesAndArrayForms) {
  enum Class { kNone, kBool, kNumeric, kString };
  const Class expected[] = {kNone,    kBool,    kBool,   kBool,   kNumeric, kNumeric, kNumeric,
                            kString,  kString,  kString, kNone,   kBool,    kBool,    kNone,
                            kNumeric, kNumeric, kNone,   kString, kString,  kNone};
  for (uint32_t id = 0; id < std::size(expected); ++id) {
    EXPECT_EQ(IsBoolType(id), expected[id] == kBool) << "id " << id;
    EXPECT_EQ(IsNumericType(id), expected[id] == kNumeric) << "id " << id;
    EXPECT_EQ(IsStringType(id), expected[id] == kString) << "id " << id;
  }
}

TEST(DisplayNamesTest, BarPeriodText) {
  const struct {
    int32_t interval;
    uint32_t barType;
    std::string expected;
  } rows[] = {
      {1, 0, "1日线"},     {60, 1, "1小时线"}, {120, 1, "2小时线"},   {90, 1, "90分钟线"},
      {30, 1, "30分钟线"}, {0, 1, "0分钟线"},  {-60, 1, "-60分钟线"}, {0, 2, "Tick"},
      {5, 2, "5秒线"},     {60, 2, "60秒线"},  {100, 3, "100量线"},   {1, 4, "1周线"},
      {3, 5, "3月线"},     {1, 6, ""},         {1, 0xFFFFFFFF, ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetBarPeriodText(row.interval, row.barType), row.expected)
        << row.interval << "/" << row.barType;
  }
}

TEST(DisplayNamesTest, PackedBarPeriodHasTheIntervalInTheHighWord) {
  EXPECT_EQ(GetBarPeriodText((uint64_t{5} << 32) | 1), "5分钟线");  // swapped would be "1月线"
  EXPECT_EQ(GetBarPeriodText((uint64_t{120} << 32) | 1), "2小时线");
  EXPECT_EQ(GetBarPeriodText(uint64_t{2}), "Tick");
  EXPECT_EQ(GetBarPeriodText((uint64_t{0xFFFFFFFB} << 32) | 3), "-5量线");
}

TEST(DisplayNamesTest, PositionText) {
  const struct {
    uint32_t code;
    std::string expected;
  } rows[] = {
      {0x0000, "N/A"},        {0x0001, "多头"}, {0x0002, "多头"},       {0x0003, "空头"},
      {0x0004, "空头"},       {0x0005, "N/A"},  {0x0103, "空头(换月)"}, {0x0200, "N/A(关闭)"},
      {0x0401, "多头(选股)"}, {0x0301, "多头"}, {0x0801, "多头"},       {0x010201, "多头(关闭)"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetPositionText(row.code), row.expected) << std::hex << row.code;
  }
}

TEST(DisplayNamesTest, DurationTextTruncatesToWholeUnits) {
  const struct {
    int64_t ms;
    std::string expected;
  } rows[] = {
      {-5, "-5毫秒"},
      {0, "0毫秒"},
      {999, "999毫秒"},
      {1000, "1秒"},
      {59999, "59秒"},
      {60000, "1分0秒"},
      {61500, "1分1秒"},
      {3599999, "59分59秒"},
      {3600000, "1小时0分0秒"},
      {90061001, "25小时1分1秒"},
      {360000000000000, "100000000小时0分0秒"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetDurationText(row.ms), row.expected) << row.ms;
  }
}

TEST(DisplayNamesTest, FormatNumberAndHasFraction) {
  const struct {
    double value;
    std::string plain;
    std::string trimmed;
    bool hasFraction;
  } rows[] = {
      {12.5, "12.50", "12.5", true},
      {3, "3.00", "3", false},
      {100, "100.00", "100", false},  // zeros left of the point stay
      {0.0000004, "0.00", "0", false},
      {-0.0000004, "0.00", "0", false},  // not "-0.00"
      {0.004, "0.00", "0", false},
      {0.01, "0.01", "0.01", true},
      {-0.5, "-0.50", "-0.5", true},
      {2.999, "3.00", "3", false},
      {-1234567.891, "-1234567.89", "-1234567.89", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FormatNumber(row.value, false), row.plain) << row.value;
    EXPECT_EQ(FormatNumber(row.value, true), row.trimmed) << row.value;
    EXPECT_EQ(HasFraction(row.value), row.hasFraction) << row.value;
  }
  // 1e120 prints as 121 digits and ".00"; the 100-byte buffer keeps the first 99 characters.
  EXPECT_EQ(FormatNumber(1e120, false).size(), 99u);
}

TEST(DisplayNamesTest, ValueToTextTakesExactTypeIds) {
  const struct {
    TypedValue value;
    std::string expected;
  } rows[] = {
      {{.type = 1, .boolValue = true}, "True"}, {{.type = 1, .boolValue = false}, "False"},
      {{.type = 2, .boolValue = true}, ""},     {{.type = 4, .number = 12.5}, "12.5"},
      {{.type = 4, .number = 7}, "7"},          {{.type = 6, .number = 12.5}, ""},
      {{.type = 7, .text = "abc"}, "abc"},      {{.type = 8, .text = "abc"}, ""},
      {{.type = 10, .integer = -42}, "-42"},    {{.type = 0, .integer = 5}, ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ValueToText(row.value), row.expected) << "type " << row.value.type;
  }
}

TEST(DisplayNamesTest, ParameterSuffixTakesTypeClassesInOrder) {
  const std::vector<TypedValue> values = {
      {.type = 1, .boolValue = true},
      {.type = 4, .number = 3.14159},
      {.type = 7, .text = "abc"},
      {.type = 10, .integer = 5},
      {.type = 0},
      {.type = 2, .boolValue = false},
      {.type = 6, .number = -1.5},
      {.type = 9, .text = "x"},
      {.type = 5, .number = 12345678.9},
  };
  EXPECT_EQ(GetParameterSuffix(values), "_true_0000003.14_abc_false_-000001.50_x_12345678.90");
  EXPECT_EQ(GetParameterSuffix({}), "");
}

TEST(DisplayNamesTest, SystemText) {
  EXPECT_EQ(GetSystemText({}), "未知系统");
  EXPECT_EQ(GetSystemText({"均线(MA)", "other"}), "均线");
  EXPECT_EQ(GetSystemText({"a(b(c)"}), "a");
  EXPECT_EQ(GetSystemText({"Trend", "x(y)"}), "Trend");
  EXPECT_EQ(GetSystemText({"(MA)"}), "");
}

TEST(DisplayNamesTest, CostText) {
  const struct {
    CostSetting cost;
    std::string expected;
  } rows[] = {
      {{.CommissionKind = 1,
        .CommissionRate = 2,
        .SlippageKind = 1,
        .Slippage = 1,
        .OrderOffsetEnabled = true,
        .OrderOffsetTicks = 3},
       "手续费:每合约[2.00]点,滑点:每合约[1.00]跳,委托偏移:3跳"},
      // The turnover rate keeps its doubled percent sign.
      {{.CommissionKind = 2, .CommissionRate = 0.03, .Slippage = 0.5},
       "手续费:成交金额[0.03%%],滑点:每合约[0.50]元,委托偏移:不启用"},
      {{.CommissionKind = 0,
        .CommissionRate = 5,
        .SlippageKind = 2,
        .Slippage = 2,
        .OrderOffsetTicks = 4},
       "手续费:每合约[5.00]元,滑点:每合约[2.00]元,委托偏移:不启用"},
      {{.CommissionKind = 7,
        .CommissionRate = 1.255,
        .OrderOffsetEnabled = true,
        .OrderOffsetTicks = -2},
       "手续费:每合约[1.25]元,滑点:每合约[0.00]元,委托偏移:-2跳"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetCostText(row.cost), row.expected) << row.expected;
  }
}

TEST(DisplayNamesTest, IdKeys) {
  EXPECT_EQ(MakeIdKey(8, "abc"), "8|abc");
  EXPECT_EQ(MakeIdKey(-3, ""), "-3|");
  const struct {
    std::string key;
    int32_t id;
    std::string text;
  } rows[] = {
      {"8|abc", 8, "abc"}, {"8", 0, ""},  {"8|a|b", 0, ""},  {"|x", 0, "x"}, {"12ab|y", 12, "y"},
      {"x|y", 0, "y"},     {"8|", 8, ""}, {"-5|z", -5, "z"}, {"", 0, ""},    {"a||b", 0, ""},
  };
  for (const auto& row : rows) {
    const IdKey parsed = ParseIdKey(row.key);
    EXPECT_EQ(parsed.id, row.id) << row.key;
    EXPECT_EQ(parsed.text, row.text) << row.key;
  }
}

TEST(DisplayNamesTest, RoundToSixDecimals) {
  EXPECT_EQ(RoundToSixDecimals(1.23456789), 1.234568);
  EXPECT_EQ(RoundToSixDecimals(0.1 + 0.2), 0.3);
  EXPECT_EQ(RoundToSixDecimals(-2.0000004), -2.0);
  EXPECT_EQ(RoundToSixDecimals(0.0000004), 0.0);
}

TEST(DisplayNamesTest, ToHex16IsLowercaseTwoDigitsPerByte) {
  const uint8_t bytes[16] = {0x00, 0x01, 0x0a, 0x10, 0x7f, 0x80, 0xab, 0xcd,
                             0xef, 0xff, 0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc};
  EXPECT_EQ(ToHex16(bytes), "00010a107f80abcdefff123456789abc");
}

TEST(DisplayNamesTest, NormalizeSymbolCode) {
  const struct {
    std::string code;
    std::string expected;
  } rows[] = {
      {"rb2405", "rb"},
      {"IF2406", "IF"},
      {"SR405", "SR"},
      {"rb888", "rb"},
      {"rb999", "rb"},
      {"IF000", "IF"},
      {"600000", "600000"},
      {"rb", "rb"},
      {"", ""},
      {"m2405-C-3000", "m2405-C-3000"},
      {"Au99.99", "Au99.99"},
      {"rb2405.SHFE", "rb2405.SHFE"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(NormalizeSymbolCode(0, row.code), row.expected) << row.code;
  }
}

}  // namespace
}  // namespace sysfuncs
