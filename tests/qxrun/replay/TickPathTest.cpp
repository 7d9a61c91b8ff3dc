// The ticks that form a bar: the path made from the bar, the volume split, and the tick file.
#include "qxrun/InputError.h"
#include "qxrun/QxrunProcess.h"
#include "qxrun/replay/TickPath.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qxrun {
namespace {

QXBar Bar(int64_t time, double open, double high, double low, double close, double volume) {
  return sysfuncs::testing::MakeBar(time, open, high, low, close, volume);
}

std::vector<double> Prices(const std::vector<Tick>& ticks) {
  std::vector<double> prices;
  for (const Tick& tick : ticks) prices.push_back(tick.Price);
  return prices;
}

TEST(TickPathTest, PathVisitsTheNearerExtremeFirst) {
  struct Row {
    const char* Name;
    QXBar Bar;
    TickPathKind Kind;
    std::vector<double> Expected;
  };
  const Row rows[] = {
      // Open 10 is 1 from the low 9 and 3 from the high 13.
      {"low nearer", Bar(0, 10, 13, 9, 12, 0), TickPathKind::kNearerExtremeFirst, {10, 9, 13, 12}},
      {"high nearer", Bar(0, 12, 13, 9, 10, 0), TickPathKind::kNearerExtremeFirst, {12, 13, 9, 10}},
      // Equally far: a bar closing at or above its open visits its low first.
      {"tie, up bar", Bar(0, 11, 13, 9, 12, 0), TickPathKind::kNearerExtremeFirst, {11, 9, 13, 12}},
      {"tie, down bar",
       Bar(0, 11, 13, 9, 10, 0),
       TickPathKind::kNearerExtremeFirst,
       {11, 13, 9, 10}},
      {"fixed path", Bar(0, 10, 13, 9, 12, 0), TickPathKind::kOpenHighLowClose, {10, 13, 9, 12}},
      // Open at the high: the repeated price is one tick; close at the low likewise.
      {"open at high", Bar(0, 13, 13, 9, 9, 0), TickPathKind::kNearerExtremeFirst, {13, 9}},
      {"flat bar", Bar(0, 5, 5, 5, 5, 0), TickPathKind::kNearerExtremeFirst, {5}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Prices(TicksOfBar(row.Bar, 60000, row.Kind)), row.Expected) << row.Name;
  }
}

TEST(TickPathTest, VolumeIsSplitSoThatTheTicksAddUpToTheBar) {
  // 10 lots over 4 ticks: 3, 3, 2, 2.
  const std::vector<Tick> whole =
      TicksOfBar(Bar(0, 10, 13, 9, 12, 10), 60000, TickPathKind::kNearerExtremeFirst);
  ASSERT_EQ(whole.size(), 4U);
  EXPECT_EQ(whole[0].Volume, 3);
  EXPECT_EQ(whole[1].Volume, 3);
  EXPECT_EQ(whole[2].Volume, 2);
  EXPECT_EQ(whole[3].Volume, 2);
  // A fractional volume: equal parts, the last taking the rest.
  const std::vector<Tick> parts =
      TicksOfBar(Bar(0, 10, 13, 9, 12, 0.7), 60000, TickPathKind::kNearerExtremeFirst);
  double sum = 0.0;
  for (const Tick& tick : parts) sum += tick.Volume;
  EXPECT_EQ(sum, 0.7);
  EXPECT_DOUBLE_EQ(parts[0].Volume, 0.175);
}

TEST(TickPathTest, TicksAreSpreadOverTheBarAndEndAtItsStamp) {
  // Four ticks over a 60 s bar stamped at 600 s: 555, 570, 585, 600 s.
  const std::vector<Tick> ticks =
      TicksOfBar(Bar(600000, 10, 13, 9, 12, 4), 60000, TickPathKind::kNearerExtremeFirst);
  ASSERT_EQ(ticks.size(), 4U);
  EXPECT_EQ(ticks[0].Time, 555000);
  EXPECT_EQ(ticks[3].Time, 600000);
}

TEST(TickPathTest, FormingBarFollowsTheTicks) {
  QXBar forming = Bar(60000, 0, 0, 0, 0, 0);
  FormBar(forming, {1, 10, 2}, true);
  FormBar(forming, {2, 8, 1}, false);
  FormBar(forming, {3, 11, 4}, false);
  FormBar(forming, {4, 9, 1}, false);
  EXPECT_EQ(forming.Open, 10);
  EXPECT_EQ(forming.High, 11);
  EXPECT_EQ(forming.Low, 8);
  EXPECT_EQ(forming.Close, 9);
  EXPECT_EQ(forming.Vol, 8);
  EXPECT_EQ(forming.Time, 60000);
}

TEST(TickPathTest, TicksAreAssignedToTheBarWhoseSpanHoldsThem) {
  // Bars stamped 60 s, 120 s, 180 s, a period of 60 s; replay from the second bar.
  const std::vector<QXBar> bars = {Bar(60000, 1, 1, 1, 1, 0), Bar(120000, 1, 1, 1, 1, 0),
                                   Bar(180000, 1, 1, 1, 1, 0)};
  const std::vector<Tick> ticks = {
      {30000, 1, 1}, {60000, 1, 1}, {60001, 2, 1}, {120000, 3, 1}, {150000, 4, 1}};
  const std::vector<std::vector<Tick>> perBar = AssignTicks(ticks, bars, 1, 60000, "t.csv");
  ASSERT_EQ(perBar.size(), 2U);
  EXPECT_EQ(Prices(perBar[0]), (std::vector<double>{2, 3}));  // the first two belong to history
  EXPECT_EQ(Prices(perBar[1]), (std::vector<double>{4}));
}

TEST(TickPathTest, BadTicksAreNamed) {
  // Bars at 60 s, 300 s and 600 s with a 60 s period: (240, 300] and (540, 600] are the spans
  // of the bars replayed.
  const std::vector<QXBar> bars = {Bar(60000, 1, 1, 1, 1, 0), Bar(300000, 1, 1, 1, 1, 0),
                                   Bar(600000, 1, 1, 1, 1, 0)};
  struct Row {
    const char* Name;
    std::vector<Tick> Ticks;
    const char* Message;
  };
  const Row rows[] = {
      {"in the gap", {{250000, 1, 1}, {400000, 1, 1}}, "lies outside its bar"},
      {"after the last bar",
       {{250000, 1, 1}, {600000, 1, 1}, {700000, 1, 1}},
       "after the last bar"},
      {"a bar without ticks", {{250000, 1, 1}}, "no tick for the bar"},
  };
  for (const Row& row : rows) {
    try {
      AssignTicks(row.Ticks, bars, 1, 60000, "t.csv");
      ADD_FAILURE() << row.Name << ": no error";
    } catch (const InputError& error) {
      EXPECT_NE(std::string(error.what()).find(row.Message), std::string::npos)
          << row.Name << ": " << error.what();
      EXPECT_EQ(std::string(error.what()).rfind("t.csv: ", 0), 0U) << row.Name;
    }
  }
}

TEST(TickPathTest, TickFileIsReadAndItsOrderChecked) {
  qxrun_test::ScratchFolder folder;
  const auto good = folder.Write("good.csv",
                                 "date,time,price,volume\n2006-01-04,09:00:01.500,3500.2,3\n"
                                 "2006-01-04,09:00:02,3500.4,1\n");
  const std::vector<Tick> ticks = LoadTickFile(good);
  ASSERT_EQ(ticks.size(), 2U);
  EXPECT_EQ(ticks[1].Time - ticks[0].Time, 500);
  EXPECT_EQ(ticks[0].Price, 3500.2);
  EXPECT_EQ(ticks[1].Volume, 1);

  const auto backwards =
      folder.Write("backwards.csv", "2006-01-04,09:00:02,3500.2,3\n2006-01-04,09:00:01,3500.4,1\n");
  try {
    LoadTickFile(backwards);
    ADD_FAILURE() << "no error";
  } catch (const InputError& error) {
    const std::string what = error.what();
    EXPECT_NE(what.find("backwards.csv:2: time:"), std::string::npos) << what;
    EXPECT_NE(what.find("time order"), std::string::npos) << what;
  }
  const auto badPrice = folder.Write("price.csv", "2006-01-04,09:00:02,abc,3\n");
  EXPECT_THROW(LoadTickFile(badPrice), InputError);
}

}  // namespace
}  // namespace qxrun
