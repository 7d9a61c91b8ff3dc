// Hints to the operating system about memory the program is about to fill. Huge pages are offered
// by the library's own hint (src/platform/MemoryHints.h), which qxrun compiles in as well.
#ifndef QXRUN_DATA_MEMORY_HINTS_H_
#define QXRUN_DATA_MEMORY_HINTS_H_

#include <cstddef>

namespace qxrun {

// Asks for the whole pages inside [begin, begin + bytes) to be mapped now, writable, in one call,
// instead of one page fault per page as the bars are stored. Large spans are offered huge pages
// first. Only a hint: where the system cannot do it, the pages come one fault at a time as before.
void PrepareForWriting(void* begin, size_t bytes);

}  // namespace qxrun

#endif  // QXRUN_DATA_MEMORY_HINTS_H_
