// Live orders end to end: named accounts in one store, cancellations from the formula, the broker
// files and the live markers of the page.
#include "qxrun/QxrunProcess.h"
#include "qxrun/report/PageBuilder.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qxrun {
namespace {

using qxrun_test::CsvRows;
using qxrun_test::ReadFile;

TEST(LiveOrdersTest, AccountsAreSeparateAndOrdersAreCancelledAndFilled) {
  qxrun_test::ScratchFolder folder;
  const std::string data = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-min-005.txt";
  const auto config = folder.Write("if.json", R"({"symbols": [{"code": "IF888",
      "min_move": 2, "price_scale": 0.1, "big_point_value": 300}]})");
  auto replay = [&](const std::string& account, const std::string& deposit,
                    const std::string& out) {
    return qxrun_test::RunQxrun(
        folder.Path(), {"replay", "--data", data, "--config", config.string(), "--formula",
                        "live_quotes", "--param", "every=5", "--last", "100", "--account", account,
                        "--deposit", deposit, "--no-page", "--out", out});
  };
  const qxrun_test::ProcessResult first = replay("alice", "2000000", "a");
  ASSERT_EQ(first.ExitCode, 0) << first.Err;
  const qxrun_test::ProcessResult second = replay("bob", "1500000", "b");
  ASSERT_EQ(second.ExitCode, 0) << second.Err;
  for (const char* out : {"a", "b"}) {
    const auto orders = CsvRows(ReadFile(folder.Path() / out / "broker-orders.csv"), false);
    const auto fills = CsvRows(ReadFile(folder.Path() / out / "fills.csv"), false);
    ASSERT_GE(orders.size(), 10U) << out;
    int cancelled = 0;
    int filledLots = 0;
    for (const auto& row : orders) {
      ASSERT_EQ(row.size(), 14U) << out;
      EXPECT_EQ(row[3], std::string(out) == "a" ? "alice" : "bob");
      if (row[9] == "cancelled" && row[12] == "cancelled") ++cancelled;  // not expired
      filledLots += std::stoi(row[10]);
    }
    // The formula cancels what is still working when its turn comes again.
    EXPECT_GT(cancelled, 0) << out;
    int fillLots = 0;
    for (const auto& row : fills) fillLots += std::stoi(row[8]);
    EXPECT_EQ(fillLots, filledLots) << out;
  }
  // Bob's account started at 1500000: the second replay reports its own money, not Alice's.
  EXPECT_NE(second.Out.find("paper account bob: "), std::string::npos) << second.Out;
  EXPECT_EQ(second.Out.find("equity 2"), std::string::npos) << second.Out;
  // A third replay for an account the store does not hold, without a deposit, is refused.
  const qxrun_test::ProcessResult unknown = qxrun_test::RunQxrun(
      folder.Path(), {"replay", "--data", data, "--config", config.string(), "--formula",
                      "live_quotes", "--last", "5", "--account", "carol"});
  EXPECT_EQ(unknown.ExitCode, 2);
  EXPECT_NE(unknown.Err.find("the store holds: alice, bob"), std::string::npos) << unknown.Err;
}

TEST(LiveOrdersTest, PageMarksLiveOrdersOnTheBarThatHoldsThem) {
  std::vector<QXDataSource> sources(1);
  sources[0].Bars = {sysfuncs::testing::MakeBar(300000, 1, 1, 1, 1),
                     sysfuncs::testing::MakeBar(600000, 1, 1, 1, 1)};
  CQXBaseData data;
  data.DataSources = &sources;
  data.Account = new StrategyAccount;
  data.Ledgers.resize(1);
  RunHeading heading;
  RunFigures figures;
  // Stamped at the end of their bars: 400 s belongs to the bar stamped 600 s, 300 s to the first.
  const PageData page = BuildPageData(heading, figures, data,
                                      {{400000, true, 1.5, 2, "live buy 2"},
                                       {300000, false, 1.2, 1, "live sell 1"},
                                       {700000, true, 1.0, 1, "after the last bar"}});
  ASSERT_EQ(page.Markers.size(), 2U);
  EXPECT_EQ(page.Markers[0].Kind, MarkerKind::kLiveSell);
  EXPECT_EQ(page.Markers[0].Time, page.Candles[0].Time);
  EXPECT_EQ(page.Markers[1].Kind, MarkerKind::kLiveBuy);
  EXPECT_EQ(page.Markers[1].Time, page.Candles[1].Time);
  EXPECT_EQ(page.Markers[1].Text, "live buy 2");
}

}  // namespace
}  // namespace qxrun
