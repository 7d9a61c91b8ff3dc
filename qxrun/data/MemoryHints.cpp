#include "qxrun/data/MemoryHints.h"

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace qxrun {
namespace {

#if defined(__linux__)
PageSpan SystemPagesWithin(void* begin, size_t bytes) {
  static const auto kPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  return WholePagesWithin(reinterpret_cast<uintptr_t>(begin), bytes, kPage);
}

void* StartOf(const PageSpan& span) {
  return reinterpret_cast<void*>(span.Start);  // NOLINT(performance-no-int-to-ptr)
}

void AdviseHugePages([[maybe_unused]] const PageSpan& span) {
#if defined(MADV_HUGEPAGE)
  if (span.Length >= kHugePageWorthy) madvise(StartOf(span), span.Length, MADV_HUGEPAGE);
#endif
}
#endif

}  // namespace

PageSpan WholePagesWithin(uintptr_t begin, size_t bytes, size_t pageSize) {
  const uintptr_t mask = ~(static_cast<uintptr_t>(pageSize) - 1);
  const uintptr_t start = (begin + pageSize - 1) & mask;
  const uintptr_t end = (begin + bytes) & mask;
  if (end <= start) return PageSpan{};
  return PageSpan{start, end - start};
}

void OfferHugePages([[maybe_unused]] void* begin, [[maybe_unused]] size_t bytes) {
#if defined(__linux__)
  AdviseHugePages(SystemPagesWithin(begin, bytes));
#endif
}

void PrepareForWriting([[maybe_unused]] void* begin, [[maybe_unused]] size_t bytes) {
#if defined(__linux__)
  const PageSpan span = SystemPagesWithin(begin, bytes);
  if (span.Length == 0) return;
  AdviseHugePages(span);
#if defined(MADV_POPULATE_WRITE)
  madvise(StartOf(span), span.Length, MADV_POPULATE_WRITE);
#endif
#endif
}

}  // namespace qxrun
