#include "sysfuncs/SFImpl.h"

#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sysfuncs::testing {
namespace {

// Bars one minute apart: bar i is stamped kBase + 60 i seconds.
constexpr int64_t kBase = 1750000000;  // seconds since 1970 UTC
constexpr int kBars = 4;

Quill::IFutureRolloverValue Rollover(int64_t seconds) {
  Quill::IFutureRolloverValue value;
  value.Time = seconds;
  value.Text = "rb2410";
  return value;
}

// Builds a host whose data source 0 is marked for rollovers and constructs an instance over it
// at bar 0; answers the rollover list stored for data source 0.
std::vector<RolloverPoint> LoadWith(const std::vector<int64_t>& rolloverSeconds) {
  TestHost host;
  host.AddSource("rb888", EvenBars(kBase * 1000, 60000, kBars));
  host.data.SourceInfos[0].Name = "QXRollover";
  FakeAdapter adapter;
  for (int64_t seconds : rolloverSeconds) adapter.rollovers["rb888"].push_back(Rollover(seconds));
  ScopedAdapter scoped(&adapter);
  SFImpl impl(&host.data);
  const std::vector<std::vector<RolloverPoint>>& lists = host.data.Symbols->Rollovers;
  EXPECT_EQ(lists.size(), 1u);
  return lists.empty() ? std::vector<RolloverPoint>{} : lists[0];
}

TEST(Rollovers, EachIsPlacedOnTheFirstBarStampedAfterIt) {
  struct Point {
    int64_t seconds;
    int32_t bar;
  };
  const struct {
    const char* name;
    std::vector<int64_t> rollovers;
    std::vector<Point> points;
  } rows[] = {
      {"inside bar 1's window", {kBase + 30}, {{kBase + 30, 1}}},
      {"at bar 1's time: the next bar's", {kBase + 60}, {{kBase + 60, 2}}},
      {"at bar 0's time: bar 1's window starts there", {kBase}, {{kBase, 1}}},
      {"before the first bar", {kBase - 100}, {{kBase - 100, 0}}},
      {"one per window",
       {kBase + 10, kBase + 70, kBase + 130},
       {{kBase + 10, 1}, {kBase + 70, 2}, {kBase + 130, 3}}},
      {"windows skipped", {kBase + 30, kBase + 150}, {{kBase + 30, 1}, {kBase + 150, 3}}},
      {"second of a pair fits the next window",
       {kBase + 10, kBase + 60},
       {{kBase + 10, 1}, {kBase + 60, 2}}},
      {"second of a pair fits no later window", {kBase + 10, kBase + 20}, {{kBase + 10, 1}}},
      {"a stuck rollover holds back the ones behind it",
       {kBase + 10, kBase + 20, kBase + 130},
       {{kBase + 10, 1}}},
      {"at the last bar's time: left over", {kBase + 180}, {}},
      {"after the last bar: left over", {kBase + 170, kBase + 200}, {{kBase + 170, 3}}},
      {"none", {}, {}},
  };
  for (const auto& row : rows) {
    const std::vector<RolloverPoint> points = LoadWith(row.rollovers);
    ASSERT_EQ(points.size(), row.points.size()) << row.name;
    for (size_t i = 0; i < points.size(); ++i) {
      EXPECT_EQ(points[i].Time, row.points[i].seconds * 1000) << row.name << " #" << i;
      EXPECT_EQ(points[i].Bar, row.points[i].bar) << row.name << " #" << i;
    }
  }
}

TEST(Rollovers, TheAdapterIsAskedForTheSpanOfTheBars) {
  TestHost host;
  host.AddSource("rb888", EvenBars(kBase * 1000, 60000, kBars), 1, 1, 0);
  host.data.SourceInfos[0].Name = "QXRollover";
  FakeAdapter adapter;
  ScopedAdapter scoped(&adapter);
  SFImpl impl(&host.data);
  EXPECT_EQ(adapter.rolloverCalls, 1);
  EXPECT_EQ(adapter.lastKey.MarketId, 0);
  EXPECT_EQ(std::string(adapter.lastKey.Code), "rb888");
  EXPECT_EQ(adapter.lastBeginTime, kBase * 1000);
  EXPECT_EQ(adapter.lastEndTime, (kBase + 180) * 1000);  // bar 3
  EXPECT_EQ(adapter.lastFlag, 1);
  // Nothing to report: the list is there, empty.
  ASSERT_EQ(host.data.Symbols->Rollovers.size(), 1u);
  EXPECT_TRUE(host.data.Symbols->Rollovers[0].empty());
}

TEST(Rollovers, OnlyMarkedSourcesWithBarsAreAsked) {
  const struct {
    const char* name;
    bool hasBars;
    int calls;
  } rows[] = {
      {"QXRollover", true, 1}, {"QXRollover", false, 0},
      {"qxrollover", true, 0}, {"QXRollover ", true, 0},
      {"", true, 0},
  };
  for (const auto& row : rows) {
    TestHost host;
    host.AddSource("rb888",
                   row.hasBars ? EvenBars(kBase * 1000, 60000, kBars) : std::vector<QXBar>{});
    host.data.SourceInfos[0].Name = row.name;
    FakeAdapter adapter;
    adapter.rollovers["rb888"] = {Rollover(kBase + 30)};
    ScopedAdapter scoped(&adapter);
    SFImpl impl(&host.data);
    EXPECT_EQ(adapter.rolloverCalls, row.calls) << "'" << row.name << "' bars " << row.hasBars;
    EXPECT_EQ(host.data.Symbols->Rollovers.size(), static_cast<size_t>(row.calls))
        << "'" << row.name << "' bars " << row.hasBars;
  }
}

TEST(Rollovers, ListsAreStoredAtTheirDataSourceIndex) {
  TestHost host;
  host.AddSource("rb2410", EvenBars(kBase * 1000, 60000, kBars));
  host.AddSource("hc888", EvenBars(kBase * 1000, 60000, kBars));
  host.AddSource("rb888", EvenBars(kBase * 1000, 60000, kBars));
  host.data.SourceInfos[2].Name = "QXRollover";
  FakeAdapter adapter;
  adapter.rollovers["rb888"] = {Rollover(kBase + 90)};
  adapter.rollovers["hc888"] = {Rollover(kBase + 30)};
  ScopedAdapter scoped(&adapter);
  SFImpl impl(&host.data);
  EXPECT_EQ(adapter.rolloverCalls, 1);
  const std::vector<std::vector<RolloverPoint>>& lists = host.data.Symbols->Rollovers;
  ASSERT_EQ(lists.size(), 3u);
  EXPECT_TRUE(lists[0].empty());
  EXPECT_TRUE(lists[1].empty());
  ASSERT_EQ(lists[2].size(), 1u);
  EXPECT_EQ(lists[2][0].Time, (kBase + 90) * 1000);
  EXPECT_EQ(lists[2][0].Bar, 2);
}

TEST(Rollovers, LoadedOnlyWhenTheRunStartsAtBarZero) {
  for (int32_t bar : {0, 2}) {
    TestHost host;
    host.AddSource("rb888", EvenBars(kBase * 1000, 60000, kBars));
    host.data.SourceInfos[0].Name = "QXRollover";
    host.At(0, bar);
    FakeAdapter adapter;
    adapter.rollovers["rb888"] = {Rollover(kBase + 30)};
    ScopedAdapter scoped(&adapter);
    CSystemFuncs funcs(&host.data);
    EXPECT_EQ(adapter.rolloverCalls, bar == 0 ? 1 : 0) << "bar " << bar;
    EXPECT_EQ(host.data.Symbols->Rollovers.size(), bar == 0 ? 1u : 0u) << "bar " << bar;
  }
}

TEST(Rollovers, WithoutAnAdapterEveryMarkedListIsEmpty) {
  TestHost host;
  host.AddSource("rb888", EvenBars(kBase * 1000, 60000, kBars));
  host.data.SourceInfos[0].Name = "QXRollover";
  ScopedAdapter none(nullptr);
  SFImpl impl(&host.data);
  ASSERT_EQ(host.data.Symbols->Rollovers.size(), 1u);
  EXPECT_TRUE(host.data.Symbols->Rollovers[0].empty());
}

}  // namespace
}  // namespace sysfuncs::testing
