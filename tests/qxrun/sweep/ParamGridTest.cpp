#include "qxrun/InputError.h"
#include "qxrun/formulas/Bundled.h"
#include "qxrun/sweep/ParamGrid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace qxrun {
namespace {

// A formula description with a whole and a fractional parameter; it is never run.
FormulaInfo TestInfo() {
  FormulaInfo info;
  info.Name = "probe";
  info.Parameters = {{"fast", 5, 1, 100, true, ""},
                     {"slow", 20, 2, 300, true, ""},
                     {"ratio", 0.5, 0.0, 2.0, false, ""}};
  return info;
}

TEST(ParamGridTest, RangeGivesEveryStepUpToTheLastValue) {
  const FormulaInfo info = TestInfo();
  EXPECT_EQ(ParseAxis("fast=5:50:5", info).Values,
            (std::vector<double>{5, 10, 15, 20, 25, 30, 35, 40, 45, 50}));
  // 1.2 is not a step of 0.25 from 0.5: the last value is 1.0.
  EXPECT_EQ(ParseAxis("ratio=0.5:1.2:0.25", info).Values, (std::vector<double>{0.5, 0.75, 1.0}));
  // Ten steps of 0.1 reach 1.0 although 0.1 has no exact binary form.
  EXPECT_EQ(ParseAxis("ratio=0:1:0.1", info).Values.size(), 11u);
  EXPECT_EQ(ParseAxis("slow=7:7:3", info).Values, (std::vector<double>{7}));
  EXPECT_TRUE(IsRangeText("fast=5:50:5"));
  EXPECT_FALSE(IsRangeText("fast=5"));
}

TEST(ParamGridTest, BadRangesAreRefusedNamingTheParameter) {
  const FormulaInfo info = TestInfo();
  const struct {
    const char* Text;
    const char* Says;
  } cases[] = {
      {"fast=50:5:5", "--param fast: the range \"50:5:5\" is empty"},
      {"fast=5:50:0", "--param fast: the step of \"5:50:0\" is not positive"},
      {"fast=5:50:-5", "--param fast: the step of \"5:50:-5\" is not positive"},
      {"fast=a:50:5", "--param fast: \"a\" is not a number"},
      {"fast=5:50:", "--param fast: \"\" is not a number"},
      {"fast=5:50", "--param fast: \"5:50\" is not first:last:step"},
      {"fast=1:3:0.5", "--param fast: fast takes whole numbers"},
      {"fast=90:110:10", "--param fast: 110.000000 is outside fast's range"},
      {"width=1:3:1", "--param width: probe has no parameter width"},
  };
  for (const auto& row : cases) {
    try {
      ParseAxis(row.Text, info);
      ADD_FAILURE() << "accepted: " << row.Text;
    } catch (const InputError& error) {
      EXPECT_EQ(std::string(error.what()).find(row.Says), 0u) << error.what();
    }
  }
}

TEST(ParamGridTest, GridHoldsTheCombinationsThatSatisfyTheConstraints) {
  const FormulaInfo info = TestInfo();
  const std::vector<ParamAxis> axes = {ParseAxis("fast=5:20:5", info),
                                       ParseAxis("slow=10:20:5", info)};
  // 4 x 3 points, the last axis fastest.
  const std::vector<ParamPoint> all = GridPoints(axes, {});
  ASSERT_EQ(all.size(), 12u);
  EXPECT_EQ(all[0], (ParamPoint{5, 10}));
  EXPECT_EQ(all[1], (ParamPoint{5, 15}));
  EXPECT_EQ(all[3], (ParamPoint{10, 10}));
  EXPECT_EQ(all[11], (ParamPoint{20, 20}));
  // fast < slow keeps (5,10) (5,15) (5,20) (10,15) (10,20) (15,20).
  const std::vector<Constraint> below = {Constraint("fast<slow", {"fast", "slow"})};
  EXPECT_EQ(GridPoints(axes, below),
            (std::vector<ParamPoint>{{5, 10}, {5, 15}, {5, 20}, {10, 15}, {10, 20}, {15, 20}}));
  // Two constraints both hold: of those six, slow >= 2 fast leaves (5,10) (5,15) (5,20) (10,20).
  const std::vector<Constraint> both = {Constraint("fast<slow", {"fast", "slow"}),
                                        Constraint("slow >= 2*fast", {"fast", "slow"})};
  EXPECT_EQ(GridPoints(axes, both), (std::vector<ParamPoint>{{5, 10}, {5, 15}, {5, 20}, {10, 20}}));
  EXPECT_TRUE(GridPoints(axes, {Constraint("fast>slow+100", {"fast", "slow"})}).empty());
}

TEST(ParamGridTest, RandomPointsAreDistinctConstrainedGridPointsInGridOrder) {
  const FormulaInfo info = TestInfo();
  const std::vector<ParamAxis> axes = {ParseAxis("fast=1:40:1", info),
                                       ParseAxis("slow=2:60:2", info)};
  const std::vector<Constraint> below = {Constraint("fast<slow", {"fast", "slow"})};
  const std::vector<ParamPoint> grid = GridPoints(axes, below);
  const std::vector<ParamPoint> drawn = RandomPoints(axes, below, 50, 7);
  ASSERT_EQ(drawn.size(), 50u);
  const std::set<ParamPoint> distinct(drawn.begin(), drawn.end());
  EXPECT_EQ(distinct.size(), 50u);
  for (const ParamPoint& point : drawn) {
    EXPECT_LT(point[0], point[1]);
    EXPECT_NE(std::find(grid.begin(), grid.end(), point), grid.end());
  }
  // Grid order: the first axis never decreases, and within it the second increases.
  EXPECT_TRUE(std::is_sorted(drawn.begin(), drawn.end()));
  // The same seed draws the same points (every rank of a cluster draws alike); another seed
  // draws others.
  EXPECT_EQ(RandomPoints(axes, below, 50, 7), drawn);
  EXPECT_NE(RandomPoints(axes, below, 50, 8), drawn);
  // Asking for more points than the grid holds runs the whole grid once.
  EXPECT_EQ(RandomPoints(axes, below, 100000, 7), grid);
}

}  // namespace
}  // namespace qxrun
