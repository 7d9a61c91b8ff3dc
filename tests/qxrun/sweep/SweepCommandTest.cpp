// qxrun sweep run as a person runs it: every point's row equals a separate `qxrun run` of the
// same parameters, and bad input stops it before anything is written.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace qxrun_test {
namespace {

const std::string kBars = std::string(QXRUN_SOURCE_DIR) + "/examples/data/orcl-1995-2014.txt";

// The value report.json holds for a results column: "x", or "x_long" / "x_short" of a side.
const nlohmann::json* ReportValue(const nlohmann::json& figures, const std::string& column) {
  for (const char* side : {"long", "short"}) {
    const std::string suffix = std::string("_") + side;
    if (column.size() > suffix.size() && column.ends_with(suffix)) {
      const std::string key = column.substr(0, column.size() - suffix.size());
      if (figures.contains(side) && figures[side].contains(key)) return &figures[side][key];
    }
  }
  return figures.contains(column) ? &figures[column] : nullptr;
}

TEST(SweepCommandTest, EveryPointEqualsASeparateRunOfItsParameters) {
  ScratchFolder folder;
  // 3 x 2 points minus the one that breaks fast < slow: (5,30) (5,50) (20,30) (20,50) (35,50).
  const ProcessResult sweep = RunQxrun(
      folder.Path(), {"sweep", "--data", kBars, "--formula", "ma_cross", "--param", "fast=5:35:15",
                      "--param", "slow=30:50:20", "--constraint", "fast<slow", "--jobs", "2",
                      "--objective", "net_profit", "--out", "sweep"});
  ASSERT_EQ(sweep.ExitCode, 0) << sweep.Err;
  const auto table = CsvRows(ReadFile(folder.Path() / "sweep/results.csv"));
  ASSERT_EQ(table.size(), 6u);
  const std::vector<std::string>& header = table[0];
  ASSERT_EQ(header[0], "fast");
  ASSERT_EQ(header[1], "slow");
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"5", "30"}, {"5", "50"}, {"20", "30"}, {"20", "50"}, {"35", "50"}};
  double bestProfit = -1e300;
  std::string bestPoint;
  for (size_t i = 0; i < expected.size(); ++i) {
    const std::vector<std::string>& row = table[i + 1];
    ASSERT_EQ(row.size(), header.size());
    EXPECT_EQ(row[0], expected[i].first);
    EXPECT_EQ(row[1], expected[i].second);
    const std::string out = "run" + std::to_string(i);
    const ProcessResult run =
        RunQxrun(folder.Path(),
                 {"run", "--data", kBars, "--formula", "ma_cross", "--param", "fast=" + row[0],
                  "--param", "slow=" + row[1], "--quiet", "--no-page", "--out", out});
    ASSERT_EQ(run.ExitCode, 0) << run.Err;
    const nlohmann::json report =
        nlohmann::json::parse(ReadFile(folder.Path() / out / "report.json"));
    const nlohmann::json& figures = report["figures"];
    size_t compared = 0;
    for (size_t c = 2; c < header.size(); ++c) {
      const nlohmann::json* value = ReportValue(figures, header[c]);
      ASSERT_NE(value, nullptr) << header[c];
      if (value->is_null()) {  // NaN in the report: an empty cell in the table
        EXPECT_EQ(row[c], "") << header[c];
        continue;
      }
      ASSERT_FALSE(row[c].empty()) << header[c];
      EXPECT_EQ(std::stod(row[c]), value->get<double>()) << "point " << i << ", " << header[c];
      ++compared;
    }
    EXPECT_GT(compared, 60u);
    const double profit = figures["net_profit"].get<double>();
    if (profit > bestProfit) bestProfit = profit, bestPoint = row[0] + " " + row[1];
  }
  // The terminal's first best point is the one with the largest net profit of the separate runs.
  std::istringstream lines(sweep.Out);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "Best 5 of 5 points by net_profit:");
  std::getline(lines, line);
  std::getline(lines, line);
  std::istringstream cells(line);
  std::string fast, slow;
  cells >> fast >> slow;
  EXPECT_EQ(fast + " " + slow, bestPoint);
}

TEST(SweepCommandTest, OneThreadAndTwoThreadsWriteTheSameTable) {
  ScratchFolder folder;
  std::vector<std::string> args = {
      "sweep",   "--data",        kBars,     "--formula", "ma_cross", "--param", "fast=3:30:3",
      "--param", "slow=20:60:20", "--quiet", "--random",  "12",       "--seed",  "5"};
  std::vector<std::string> one = args;
  one.insert(one.end(), {"--jobs", "1", "--out", "one"});
  std::vector<std::string> two = args;
  two.insert(two.end(), {"--jobs", "2", "--out", "two"});
  ASSERT_EQ(RunQxrun(folder.Path(), one).ExitCode, 0);
  ASSERT_EQ(RunQxrun(folder.Path(), two).ExitCode, 0);
  const std::string table = ReadFile(folder.Path() / "one/results.csv");
  EXPECT_EQ(CsvRows(table).size(), 13u);
  EXPECT_EQ(table, ReadFile(folder.Path() / "two/results.csv"));
}

TEST(SweepCommandTest, WalkForwardTakesEachTrainingWindowsBestAndJoinsTheTests) {
  ScratchFolder folder;
  const std::vector<std::string> grid = {
      "--formula",   "ma_cross",   "--param",   "fast=5:25:10", "--param", "slow=30:90:30",
      "--objective", "net_profit", "--capital", "1000",         "--quiet"};
  std::vector<std::string> args = {
      "sweep", "--data", kBars, "--walk-forward", "train=1000,test=500", "--out", "wf"};
  args.insert(args.end(), grid.begin(), grid.end());
  const ProcessResult walk = RunQxrun(folder.Path(), args);
  ASSERT_EQ(walk.ExitCode, 0) << walk.Err;
  const auto windows = CsvRows(ReadFile(folder.Path() / "wf/walkforward.csv"));
  // 5036 bars: trainings from bars 0, 500, ..., 4000 (the last one tests bars 5000-5035).
  ASSERT_EQ(windows.size(), 10u);
  const std::vector<std::string>& header = windows[0];
  ASSERT_EQ(header[8], "fast");
  ASSERT_EQ(header[10], "in_net_profit");
  EXPECT_EQ(windows[1][1], "0");
  EXPECT_EQ(windows[1][2], "999");
  EXPECT_EQ(windows[9][1], "4000");
  EXPECT_EQ(windows[9][3], "5035");

  // The first window's best point is the best of a sweep over its 1000 training bars alone.
  const std::string bars = ReadFile(kBars);
  size_t end = 0;
  for (int line = 0; line < 1001; ++line) end = bars.find('\n', end) + 1;
  folder.Write("train.csv", bars.substr(0, end));
  std::vector<std::string> plain = {"sweep", "--data", "train.csv", "--out", "plain"};
  plain.insert(plain.end(), grid.begin(), grid.end());
  ASSERT_EQ(RunQxrun(folder.Path(), plain).ExitCode, 0);
  const nlohmann::json results =
      nlohmann::json::parse(ReadFile(folder.Path() / "plain/results.json"));
  const nlohmann::json& best = results["points"][results["best"][0].get<size_t>()];
  EXPECT_EQ(std::to_string(best["params"]["fast"].get<int>()), windows[1][8]);
  EXPECT_EQ(std::to_string(best["params"]["slow"].get<int>()), windows[1][9]);
  EXPECT_EQ(std::stod(windows[1][10]), best["figures"]["net_profit"].get<double>());

  // The joined out-of-sample curve ends at the capital plus every test window's change.
  double changes = 0.0;
  for (size_t i = 1; i < windows.size(); ++i) changes += std::stod(windows[i][13]);
  std::string lastOut;
  for (const auto& row : CsvRows(ReadFile(folder.Path() / "wf/equity.csv"))) {
    if (row[0] == "out_of_sample") lastOut = row[3];
  }
  ASSERT_FALSE(lastOut.empty());
  EXPECT_NEAR(std::stod(lastOut), 1000.0 + changes, 1e-6);
}

TEST(SweepCommandTest, BadInputStopsWithOneLineAndWritesNothing) {
  const struct {
    std::vector<std::string> Args;
    const char* Says;
  } cases[] = {
      {{"--param", "fast=50:5:5"}, "--param fast: the range \"50:5:5\" is empty"},
      {{"--param", "fast=five:50:5"}, "--param fast: \"five\" is not a number"},
      {{"--param", "fast=5:50:5", "--constraint", "fast<"}, "--constraint \"fast<\": "},
      {{"--param", "fast=5:50:5", "--objective", "luck"}, "--objective: no figure \"luck\""},
      {{"--param", "fast=5"}, "--param: give at least one range"},
      {{"--param", "fast=5:10:5", "--param", "slow=5:10:5", "--constraint", "fast>slow+10"},
       "--constraint: no point of the grid satisfies them"},
      {{"--param", "fast=5:10:5", "--jobs", "0"}, "--jobs: must be positive"},
      {{"--param", "fast=5:10:5", "--param", "fast=5"}, "--param fast: both swept and fixed"},
      {{"--param", "fast=5:10:5", "--walk-forward", "train=5036,test=100"},
       "--walk-forward: the 5036 bars of"},
      {{"--param", "fast=5:10:5", "--walk-forward", "train=1x"}, "--walk-forward: "},
  };
  for (const auto& row : cases) {
    ScratchFolder folder;
    std::vector<std::string> args = {"sweep",    "--data", kBars, "--formula",
                                     "ma_cross", "--out",  "out"};
    args.insert(args.end(), row.Args.begin(), row.Args.end());
    const ProcessResult result = RunQxrun(folder.Path(), args);
    ExpectRefused(result, row.Says, folder.Path() / "out");
  }
}

}  // namespace
}  // namespace qxrun_test
