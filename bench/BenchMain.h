// The main of a benchmark program that needs the module started with a platform adapter.
#ifndef SYSFUNCS_BENCH_BENCH_MAIN_H_
#define SYSFUNCS_BENCH_BENCH_MAIN_H_

#include "sysfuncs/sysfuncs.h"

#include <benchmark/benchmark.h>

// Starts the module with `adapter`, runs the benchmarks the command line selects and stops it.
inline int RunBenchmarksWithAdapter(CDataAdapter& adapter, int argc, char** argv) {
  SysFuncs_Init(nullptr, &adapter, "", "");
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  SysFuncs_Exit();
  return 0;
}

#endif  // SYSFUNCS_BENCH_BENCH_MAIN_H_
