#include "qxrun/data/MemoryHints.h"

#include "platform/MemoryHints.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace qxrun {

void PrepareForWriting([[maybe_unused]] void* begin, [[maybe_unused]] size_t bytes) {
#if defined(__linux__)
  static const auto kPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const sysfuncs::AlignedSpan span =
      sysfuncs::AlignedSpanWithin(reinterpret_cast<uintptr_t>(begin), bytes, kPage);
  if (span.Length == 0) return;
  sysfuncs::OfferHugePages(begin, bytes);
#if defined(MADV_POPULATE_WRITE)
  madvise(reinterpret_cast<void*>(span.Start), span.Length,  // NOLINT(performance-no-int-to-ptr)
          MADV_POPULATE_WRITE);
#endif
#endif
}

}  // namespace qxrun
