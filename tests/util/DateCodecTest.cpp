#include "support/HostBuilder.h"
#include "util/DateCodec.h"

#include <gtest/gtest.h>

#include <string>

namespace sysfuncs::testing {
namespace {

TEST(DateCodec, FormulaDateAndTimeOfAnInstant) {
  const int64_t instant = ShanghaiInstant(2024, 3, 5, 9, 30, 15, 999);
  EXPECT_EQ(ToFormulaDate(instant), 20240305);
  // Milliseconds are not part of the time; the minute part is added first.
  EXPECT_EQ(ToFormulaTime(instant), 30 / 10000.0 + 9 / 100.0 + 15 / 1000000.0);
  EXPECT_EQ(ToFormulaTime(ShanghaiInstant(2024, 3, 5)), 0.0);
  EXPECT_EQ(ToFormulaTime(ShanghaiInstant(2024, 3, 5, 23, 59, 59)),
            59 / 10000.0 + 23 / 100.0 + 59 / 1000000.0);
}

TEST(DateCodec, DateTimeTextsInEveryPrecision) {
  // 1 500 000 000 999 ms is 2017-07-14 02:40:00.999 UTC, 10:40:00.999 in Shanghai.
  const int64_t instant = 1500000000999;
  struct Row {
    int32_t precision;
    bool compact;
    const char* text;
  } rows[] = {
      {1, true, "20170714 104000999"},   {1, false, "2017/07/14 10:40:00.999"},
      {2, true, "20170714 1040"},        {2, false, "2017/07/14 10:40"},
      {3, true, "20170714 10"},          {3, false, "2017/07/14 10"},
      {0, true, "20170714 104000"},      {0, false, "2017/07/14 10:40:00"},
      {7, false, "2017/07/14 10:40:00"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FormatDateTime(instant, row.precision, row.compact), row.text)
        << row.precision << " " << row.compact;
  }
  EXPECT_EQ(FormatDate(instant, true), "20170714");
  EXPECT_EQ(FormatDate(instant, false), "2017/07/14");
  EXPECT_EQ(FormatTimeOfDay(instant, true), "10:40:00.999");
  EXPECT_EQ(FormatTimeOfDay(instant, false), "10:40:00");
}

TEST(DateCodec, InstantsBefore1970FormatAsThePresentTime) {
  SysFuncsPlatform clock;
  clock.Now = [] { return int64_t{1500000000999}; };
  ScopedPlatform platform(clock);
  EXPECT_EQ(FormatDateTime(-1000, 1, false), "2017/07/14 10:40:00.999");
  EXPECT_EQ(FormatDate(-86400000, true), "20170714");
  EXPECT_EQ(FormatTimeOfDay(-1001, true), "10:40:00.999");
  // -1 ms truncates to 0 seconds: not before 1970, so it prints as itself, with the negative
  // remainder as its milliseconds.
  EXPECT_EQ(FormatDateTime(-1, 1, false), "1970/01/01 08:00:00.-01");
  EXPECT_EQ(FormatDate(-999, false), "1970/01/01");
}

// Parses while catching the message shown to the user.
struct ParseResult {
  bool ok;
  int64_t instant;
  std::string message;
};

ParseResult Parse(const std::string& text) {
  ParseResult result{false, -42, ""};
  SysFuncsPlatform box;
  box.MessageBox = [&result](const std::string& message) { result.message = message; };
  ScopedPlatform platform(box);
  result.ok = ParseDateTime(text, result.instant);
  return result;
}

TEST(DateCodec, ParsesDatesAndTimesAsLocalTime) {
  struct Row {
    const char* text;
    int64_t instant;
  } rows[] = {
      {"2025-06-20", ShanghaiInstant(2025, 6, 20)},
      {"2025/06/20", ShanghaiInstant(2025, 6, 20)},
      {"2025/06/20 15:00:00.500", ShanghaiInstant(2025, 6, 20, 15, 0, 0, 500)},
      {"2025-06-20 15:00:00", ShanghaiInstant(2025, 6, 20, 15)},
      {"  2025/6/2 9.5.7  ", ShanghaiInstant(2025, 6, 2, 9, 5, 7)},
      {"2025/06/20   08:01:02", ShanghaiInstant(2025, 6, 20, 8, 1, 2)},
      {"2025/02/30", ShanghaiInstant(2025, 3, 2)},  // out-of-range days roll over
  };
  for (const Row& row : rows) {
    const ParseResult result = Parse(row.text);
    EXPECT_TRUE(result.ok) << row.text;
    EXPECT_EQ(result.instant, row.instant) << row.text;
    EXPECT_EQ(result.message, "") << row.text;
  }
}

TEST(DateCodec, BadTextsShowTheFormatMessageAndLeaveTheInstant) {
  const char*
      texts[] = {"20250620",
                 "2025/06",
                 "1899/12/31",
                 "2025/06/20 15:00",
                 "2025/06/20 15:00:00 x",
                 "",
                 "   ",
                 "2025/06/20 1:2:3:4:5",
                 "2024020240/03/05"};  // a year whose milliseconds since 1970 overflow 64 bits
  for (const char* text : texts) {
    const ParseResult result = Parse(text);
    EXPECT_FALSE(result.ok) << '"' << text << '"';
    EXPECT_EQ(result.instant, -42) << '"' << text << '"';
    EXPECT_EQ(result.message, "数据文件的日期时间格式有误，请检查数据格式！") << '"' << text << '"';
  }
}

#if defined(SYSFUNCS_CHARSET_GB18030)
TEST(DateCodec, MessageTextIsGbkBytes) {
  // GBK of the first and last characters: 数 = CA FD, 据 = BE DD, ！ (full width) = A3 A1.
  const std::string message = Parse("bad").message;
  ASSERT_EQ(message.size(), 44u);  // 22 characters of two bytes each
  EXPECT_EQ(message.substr(0, 4), "\xCA\xFD\xBE\xDD");
  EXPECT_EQ(message.substr(42), "\xA3\xA1");
}
#endif

}  // namespace
}  // namespace sysfuncs::testing
