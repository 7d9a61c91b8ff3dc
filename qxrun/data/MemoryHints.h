// Hints to the operating system about memory the program is about to fill.
#ifndef QXRUN_DATA_MEMORY_HINTS_H_
#define QXRUN_DATA_MEMORY_HINTS_H_

#include <cstddef>
#include <cstdint>

namespace qxrun {

// The whole pages of `pageSize` bytes inside [begin, begin + bytes): the first address rounded
// up to a page, the end rounded down. Empty (length 0) when no whole page fits.
struct PageSpan {
  uintptr_t Start = 0;
  size_t Length = 0;
};
PageSpan WholePagesWithin(uintptr_t begin, size_t bytes, size_t pageSize);

// Spans at least this long are offered huge pages: below it the few faults saved are not worth
// a split of the mapping.
constexpr size_t kHugePageWorthy = size_t{4} << 20;

// Offers huge pages for the whole pages inside [begin, begin + bytes) when the span is
// huge-page-worthy, before anything is written there: the memory is then faulted in 2 MiB at a
// time instead of 4 KiB (on virtual machines each fault is a costly exit to the hypervisor).
// Nothing is mapped now. Only a hint: where the system cannot do it, nothing changes.
void OfferHugePages(void* begin, size_t bytes);

// Asks for the whole pages inside [begin, begin + bytes) to be mapped now, writable, in one call,
// instead of one page fault per page as the bars are stored. Large spans are offered huge pages
// first. Only a hint: where the system cannot do it, the pages come one fault at a time as before.
void PrepareForWriting(void* begin, size_t bytes);

}  // namespace qxrun

#endif  // QXRUN_DATA_MEMORY_HINTS_H_
