#include "util/DisplayNames.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace sysfuncs {
namespace {

TEST(DisplayNamesTest, CodeTablesGiveTheirTextsAndAFallback) {
  EXPECT_EQ(GetCurrencyText(10), "令吉");
  EXPECT_EQ(GetCurrencyText(11), "未知");  // unassigned
  EXPECT_EQ(GetCurrencyText(12), "美分");
  EXPECT_EQ(GetTradeKindText(8), "现券还券");
  EXPECT_EQ(GetTradeKindText(0), "未知");
  EXPECT_EQ(GetOrderStatusText(6), "部成部撤");
  EXPECT_EQ(GetOffsetText(7), "平仓自动");
  EXPECT_EQ(GetHedgeText(5), "未知");
  EXPECT_EQ(GetFunctionKindText(3), "公式应用");
  EXPECT_EQ(GetFunctionKindText(4), "");
  EXPECT_EQ(GetTypeName(0), "Void");
  EXPECT_EQ(GetTypeName(15), "NumericArrayRef");
  EXPECT_EQ(GetTypeName(13), "无效类型");
  // Type classes: booleans 1-3 and 11-12, numbers 4-6 and 14-15, texts 7-9 and 17-18.
  EXPECT_TRUE(IsBoolType(12) && IsNumericType(14) && IsStringType(18));
  EXPECT_FALSE(IsBoolType(10) || IsNumericType(13) || IsStringType(0));
}

TEST(DisplayNamesTest, TextsAreGbkBytes) {
  EXPECT_EQ(GetCurrencyText(0), "\xC8\xCB\xC3\xF1\xB1\xD2");                 // 人民币
  EXPECT_EQ(GetPositionText(0x0103), "\xBF\xD5\xCD\xB7(\xBB\xBB\xD4\xC2)");  // 空头(换月)
}

TEST(DisplayNamesTest, BarPeriodText) {
  const struct {
    int32_t interval;
    uint32_t barType;
    std::string expected;
  } rows[] = {
      {1, 0, "1日线"}, {120, 1, "2小时线"}, {90, 1, "90分钟线"}, {0, 1, "0分钟线"},
      {0, 2, "Tick"},  {60, 2, "60秒线"},   {100, 3, "100量线"}, {1, 4, "1周线"},
      {3, 5, "3月线"}, {1, 6, ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetBarPeriodText(row.interval, row.barType), row.expected)
        << row.interval << "/" << row.barType;
  }
  // Packed: the interval in the high word, the bar type in the low word.
  EXPECT_EQ(GetBarPeriodText((uint64_t{5} << 32) | 1), "5分钟线");
}

TEST(DisplayNamesTest, PositionAndDurationTexts) {
  EXPECT_EQ(GetPositionText(0x0000), "N/A");
  EXPECT_EQ(GetPositionText(0x0002), "多头");
  EXPECT_EQ(GetPositionText(0x0005), "N/A");
  EXPECT_EQ(GetPositionText(0x0200), "N/A(关闭)");
  EXPECT_EQ(GetPositionText(0x0401), "多头(选股)");
  EXPECT_EQ(GetPositionText(0x0301), "多头");  // an unknown marker adds nothing

  EXPECT_EQ(GetDurationText(-5), "-5毫秒");
  EXPECT_EQ(GetDurationText(999), "999毫秒");
  EXPECT_EQ(GetDurationText(59999), "59秒");
  EXPECT_EQ(GetDurationText(61500), "1分1秒");
  EXPECT_EQ(GetDurationText(3600000), "1小时0分0秒");
  EXPECT_EQ(GetDurationText(90061001), "25小时1分1秒");
}

TEST(DisplayNamesTest, NumbersAsTexts) {
  const struct {
    double value;
    std::string plain, trimmed;
    bool hasFraction;
  } rows[] = {
      {12.5, "12.50", "12.5", true},    {100, "100.00", "100", false},
      {-0.0000004, "0.00", "0", false}, {2.999, "3.00", "3", false},
      {-0.5, "-0.50", "-0.5", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FormatNumber(row.value, false), row.plain) << row.value;
    EXPECT_EQ(FormatNumber(row.value, true), row.trimmed) << row.value;
    EXPECT_EQ(HasFraction(row.value), row.hasFraction) << row.value;
  }
  EXPECT_EQ(FormatNumber(1e120, false).size(), 99u);  // the 100-byte buffer
  EXPECT_EQ(RoundToSixDecimals(0.1 + 0.2), 0.3);
  EXPECT_EQ(RoundToSixDecimals(1.23456789), 1.234568);
  const uint8_t bytes[16] = {0x00, 0x01, 0x0a, 0x10, 0x7f, 0x80, 0xab, 0xcd,
                             0xef, 0xff, 0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc};
  EXPECT_EQ(ToHex16(bytes), "00010a107f80abcdefff123456789abc");
}

TEST(DisplayNamesTest, ValuesByExactTypeAndParametersByTypeClass) {
  EXPECT_EQ(ValueToText({.type = 1, .boolValue = true}), "True");
  EXPECT_EQ(ValueToText({.type = 2, .boolValue = true}), "");  // a reference is not a value
  EXPECT_EQ(ValueToText({.type = 4, .number = 7}), "7");
  EXPECT_EQ(ValueToText({.type = 7, .text = "abc"}), "abc");
  EXPECT_EQ(ValueToText({.type = 10, .integer = -42}), "-42");
  const std::vector<TypedValue> values = {
      {.type = 1, .boolValue = true}, {.type = 4, .number = 3.14159},  {.type = 7, .text = "abc"},
      {.type = 10, .integer = 5},     {.type = 2, .boolValue = false}, {.type = 6, .number = -1.5},
      {.type = 9, .text = "x"},
  };
  EXPECT_EQ(GetParameterSuffix(values), "_true_0000003.14_abc_false_-000001.50_x");
  EXPECT_EQ(GetParameterSuffix({}), "");
}

TEST(DisplayNamesTest, SystemAndCostTexts) {
  EXPECT_EQ(GetSystemText({}), "未知系统");
  EXPECT_EQ(GetSystemText({"均线(MA)", "other"}), "均线");
  EXPECT_EQ(GetCostText({.CommissionKind = 1,
                         .CommissionRate = 2,
                         .SlippageKind = 1,
                         .Slippage = 1,
                         .OrderOffsetEnabled = true,
                         .OrderOffsetTicks = 3}),
            "手续费:每合约[2.00]点,滑点:每合约[1.00]跳,委托偏移:3跳");
  // The turnover rate keeps its doubled percent sign; slippage kind 2 reads as money.
  EXPECT_EQ(GetCostText(
                {.CommissionKind = 2, .CommissionRate = 0.03, .SlippageKind = 2, .Slippage = 0.5}),
            "手续费:成交金额[0.03%%],滑点:每合约[0.50]元,委托偏移:不启用");
}

TEST(DisplayNamesTest, IdKeys) {
  EXPECT_EQ(MakeIdKey(8, "abc"), "8|abc");
  const struct {
    std::string key;
    int32_t id;
    std::string text;
  } rows[] = {{"8|abc", 8, "abc"}, {"8", 0, ""},        {"8|a|b", 0, ""},
              {"|x", 0, "x"},      {"12ab|y", 12, "y"}, {"-5|z", -5, "z"}};
  for (const auto& row : rows) {
    const IdKey parsed = ParseIdKey(row.key);
    EXPECT_EQ(parsed.id, row.id) << row.key;
    EXPECT_EQ(parsed.text, row.text) << row.key;
  }
}

TEST(DisplayNamesTest, NormalizeSymbolCode) {
  const struct {
    std::string code, expected;
  } rows[] = {{"rb2405", "rb"},      {"SR405", "SR"}, {"IF000", "IF"},
              {"600000", "600000"},  {"rb", "rb"},    {"m2405-C-3000", "m2405-C-3000"},
              {"Au99.99", "Au99.99"}};
  for (const auto& row : rows) {
    EXPECT_EQ(NormalizeSymbolCode(0, row.code), row.expected) << row.code;
  }
}

}  // namespace
}  // namespace sysfuncs
