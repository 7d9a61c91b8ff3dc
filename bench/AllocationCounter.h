// Counts the allocations of the whole process (operator new is replaced), the library's included.
#ifndef SYSFUNCS_BENCH_ALLOCATION_COUNTER_H_
#define SYSFUNCS_BENCH_ALLOCATION_COUNTER_H_

long AllocationCount();

#endif  // SYSFUNCS_BENCH_ALLOCATION_COUNTER_H_
