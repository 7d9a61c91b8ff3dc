#include "platform/MemoryHints.h"
#include "support/WrittenMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace sysfuncs {
namespace {

TEST(MemoryHintsTest, OnlyWholeAlignedChunksInsideTheBlockAreOffered) {
  struct Case {
    uintptr_t Begin;
    size_t Bytes;
    uintptr_t Start;
    size_t Length;
  };
  // 2 MiB chunks (0x200000).
  const Case cases[] = {
      {0x400000, 0x400000, 0x400000, 0x400000},  // aligned at both ends: all of it
      {0x400001, 0x400000, 0x600000, 0x200000},  // one byte in: the first chunk is partial
      {0x3fffff, 0x200002, 0x400000, 0x200000},  // one whole chunk between two partial ones
      {0x400010, 0x1fffff, 0, 0},                // shorter than a chunk: nothing
      {0x500000, 0x200000, 0, 0},                // a chunk's length across a boundary: nothing
      {0x400000, 0, 0, 0},                       // empty
      // A curve of 1,000,000 points of 96 bytes (0x5b8d800) behind a 16-byte block header: the
      // end 0x7f0005b8d810 rounds down to 0x7f0005a00000, the begin up to 0x7f0000200000.
      {0x7f0000000010, 0x5b8d800, 0x7f0000200000, 0x5800000},
  };
  for (const Case& c : cases) {
    const AlignedSpan span = AlignedSpanWithin(c.Begin, c.Bytes, kHugePageSize);
    EXPECT_EQ(span.Start, c.Start) << std::hex << c.Begin << " + " << c.Bytes;
    EXPECT_EQ(span.Length, c.Length) << std::hex << c.Begin << " + " << c.Bytes;
  }
}

TEST(MemoryHintsTest, OfferedSpanNeverLeavesTheBlockNorMissesAChunk) {
  std::mt19937_64 random(20240101);
  std::uniform_int_distribution<uintptr_t> begins(0x10000, uintptr_t{1} << 40);
  std::uniform_int_distribution<size_t> lengths(0, size_t{64} << 20);
  for (int trial = 0; trial < 10000; ++trial) {
    const uintptr_t begin = begins(random);
    const size_t bytes = lengths(random);
    const uintptr_t end = begin + bytes;
    const AlignedSpan span = AlignedSpanWithin(begin, bytes, kHugePageSize);
    SCOPED_TRACE(::testing::Message() << std::hex << begin << " + " << bytes);
    EXPECT_EQ(span.Length % kHugePageSize, 0u);
    if (span.Length == 0) {
      // No aligned chunk fits: the first boundary at or after the begin leaves less than a chunk.
      const uintptr_t boundary = (begin + kHugePageSize - 1) / kHugePageSize * kHugePageSize;
      EXPECT_GT(boundary + kHugePageSize, end);
      continue;
    }
    EXPECT_EQ(span.Start % kHugePageSize, 0u);
    EXPECT_GE(span.Start, begin);
    EXPECT_LE(span.Start + span.Length, end);
    // Whatever is left at either end is less than a chunk.
    EXPECT_LT(span.Start - begin, kHugePageSize);
    EXPECT_LT(end - (span.Start + span.Length), kHugePageSize);
  }
}

TEST(MemoryHintsTest, OfferLeavesWrittenMemoryAsItWas) {
  // Larger than the threshold and offered from an unaligned address inside a written buffer, so
  // that the offered interior and the memory around it both hold data already.
  const size_t changed = testing::ValuesChangedByHint(
      kHugePageWorthy / sizeof(uint32_t) * 3,
      [](uint32_t* values) { OfferHugePages(values + 3, kHugePageWorthy * 2); });
  EXPECT_EQ(changed, 0u);
}

}  // namespace
}  // namespace sysfuncs
