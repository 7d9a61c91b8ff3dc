#include "platform/MemoryHints.h"

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

namespace sysfuncs {

AlignedSpan AlignedSpanWithin(uintptr_t begin, size_t bytes, size_t alignment) {
  const uintptr_t mask = ~(static_cast<uintptr_t>(alignment) - 1);
  const uintptr_t start = (begin + alignment - 1) & mask;
  const uintptr_t end = (begin + bytes) & mask;
  if (end <= start) return AlignedSpan{};
  return AlignedSpan{start, end - start};
}

void OfferHugePages([[maybe_unused]] void* begin, [[maybe_unused]] size_t bytes) {
#if defined(MADV_HUGEPAGE)
  if (bytes < kHugePageWorthy) return;
  const AlignedSpan span =
      AlignedSpanWithin(reinterpret_cast<uintptr_t>(begin), bytes, kHugePageSize);
  if (span.Length == 0) return;
  // A refusal (a kernel without transparent huge pages) leaves the block as it was.
  madvise(reinterpret_cast<void*>(span.Start), span.Length,  // NOLINT(performance-no-int-to-ptr)
          MADV_HUGEPAGE);
#endif
}

}  // namespace sysfuncs
