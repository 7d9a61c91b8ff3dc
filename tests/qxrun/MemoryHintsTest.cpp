#include "qxrun/data/MemoryHints.h"
#include "support/WrittenMemory.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace qxrun {
namespace {

TEST(MemoryHintsTest, HintsLeaveWrittenMemoryAsItWas) {
  // 8 MiB: large enough to be offered huge pages too.
  constexpr size_t kCount = (size_t{8} << 20) / sizeof(uint32_t);
  const size_t changed = sysfuncs::testing::ValuesChangedByHint(
      kCount, [](uint32_t* values) { PrepareForWriting(values, kCount * sizeof(uint32_t)); });
  EXPECT_EQ(changed, 0u);
}

}  // namespace
}  // namespace qxrun
