#include "sysfuncs/HostData.h"

#include "qxrun/pool/PoolRanking.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace qxrun {
namespace {

TEST(PoolRankingTest, LargestFirstWhenFlaggedWithTiesSharingTheBestPlace) {
  // Criterion 0, flag true (descending): 7 and 7 share rank 1, 3 takes 3 (two places are
  // taken), 1 takes 4. Symbol 3 has no bar on the day and takes no rank.
  const SortValues a = {{0, {3.0, true}}};
  const SortValues b = {{0, {7.0, true}}};
  const SortValues c = {{0, {7.0, true}}};
  const SortValues e = {{0, {1.0, true}}};
  const std::vector<PoolRanks> ranks = RankPool({&a, &b, &c, nullptr, &e});
  ASSERT_EQ(ranks.size(), 5u);
  EXPECT_EQ(ranks[0], (PoolRanks{{0, 3}}));
  EXPECT_EQ(ranks[1], (PoolRanks{{0, 1}}));
  EXPECT_EQ(ranks[2], (PoolRanks{{0, 1}}));
  EXPECT_TRUE(ranks[3].empty());
  EXPECT_EQ(ranks[4], (PoolRanks{{0, 4}}));
}

TEST(PoolRankingTest, SmallestFirstWithoutTheFlagAndEachCriterionApart) {
  // Criterion 2, flag false (ascending): -1 < 0.5 < 4. Criterion 9 (descending) is given by two
  // symbols only; the third takes no rank on it.
  const SortValues a = {{2, {4.0, false}}, {9, {10.0, true}}};
  const SortValues b = {{2, {-1.0, false}}};
  const SortValues c = {{2, {0.5, false}}, {9, {20.0, true}}};
  const std::vector<PoolRanks> ranks = RankPool({&a, &b, &c});
  EXPECT_EQ(ranks[0], (PoolRanks{{2, 3}, {9, 2}}));
  EXPECT_EQ(ranks[1], (PoolRanks{{2, 1}}));
  EXPECT_EQ(ranks[2], (PoolRanks{{2, 2}, {9, 1}}));
}

TEST(PoolRankingTest, ValuesThatAreNotNumbersTakeNoRankAndLeaveNoGap) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const SortValues a = {{0, {nan, true}}};
  const SortValues b = {{0, {5.0, true}}};
  const SortValues c = {{0, {sysfuncs::kInvalidNumber, true}}};
  const SortValues d = {{0, {infinity, true}}};
  const SortValues e = {{0, {6.0, true}}};
  const std::vector<PoolRanks> ranks = RankPool({&a, &b, &c, &d, &e});
  EXPECT_TRUE(ranks[0].empty());
  EXPECT_EQ(ranks[1], (PoolRanks{{0, 2}}));
  EXPECT_TRUE(ranks[2].empty());
  EXPECT_TRUE(ranks[3].empty());
  EXPECT_EQ(ranks[4], (PoolRanks{{0, 1}}));
}

TEST(PoolRankingTest, TheFirstSymbolsFlagOrdersACriterionForAll) {
  // Symbol 0 asks for ascending order; symbol 1's contrary flag does not split the ranking.
  const SortValues a = {{0, {1.0, false}}};
  const SortValues b = {{0, {2.0, true}}};
  const std::vector<PoolRanks> ranks = RankPool({&a, &b});
  EXPECT_EQ(ranks[0], (PoolRanks{{0, 1}}));
  EXPECT_EQ(ranks[1], (PoolRanks{{0, 2}}));
  EXPECT_TRUE(RankPool({}).empty());
}

}  // namespace
}  // namespace qxrun
