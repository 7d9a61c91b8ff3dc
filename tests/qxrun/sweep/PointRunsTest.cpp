#include "qxrun/sweep/PointRuns.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace qxrun {
namespace {

TEST(PointRunsTest, GuidedChunksCoverEveryPointOnceInShrinkingChunks) {
  const struct {
    int64_t Total;
    int64_t Workers;
  } cases[] = {{1, 1}, {2, 2}, {3, 8}, {40, 2}, {190, 4}, {3363, 2}, {3363, 16}, {100000, 3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.Total << " points, " << c.Workers << " workers");
    const std::vector<int64_t> starts = GuidedChunkStarts(c.Total, c.Workers);
    ASSERT_GE(starts.size(), 2u);
    EXPECT_EQ(starts.front(), 0);
    EXPECT_EQ(starts.back(), c.Total);
    // The first chunk leaves the other workers their share.
    EXPECT_LE(starts[1], std::max<int64_t>(1, c.Total / (2 * c.Workers)));
    for (size_t k = 1; k + 1 < starts.size(); ++k) {
      const int64_t size = starts[k + 1] - starts[k];
      EXPECT_GE(size, 1);
      EXPECT_LE(size, starts[k] - starts[k - 1]) << "chunk " << k << " grows";
    }
    // Ending in single points keeps the last worker's lag to one point.
    if (c.Total >= 2) {
      EXPECT_EQ(starts.back() - starts[starts.size() - 2], 1);
    }
  }
}

TEST(PointRunsTest, GuidedChunksAreFewForManyPoints) {
  // A request may wait for a busy rank: thousands of points in tens of requests, not thousands.
  EXPECT_LT(GuidedChunkStarts(3363, 2).size(), 40u);
  EXPECT_LT(GuidedChunkStarts(100000, 3).size(), 100u);
  EXPECT_EQ(GuidedChunkStarts(0, 2).size(), 1u);  // no points, no chunks
}

}  // namespace
}  // namespace qxrun
