// Counts the allocations made by the calling thread within a scope. Every test program links the
// counting operator new and delete (plain malloc and free), so this works in any suite.
#ifndef SYSFUNCS_TESTS_SUPPORT_ALLOCATION_COUNTER_H_
#define SYSFUNCS_TESTS_SUPPORT_ALLOCATION_COUNTER_H_

namespace sysfuncs::testing {

class AllocationCounter {
 public:
  AllocationCounter();
  ~AllocationCounter();
  AllocationCounter(const AllocationCounter&) = delete;
  AllocationCounter& operator=(const AllocationCounter&) = delete;

  // Allocations of this thread since the counter was made.
  int Count() const;
};

}  // namespace sysfuncs::testing

#endif  // SYSFUNCS_TESTS_SUPPORT_ALLOCATION_COUNTER_H_
