#include "sysfuncs/SFImpl.h"

#include "contract/PropertyNumbers.h"
#include "contract/Sessions.h"
#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sysfuncs::testing {
namespace {

constexpr const char* kDaySessions = "09:00-10:15,10:30-11:30,13:30-15:00,";

// A host whose data source 0 "cu2506" has the given session and expiry texts.
struct ContractHost {
  explicit ContractHost(const std::string& sessions, const std::string& expiry = "") {
    host.AddSource("cu2506", EvenBars(0, 60000, 3));
    Quill::ICodeProperty record;
    record.MinMove = 1;
    record.PriceScale = 1.0f;
    record.Sessions = sessions;
    record.ExpiryDate = expiry;
    adapter.properties["cu2506"] = record;
  }
  TestHost host;
  FakeAdapter adapter;
  ScopedAdapter scoped{&adapter};
};

TEST(SessionParser, ReadsFixedWidthItems) {
  const struct {
    std::string text;
    std::vector<TradingSession> sessions;
  } rows[] = {
      {kDaySessions,
       {{9, 0, 10, 15, "09:00", "10:15"},
        {10, 30, 11, 30, "10:30", "11:30"},
        {13, 30, 15, 0, "13:30", "15:00"}}},
      {"09:00-10:15,10:30-11:30", {{9, 0, 10, 15, "09:00", "10:15"}}},  // 23: one whole item
      {"09:00-10:15", {}},                                              // 11: none
      {"", {}},
      {"21:00-02:30|", {{21, 0, 2, 30, "21:00", "02:30"}}},
      {"09x00y10z15w", {{9, 0, 10, 15, "09:00", "10:15"}}},  // separators are not examined
      {"ab:cd-ef:gh,", {{0, 0, 0, 0, "ab:cd", "ef:gh"}}},    // texts keep what stands there
  };
  for (const auto& row : rows) {
    const std::vector<TradingSession> sessions = ParseSessions(row.text);
    EXPECT_EQ(CountSessions(row.text), static_cast<int32_t>(row.sessions.size())) << row.text;
    ASSERT_EQ(sessions.size(), row.sessions.size()) << row.text;
    for (size_t i = 0; i < sessions.size(); ++i) {
      const TradingSession& got = sessions[i];
      const TradingSession& want = row.sessions[i];
      EXPECT_EQ(got.StartHour, want.StartHour) << row.text << " #" << i;
      EXPECT_EQ(got.StartMinute, want.StartMinute) << row.text << " #" << i;
      EXPECT_EQ(got.EndHour, want.EndHour) << row.text << " #" << i;
      EXPECT_EQ(got.EndMinute, want.EndMinute) << row.text << " #" << i;
      EXPECT_EQ(got.StartText, want.StartText) << row.text << " #" << i;
      EXPECT_EQ(got.EndText, want.EndText) << row.text << " #" << i;
    }
  }
}

TEST(SessionFunctions, CountComesFromTheSessionText) {
  const struct {
    std::string text;
    int32_t count;
  } rows[] = {{kDaySessions, 3}, {"09:00-10:15,10:30-11:30", 1}, {"", 0}};
  for (const auto& row : rows) {
    ContractHost h(row.text);
    CSystemFuncs funcs(&h.host.data);
    EXPECT_EQ(funcs.GetSessionCount(), row.count) << row.text;
  }
}

TEST(SessionFunctions, StartAndEndTimesAreHourHundredthsPlusMinuteTenThousandths) {
  ContractHost h(kDaySessions);
  CSystemFuncs funcs(&h.host.data);
  const struct {
    int32_t index;
    double start;
    double end;
  } rows[] = {
      {0, 0.09, 0.1015},  // 9 x 0.01;  10 x 0.01 + 15 x 0.0001
      {1, 0.103, 0.113},  // 10 x 0.01 + 30 x 0.0001;  11 x 0.01 + 30 x 0.0001
      {2, 0.133, 0.15},   // 13 x 0.01 + 30 x 0.0001;  15 x 0.01
  };
  for (const auto& row : rows) {
    EXPECT_DOUBLE_EQ(funcs.GetSessionStartTime(row.index), row.start) << "session " << row.index;
    EXPECT_DOUBLE_EQ(funcs.GetSessionEndTime(row.index), row.end) << "session " << row.index;
  }
  for (int32_t index : {3, 4, -1, -2147483647 - 1}) {
    EXPECT_EQ(funcs.GetSessionStartTime(index), kInvalidNumber) << "session " << index;
    EXPECT_EQ(funcs.GetSessionEndTime(index), kInvalidNumber) << "session " << index;
  }
}

TEST(SessionFunctions, ANightSessionEndsAfterMidnight) {
  ContractHost h("21:00-02:30,09:00-10:15,");
  CSystemFuncs funcs(&h.host.data);
  EXPECT_DOUBLE_EQ(funcs.GetSessionStartTime(0), 0.21);
  EXPECT_DOUBLE_EQ(funcs.GetSessionEndTime(0), 0.023);  // 2 x 0.01 + 30 x 0.0001
}

TEST(SessionFunctions, AnUnknownSymbolHasNoSessions) {
  TestHost host;
  host.AddSource("cu2506", EvenBars(0, 60000, 3));
  FakeAdapter adapter;
  ScopedAdapter scoped(&adapter);
  CSystemFuncs funcs(&host.data);
  EXPECT_EQ(funcs.GetSessionCount(), kInvalidInteger);
  EXPECT_EQ(funcs.GetSessionStartTime(0), kInvalidNumber);
  EXPECT_EQ(funcs.GetSessionEndTime(0), kInvalidNumber);
}

TEST(SessionFunctions, TheTextIsReadAnewOnEveryCall) {
  ContractHost h(kDaySessions);
  CSystemFuncs funcs(&h.host.data);
  EXPECT_DOUBLE_EQ(funcs.GetSessionStartTime(0), 0.09);
  // A list reloaded for the data source (here: replaced in the shared cache) is what counts.
  h.host.data.Symbols->Properties[0][kPropSessions].StringValue = "08:45-10:15,";
  EXPECT_DOUBLE_EQ(funcs.GetSessionStartTime(0), 0.0845);  // 8 x 0.01 + 45 x 0.0001
  EXPECT_EQ(funcs.GetSessionStartTime(1), kInvalidNumber);
}

// Expiry texts against the clock, in the tests' zone (Asia/Shanghai).
TEST(TradingDayLeft, CountsElapsedDaysToTheExpiryPlusOne) {
  const struct {
    const char* expiry;
    int64_t now;
    int32_t days;
  } rows[] = {
      {"2025/06/19 18:00:00", ShanghaiInstant(2025, 6, 19, 12), 1},   // later today: 6 h
      {"2025/06/21 00:00:00", ShanghaiInstant(2025, 6, 19, 12), 2},   // 36 h: 1 day + 1
      {"2025/06/20", ShanghaiInstant(2025, 6, 19, 12), 1},            // midnight, 12 h ahead
      {"2025/06/19 08:00:00", ShanghaiInstant(2025, 6, 19, 12), 1},   // passed 4 h ago: 0 + 1
      {"2025/06/18 00:00:00", ShanghaiInstant(2025, 6, 19, 12), 0},   // -36 h: -1.5 -> -1, + 1
      {"2025/06/17 12:00:00", ShanghaiInstant(2025, 6, 19, 12), -1},  // -48 h: -2 + 1
      // Across midnight: an expiry tomorrow one hour from now is still the first day.
      {"2025/06/20 00:30:00", ShanghaiInstant(2025, 6, 19, 23, 30), 1},
      {"2025/06/21", ShanghaiInstant(2025, 6, 19, 23, 59, 59), 2},  // 86401 s: 1 day + 1
      {"2025/06/20", ShanghaiInstant(2025, 6, 20, 0, 0, 1), 1},     // passed 1 s ago
      // Weekends count: Friday noon to Monday midnight is 2.5 days.
      {"2025/06/23", ShanghaiInstant(2025, 6, 20, 12), 3},
      // Whole seconds are compared: 0.999 s of the clock are dropped, leaving exactly 1 day.
      {"2025-06-20 12:00:00", ShanghaiInstant(2025, 6, 19, 12, 0, 0, 999), 2},
  };
  for (const auto& row : rows) {
    ContractHost h(kDaySessions, row.expiry);
    int64_t now = row.now;
    SysFuncsPlatform services;
    services.Now = [&now] { return now; };
    ScopedPlatform platform(services);
    CSystemFuncs funcs(&h.host.data);
    EXPECT_EQ(funcs.TradingDayLeft(), row.days) << row.expiry << " at " << row.now;
  }
}

TEST(TradingDayLeft, ANonDateTextGivesZero) {
  const struct {
    const char* expiry;
    bool messageShown;
  } rows[] = {
      {"", false},
      {"2025/6/20", false},  // 9 characters: too short to be read at all
      {"2025.06.20", true},  // '.' stands for ':' only
      {"not a date", true},
  };
  for (const auto& row : rows) {
    ContractHost h(kDaySessions, row.expiry);
    std::vector<std::string> messages;
    SysFuncsPlatform services;
    services.Now = [] { return ShanghaiInstant(2025, 6, 19, 12); };
    services.MessageBox = [&messages](const std::string& text) { messages.push_back(text); };
    ScopedPlatform platform(services);
    CSystemFuncs funcs(&h.host.data);
    messages.clear();
    EXPECT_EQ(funcs.TradingDayLeft(), 0) << row.expiry;
    EXPECT_EQ(messages.size(), row.messageShown ? 1u : 0u) << row.expiry;
  }
}

TEST(TradingDayLeft, AnUnknownSymbolGivesZero) {
  TestHost host;
  host.AddSource("cu2506", EvenBars(0, 60000, 3));
  FakeAdapter adapter;
  ScopedAdapter scoped(&adapter);
  CSystemFuncs funcs(&host.data);
  EXPECT_EQ(funcs.TradingDayLeft(), 0);
}

}  // namespace
}  // namespace sysfuncs::testing
