// The moving-average crossover run through qxrun on a bundled bar file, checked against a small
// computation of its own over the same CSV by the rules of a back-test: a market order fills at
// the bar's close (on the 0.01 tick already), a cross reverses the position of one lot, and the
// report run closes the last position at the last close.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace qxrun_test {
namespace {

struct Trade {
  bool IsLong = false;
  int EntryBar = 0;
  int ExitBar = 0;
  double EntryPrice = 0.0;
  double ExitPrice = 0.0;
};

struct Expected {
  std::vector<Trade> Trades;
  double NetProfit = 0.0;
  double MaxDrawdown = 0.0;
};

std::vector<double> Closes(const std::string& csv) {  // Date,Open,High,Low,Close,...
  std::vector<double> closes;
  for (const auto& row : CsvRows(csv, false)) closes.push_back(std::stod(row[4]));
  return closes;
}

double Mean(const std::vector<double>& closes, size_t bar, size_t n) {
  double sum = 0.0;
  for (size_t i = bar + 1 - n; i <= bar; ++i) sum += closes[i];
  return sum / static_cast<double>(n);
}

// Always in the market after the first cross, one lot, no costs, lot value 1.
Expected Crossover(const std::vector<double>& closes, size_t fast, size_t slow, double capital) {
  Expected expected;
  int position = 0;
  Trade open;
  double realised = capital;
  double peak = capital;
  double previous = 0.0;
  for (size_t bar = 0; bar < closes.size(); ++bar) {
    const double close = closes[bar];
    if (bar + 1 >= slow) {
      const double difference = Mean(closes, bar, fast) - Mean(closes, bar, slow);
      const bool first = bar + 1 == slow;
      const int wanted = first                                 ? position
                         : previous <= 0.0 && difference > 0.0 ? 1
                         : previous >= 0.0 && difference < 0.0 ? -1
                                                               : position;
      if (wanted != position) {
        if (position != 0) {
          open.ExitBar = static_cast<int>(bar);
          open.ExitPrice = close;
          realised += (close - open.EntryPrice) * (open.IsLong ? 1 : -1);
          expected.Trades.push_back(open);
        }
        open = Trade{wanted > 0, static_cast<int>(bar), 0, close, 0.0};
        position = wanted;
      }
      previous = difference;
    }
    const bool last = bar + 1 == closes.size();
    if (last && position != 0) {
      open.ExitBar = static_cast<int>(bar);
      open.ExitPrice = close;
      realised += (close - open.EntryPrice) * (open.IsLong ? 1 : -1);
      expected.Trades.push_back(open);
      position = 0;
    }
    const double equity =
        realised + (position == 0 ? 0.0 : (close - open.EntryPrice) * (open.IsLong ? 1 : -1));
    peak = std::max(peak, equity);
    expected.MaxDrawdown = std::min(expected.MaxDrawdown, equity - peak);
  }
  expected.NetProfit = realised - capital;
  return expected;
}

TEST(MaCrossEndToEndTest, TradesNetProfitAndDrawdownMatchAnIndependentComputation) {
  const std::string data = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-day-001.txt";
  for (const auto& [fast, slow] : {std::pair<size_t, size_t>{5, 20}, {3, 10}}) {
    SCOPED_TRACE("fast " + std::to_string(fast) + " slow " + std::to_string(slow));
    ScratchFolder folder;
    const ProcessResult result =
        RunQxrun(folder.Path(), {"run", "--data", data, "--formula", "ma_cross", "--param",
                                 "fast=" + std::to_string(fast), "--param",
                                 "slow=" + std::to_string(slow), "--out", "out", "--quiet"});
    ASSERT_EQ(result.ExitCode, 0) << result.Err;
    EXPECT_TRUE(result.Out.empty());

    const Expected expected = Crossover(Closes(ReadFile(data)), fast, slow, 1000000.0);
    ASSERT_GT(expected.Trades.size(), 5u);

    const auto trades = CsvRows(ReadFile(folder.Path() / "out/trades.csv"), false);
    ASSERT_EQ(trades.size(), expected.Trades.size());
    for (size_t i = 0; i < trades.size(); ++i) {
      SCOPED_TRACE("trade " + std::to_string(i));
      const Trade& trade = expected.Trades[i];
      EXPECT_EQ(trades[i][2], trade.IsLong ? "long" : "short");
      EXPECT_EQ(std::stoi(trades[i][3]), trade.EntryBar);
      EXPECT_NEAR(std::stod(trades[i][5]), trade.EntryPrice, 1e-6);
      EXPECT_EQ(std::stoi(trades[i][6]), trade.ExitBar);
      EXPECT_NEAR(std::stod(trades[i][8]), trade.ExitPrice, 1e-6);
    }

    const auto report = nlohmann::json::parse(ReadFile(folder.Path() / "out/report.json"));
    EXPECT_NEAR(report["figures"]["net_profit"].get<double>(), expected.NetProfit, 1e-6);
    EXPECT_NEAR(report["figures"]["max_drawdown"].get<double>(), expected.MaxDrawdown, 1e-6);
    EXPECT_EQ(report["figures"]["trades"].get<int>(), static_cast<int>(expected.Trades.size()));
    // The library's own report block agrees.
    const auto& summary = report["library_report"]["summary"];
    EXPECT_NEAR(summary["net_profit"].get<double>(), expected.NetProfit, 1e-6);
    EXPECT_NEAR(summary["max_drawdown"].get<double>(), expected.MaxDrawdown, 1e-6);

    // One equity row per bar, ending at the final equity.
    const auto equity = CsvRows(ReadFile(folder.Path() / "out/equity.csv"), false);
    ASSERT_EQ(equity.size(), Closes(ReadFile(data)).size());
    EXPECT_NEAR(std::stod(equity.back()[2]), 1000000.0 + expected.NetProfit, 1e-6);
  }
}

TEST(MaCrossEndToEndTest, ReportGoesToTheTerminalUnlessQuiet) {
  ScratchFolder folder;
  const std::string data = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-day-001.txt";
  const ProcessResult result =
      RunQxrun(folder.Path(), {"run", "--data", data, "--formula", "ma_cross"});
  ASSERT_EQ(result.ExitCode, 0) << result.Err;
  EXPECT_NE(result.Out.find("Net profit"), std::string::npos);
  EXPECT_NE(result.Out.find("Short"), std::string::npos);
  EXPECT_TRUE(result.Err.empty()) << result.Err;     // no progress bar off a terminal
  EXPECT_TRUE(FilesIn(folder.Path()).size() <= 1u);  // nothing but the profile folder
}

}  // namespace
}  // namespace qxrun_test
