#include "qxrun/data/MemoryHints.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace qxrun {

void PrepareForWriting(void* begin, size_t bytes) {
#if defined(__linux__)
  static const auto kPage = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = (reinterpret_cast<uintptr_t>(begin) + kPage - 1) & ~(kPage - 1);
  const auto end = (reinterpret_cast<uintptr_t>(begin) + bytes) & ~(kPage - 1);
  if (end <= start) return;
  void* const first = reinterpret_cast<void*>(start);  // NOLINT(performance-no-int-to-ptr)
  const size_t length = end - start;
#if defined(MADV_HUGEPAGE)
  constexpr size_t kHugeWorthy = size_t{4} << 20;
  if (length >= kHugeWorthy) madvise(first, length, MADV_HUGEPAGE);
#endif
#if defined(MADV_POPULATE_WRITE)
  madvise(first, length, MADV_POPULATE_WRITE);
#endif
#else
  (void)begin;
  (void)bytes;
#endif
}

}  // namespace qxrun
