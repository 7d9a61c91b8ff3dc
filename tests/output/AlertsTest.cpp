#include "sysfuncs/SystemFuncs.h"

#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace sysfuncs::testing {
namespace {

// A formula on a four-bar series with alerts switched on.
class Alerts : public ::testing::Test {
 protected:
  Alerts() {
    host.AddSource("s", EvenBars(0, 60000, 4));
    host.At(0, 0);
    funcs = std::make_unique<CSystemFuncs>(&host.data);
    host.data.AlertEnabled = true;
  }

  TestHost host;
  std::unique_ptr<CSystemFuncs> funcs;
};

TEST_F(Alerts, AnAlertIsQueuedOnlyOnTheLastBarInOutputModeZeroWhileEnabled) {
  const struct {
    int32_t outputMode;
    int32_t bar;
    bool enabled;
    const char* text;
    bool queued;
  } rows[] = {
      {0, 3, true, "cross", true},     {0, 3, true, "N/A", false},   {0, 3, true, "", true},
      {0, 2, true, "cross", false},    {0, 0, true, "cross", false}, {0, 3, false, "cross", false},
      {1, 3, true, "cross", false},    {2, 3, true, "cross", false}, {0, 3, true, "n/a", true},
      {0, 3, true, "突破 \xFF", true},
  };
  for (const auto& row : rows) {
    host.data.Alerts.clear();
    host.data.OutputMode = row.outputMode;
    host.data.AlertEnabled = row.enabled;
    host.At(0, row.bar);
    EXPECT_EQ(funcs->Alert(row.text), row.queued)
        << "mode " << row.outputMode << " bar " << row.bar << " '" << row.text << "'";
    EXPECT_EQ(host.data.Alerts,
              row.queued ? std::vector<std::string>{row.text} : std::vector<std::string>{})
        << "mode " << row.outputMode << " bar " << row.bar << " '" << row.text << "'";
    EXPECT_EQ(funcs->AlertEnabled(), row.enabled);
  }
}

TEST_F(Alerts, RepeatedTextsAllReachTheHostInCallOrder) {
  host.At(0, 3);
  host.data.Alerts = {"from the host"};
  EXPECT_TRUE(funcs->Alert("Cross"));
  EXPECT_TRUE(funcs->Alert("Cross"));
  EXPECT_TRUE(funcs->Alert("cross"));
  EXPECT_EQ(host.data.Alerts,
            (std::vector<std::string>{"from the host", "Cross", "Cross", "cross"}));
}

TEST_F(Alerts, CommentaryGrowsTheListToTheCurrentBarAndKeepsCallOrder) {
  host.sources[0].Bars = EvenBars(0, 60000, 8);
  host.At(0, 5);
  EXPECT_TRUE(funcs->Commentary("first"));
  ASSERT_EQ(host.data.Commentaries.size(), 6u);  // bar 5 with none before: six entries
  EXPECT_TRUE(host.data.Commentaries[0].empty());
  EXPECT_GE(host.data.Commentaries[5].capacity(), 10u);  // room for ten texts made at once
  EXPECT_TRUE(funcs->Commentary("N/A")) << "N/A is a text like any other here";
  EXPECT_FALSE(funcs->Commentary(""));
  EXPECT_EQ(host.data.Commentaries[5], (std::vector<std::string>{"first", "N/A"}));

  // An earlier bar is written without shrinking the list.
  host.At(0, 0);
  EXPECT_TRUE(funcs->Commentary("early"));
  EXPECT_EQ(host.data.Commentaries.size(), 6u);
  EXPECT_EQ(host.data.Commentaries[0], std::vector<std::string>{"early"});

  // Report runs and a bar before the first store nothing.
  host.data.OutputMode = 1;
  EXPECT_FALSE(funcs->Commentary("x"));
  host.data.OutputMode = 2;
  EXPECT_FALSE(funcs->Commentary("x"));
  host.data.OutputMode = 0;
  host.data.CurrentBar = -1;
  EXPECT_FALSE(funcs->Commentary("x"));
  EXPECT_EQ(host.data.Commentaries[0], std::vector<std::string>{"early"});
}

TEST_F(Alerts, SoundGoesToTheSoundServiceWhateverTheBarOrMode) {
  // The default service: a missing file plays nothing.
  EXPECT_FALSE(funcs->PlayWavSound("/nonexistent/folder/ding.wav"));
  EXPECT_FALSE(funcs->PlayWavSound(""));

  std::vector<std::string> played;
  SysFuncsPlatform services;
  services.PlaySound = [&played](const std::string& path) {
    played.push_back(path);
    return path.ends_with(".wav");
  };
  ScopedPlatform platform(services);
  host.data.OutputMode = 1;
  host.data.AlertEnabled = false;
  host.At(0, 1);
  EXPECT_TRUE(funcs->PlayWavSound("/sounds/ding.wav"));
  EXPECT_FALSE(funcs->PlayWavSound("/sounds/readme.txt"));
  EXPECT_EQ(played, (std::vector<std::string>{"/sounds/ding.wav", "/sounds/readme.txt"}));
}

TEST_F(Alerts, FormulaNameIsTheHostsName) {
  host.data.FormulaName = "均线交叉";
  EXPECT_EQ(funcs->FormulaName(), "均线交叉");
}

}  // namespace
}  // namespace sysfuncs::testing
