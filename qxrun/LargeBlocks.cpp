// The programs' allocation of large blocks. A block of many megabytes (the bars, the equity
// curve, a plot series, one cell per bar) is filled page by page soon after it is allocated; each
// first touch of a 4 KiB page is a fault, and on virtual machines a costly one. Such blocks are
// offered huge pages as they are allocated, before anything is written to them, so they are
// faulted in 2 MiB at a time. Everything else is plain malloc and free.
//
// Linked into the programs only, never into a library: a replaced operator new is the whole
// process's.
#include "platform/MemoryHints.h"

#include <cstdlib>
#include <new>

namespace {

void* Allocate(std::size_t size) {
  const std::size_t bytes = size == 0 ? 1 : size;
  for (;;) {
    if (void* memory = std::malloc(bytes)) {
      sysfuncs::OfferHugePages(memory, bytes);  // a block below the worthy size is left alone
      return memory;
    }
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

void* AllocateOrNull(std::size_t size) noexcept {
  try {
    return Allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

// Every form without an alignment is replaced, so that each block is allocated and freed by the
// same pair, malloc and free, whichever form made it (a sorting buffer comes from the nothrow
// form, for one).
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return AllocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return AllocateOrNull(size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
