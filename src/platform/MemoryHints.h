// Hints to the operating system about large blocks the library is about to fill.
#ifndef SYSFUNCS_PLATFORM_MEMORY_HINTS_H_
#define SYSFUNCS_PLATFORM_MEMORY_HINTS_H_

#include <cstddef>
#include <cstdint>

namespace sysfuncs {

// The size of a transparent huge page, and the smallest block worth offering them: below it the
// few page faults saved are not worth splitting the mapping.
inline constexpr size_t kHugePageSize = size_t{2} << 20;
inline constexpr size_t kHugePageWorthy = size_t{4} << 20;

// The aligned chunks of `alignment` bytes (a power of two) that lie wholly inside
// [begin, begin + bytes): the first address rounded up, the end rounded down. Empty (length 0)
// when no whole chunk fits.
struct AlignedSpan {
  uintptr_t Start = 0;
  size_t Length = 0;
};
AlignedSpan AlignedSpanWithin(uintptr_t begin, size_t bytes, size_t alignment);

// Offers huge pages for the 2 MiB-aligned interior of [begin, begin + bytes) when the block is
// huge-page-worthy. Call it before the block is written: its fresh memory is then faulted in
// 2 MiB at a time instead of 4 KiB (on virtual machines each fault is a costly exit to the
// hypervisor). Memory outside the interior, the block's partial ends included, is left as it is.
// Only a hint: where the system cannot do it, nothing changes.
void OfferHugePages(void* begin, size_t bytes);

}  // namespace sysfuncs

#endif  // SYSFUNCS_PLATFORM_MEMORY_HINTS_H_
