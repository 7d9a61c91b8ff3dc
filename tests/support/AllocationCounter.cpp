#include "support/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {
thread_local int counting = 0;
thread_local int allocations = 0;
}  // namespace

namespace sysfuncs::testing {

AllocationCounter::AllocationCounter() {
  ++counting;
  allocations = 0;
}
AllocationCounter::~AllocationCounter() { --counting; }
int AllocationCounter::Count() const { return allocations; }

}  // namespace sysfuncs::testing

// The replacements allocate with malloc and free with free, so they pair with each other under
// every sanitizer.
void* operator new(std::size_t size) {
  if (counting > 0) ++allocations;
  if (void* block = std::malloc(size != 0 ? size : 1)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
