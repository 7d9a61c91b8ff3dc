#include "qxrun/InputError.h"
#include "qxrun/sweep/PointRuns.h"
#include "qxrun/sweep/SweepResults.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace qxrun {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Rows with every figure column, the objective's column set to `values`.
std::vector<std::vector<double>> RowsWith(const Objective& objective,
                                          const std::vector<double>& values) {
  std::vector<std::vector<double>> rows;
  for (const double value : values) {
    rows.emplace_back(FigureColumns().size(), 0.0);
    rows.back()[objective.Column] = value;
  }
  return rows;
}

TEST(SweepResultsTest, PointsRankBestFirstWithMissingValuesLast) {
  const Objective sharpe = FindObjective("sharpe");
  EXPECT_FALSE(sharpe.Minimise);
  EXPECT_EQ(FigureColumns()[sharpe.Column], "sharpe");
  // Equal values keep the points' order: 1 before 3.
  EXPECT_EQ(RankPoints(RowsWith(sharpe, {0.5, 1.5, kNaN, 1.5, -2.0}), sharpe),
            (std::vector<size_t>{1, 3, 0, 4, 2}));

  const Objective drawdown = FindObjective("max_drawdown_pct");
  EXPECT_TRUE(drawdown.Minimise);
  EXPECT_EQ(RankPoints(RowsWith(drawdown, {0.3, 0.1, kNaN, 0.2}), drawdown),
            (std::vector<size_t>{1, 3, 0, 2}));
  // A side of a figure orders like the figure.
  EXPECT_TRUE(FindObjective("max_loss_streak_short").Minimise);
  EXPECT_FALSE(FindObjective("net_profit_long").Minimise);
}

TEST(SweepResultsTest, UnknownObjectiveIsRefusedListingTheFigures) {
  try {
    FindObjective("sharp");
    ADD_FAILURE() << "accepted";
  } catch (const InputError& error) {
    const std::string message = error.what();
    EXPECT_EQ(message.find("--objective: no figure \"sharp\" (figures: "), 0u) << message;
    EXPECT_NE(message.find("net_profit"), std::string::npos);
    EXPECT_EQ(message.find("net_profit_long"), std::string::npos);
  }
}

TEST(SweepResultsTest, NumbersReadBackExactly) {
  for (const double value : {0.1, 1.0 / 3.0, -1234567.891, 1e-300, 2.0}) {
    EXPECT_EQ(std::stod(ExactNumber(value)), value);
  }
  EXPECT_EQ(ExactNumber(2.0), "2");
  EXPECT_EQ(ExactNumber(kNaN), "");
}

}  // namespace
}  // namespace qxrun
