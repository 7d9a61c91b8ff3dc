#include "platform/MemoryAdvice.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

namespace sysfuncs {
namespace {

// Below one large page (2 MiB on x86-64) there is nothing to gain; the advice pays from a few.
constexpr size_t kLeastAdvisedBytes = size_t{8} << 20;

}  // namespace

void AdviseLargePages(void* data, size_t bytes) {
#ifdef MADV_HUGEPAGE
  if (data == nullptr || bytes < kLeastAdvisedBytes) return;
  const long pageSize = sysconf(_SC_PAGESIZE);
  if (pageSize <= 0) return;
  // The advice covers whole pages inside the block.
  const auto page = static_cast<uintptr_t>(pageSize);
  const auto address = reinterpret_cast<uintptr_t>(data);
  const uintptr_t skipped = (page - address % page) % page;  // up to the first whole page
  if (bytes <= skipped) return;
  const size_t length = (bytes - skipped) / page * page;
  if (length == 0) return;
  // Advice only: a system that declines it keeps small pages.
  madvise(static_cast<char*>(data) + skipped, length, MADV_HUGEPAGE);
#else
  (void)data;
  (void)bytes;
#endif
}

}  // namespace sysfuncs
