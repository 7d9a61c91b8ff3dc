#include "platform/MemoryAdvice.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace sysfuncs::testing {
namespace {

// The advice changes how pages are backed, never what they hold: a block written before and
// after it, at an address off the page grid, reads back as written; a block too small to advise,
// an empty one and a null one are accepted as they are.
TEST(AdviseLargePages, KeepsTheContentsOfEveryBlock) {
  std::vector<uint64_t> block((size_t{24} << 20) / sizeof(uint64_t) + 3);
  for (size_t index = 0; index < block.size() / 2; ++index) block[index] = index * 7 + 1;
  AdviseLargePages(block.data() + 1, (block.size() - 1) * sizeof(uint64_t));
  for (size_t index = block.size() / 2; index < block.size(); ++index) block[index] = index * 7 + 1;
  size_t wrong = 0;
  for (size_t index = 0; index < block.size(); ++index) wrong += block[index] != index * 7 + 1;
  EXPECT_EQ(wrong, 0u);

  std::vector<uint64_t> small(1000, 5);
  AdviseLargePages(small.data(), small.size() * sizeof(uint64_t));
  AdviseLargePages(small.data(), 0);
  AdviseLargePages(nullptr, size_t{64} << 20);
  EXPECT_EQ(small.front(), 5u);
  EXPECT_EQ(small.back(), 5u);
}

}  // namespace
}  // namespace sysfuncs::testing
