#include "qxrun/data/MemoryHints.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace qxrun {
namespace {

TEST(MemoryHintsTest, HintsLeaveWrittenMemoryAsItWas) {
  // 8 MiB: large enough to be offered huge pages too.
  std::vector<uint32_t> values((size_t{8} << 20) / sizeof(uint32_t));
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<uint32_t>(i * 2654435761u);
  PrepareForWriting(values.data(), values.size() * sizeof(uint32_t));
  size_t wrong = 0;
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i] != static_cast<uint32_t>(i * 2654435761u)) ++wrong;
  }
  EXPECT_EQ(wrong, 0u);
}

}  // namespace
}  // namespace qxrun
