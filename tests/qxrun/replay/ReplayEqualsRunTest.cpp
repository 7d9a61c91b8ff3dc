// A replay whose bars all end on their close writes the same ledgers, trades, equity curve and
// report as a back-test over the same bars.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using qxrun_test::ReadFile;
using qxrun_test::RunQxrun;
using qxrun_test::ScratchFolder;

const std::string kData = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-min-005.txt";
const std::string kConfig = std::string(QXRUN_SOURCE_DIR) + "/examples/data/index-future.json";

// Short averages: the crossover enters and exits every few bars, and a bar evaluated anew on its
// ticks crosses back and forth.
const std::vector<std::string> kFormula = {"--formula", "ma_cross", "--param",
                                           "fast=2",    "--param",  "slow=3"};

std::vector<std::string> With(std::vector<std::string> args, const std::vector<std::string>& more) {
  args.insert(args.end(), more.begin(), more.end());
  return args;
}

TEST(ReplayEqualsRunTest, EveryFileOfTheRunIsWrittenAlikeByTheReplay) {
  ScratchFolder folder;
  const std::vector<std::string> common =
      With({"--data", kData, "--config", kConfig, "--no-page", "--quiet"}, kFormula);
  const qxrun_test::ProcessResult run =
      RunQxrun(folder.Path(), With(With({"run"}, common), {"--out", "run"}));
  ASSERT_EQ(run.ExitCode, 0) << run.Err;
  struct Row {
    const char* Name;
    std::vector<std::string> Args;
  };
  const Row rows[] = {
      {"nearer", {"--last", "120", "--out", "nearer"}},
      {"ohlc", {"--last", "120", "--path", "ohlc", "--out", "ohlc"}},
      {"from a date", {"--from", "2006-01-27", "--out", "from"}},
  };
  for (const Row& row : rows) {
    const qxrun_test::ProcessResult replay =
        RunQxrun(folder.Path(), With(With({"replay"}, common), row.Args));
    ASSERT_EQ(replay.ExitCode, 0) << row.Name << ": " << replay.Err;
    const std::string out = row.Args[row.Args.size() - 1];
    for (const char* file :
         {"report.json", "equity.csv", "trades.csv", "orders.csv", "plots.csv"}) {
      const std::string expected = ReadFile(folder.Path() / "run" / file);
      ASSERT_FALSE(expected.empty()) << file;
      EXPECT_TRUE(ReadFile(folder.Path() / out / file) == expected) << row.Name << ": " << file;
    }
  }
}

TEST(ReplayEqualsRunTest, ReplayMayStartOnTheFirstBar) {
  ScratchFolder folder;
  // The first 30 bars of the file only: a replay from its first bar on.
  const std::string head = [] {
    const std::string all = ReadFile(kData);
    size_t end = 0;
    for (int line = 0; line < 31; ++line) end = all.find('\n', end) + 1;
    return all.substr(0, end);
  }();
  const auto file = folder.Write("head.txt", head);
  const std::vector<std::string> common =
      With({"--data", file.string(), "--config", kConfig, "--no-page", "--quiet"}, kFormula);
  ASSERT_EQ(RunQxrun(folder.Path(), With(With({"run"}, common), {"--out", "run"})).ExitCode, 0);
  const qxrun_test::ProcessResult replay =
      RunQxrun(folder.Path(), With(With({"replay"}, common), {"--last", "30", "--out", "all"}));
  ASSERT_EQ(replay.ExitCode, 0) << replay.Err;
  for (const char* name : {"report.json", "equity.csv", "trades.csv", "orders.csv"}) {
    EXPECT_TRUE(ReadFile(folder.Path() / "all" / name) == ReadFile(folder.Path() / "run" / name))
        << name;
  }
}

}  // namespace
