#include "support/HostBuilder.h"
#include "util/TradingDay.h"

#include <gtest/gtest.h>

namespace sysfuncs::testing {
namespace {

// Days of March 2024: 0 is Thursday 29 February, 1 a Friday, 2 a Saturday, 3 a Sunday, 4 a Monday.
int64_t Seconds(int day, int hour, int minute) {
  return ShanghaiInstant(2024, 3, day, hour, minute) / 1000;
}

TEST(TradingDay, NightSessionsBelongToTheNextWorkingDay) {
  struct Row {
    int dayA, hourA, minuteA, dayB, hourB, minuteB;
    bool same;
  } rows[] = {
      {1, 21, 5, 1, 21, 15, true},   // Friday night: both roll to Monday
      {1, 21, 5, 4, 9, 0, true},     // Friday night and Monday morning
      {2, 10, 0, 4, 9, 0, true},     // Saturday counts as Monday
      {3, 18, 0, 4, 14, 0, true},    // Sunday 18:00 + 7 h is Monday
      {4, 16, 59, 4, 17, 1, false},  // 23:59 and 00:01 after the shift
      {1, 16, 59, 4, 9, 0, false},   // Friday's day session is Friday
      {0, 17, 0, 1, 9, 0, true},     // Thursday 17:00 starts Friday
      {0, 16, 0, 1, 9, 0, false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(SameTradingDay(Seconds(row.dayA, row.hourA, row.minuteA),
                             Seconds(row.dayB, row.hourB, row.minuteB)),
              row.same)
        << row.dayA << " " << row.hourA << ":" << row.minuteA << " vs " << row.dayB << " "
        << row.hourB << ":" << row.minuteB;
  }
}

}  // namespace
}  // namespace sysfuncs::testing
