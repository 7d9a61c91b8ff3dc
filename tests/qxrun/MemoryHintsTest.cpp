#include "qxrun/data/MemoryHints.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace qxrun {
namespace {

TEST(MemoryHintsTest, OnlyWholePagesInsideTheSpanAreHinted) {
  struct Case {
    uintptr_t Begin;
    size_t Bytes;
    size_t PageSize;
    uintptr_t Start;
    size_t Length;
  };
  const Case cases[] = {
      {4096, 8192, 4096, 4096, 8192},  // aligned at both ends: all of it
      {4097, 8192, 4096, 8192, 4096},  // one byte in: the first page is partial
      {4095, 4097, 4096, 4096, 4096},  // one whole page between two partial ones
      {100, 4000, 4096, 0, 0},         // inside one page: nothing
      {8192, 0, 4096, 0, 0},           // empty
      {0x200001, 0x600000, 0x200000, 0x400000, 0x400000},  // 2 MiB pages
  };
  for (const Case& c : cases) {
    const PageSpan span = WholePagesWithin(c.Begin, c.Bytes, c.PageSize);
    EXPECT_EQ(span.Start, c.Start) << c.Begin << " + " << c.Bytes;
    EXPECT_EQ(span.Length, c.Length) << c.Begin << " + " << c.Bytes;
  }
}

TEST(MemoryHintsTest, HintsLeaveWrittenMemoryAsItWas) {
  // Larger than the huge-page threshold, so both hints act on it.
  std::vector<uint32_t> values(kHugePageWorthy / sizeof(uint32_t) * 2);
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<uint32_t>(i * 2654435761u);
  OfferHugePages(values.data(), values.size() * sizeof(uint32_t));
  PrepareForWriting(values.data(), values.size() * sizeof(uint32_t));
  size_t wrong = 0;
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i] != static_cast<uint32_t>(i * 2654435761u)) ++wrong;
  }
  EXPECT_EQ(wrong, 0u);
}

}  // namespace
}  // namespace qxrun
