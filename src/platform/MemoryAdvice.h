// Advice to the operating system about how the library uses large blocks of memory.
#ifndef SYSFUNCS_PLATFORM_MEMORY_ADVICE_H_
#define SYSFUNCS_PLATFORM_MEMORY_ADVICE_H_

#include <cstddef>

namespace sysfuncs {

// Asks for the pages of [data, data + bytes) not yet touched to be backed by large pages where
// the system offers them: a block written once from end to end (the equity curve) then takes a
// few hundred page faults instead of one per 4 KiB. Blocks under a few MiB, and systems without
// the advice, are left alone. The contents are unchanged.
void AdviseLargePages(void* data, size_t bytes);

}  // namespace sysfuncs

#endif  // SYSFUNCS_PLATFORM_MEMORY_ADVICE_H_
