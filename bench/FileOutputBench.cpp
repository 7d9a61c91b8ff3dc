// Throughput of buffered file output: FileAppend from eight formula threads at once while the
// background writer hands over, and the hand-over's records per second.
#include "sysfuncs/Environment.h"
#include "sysfuncs/sysfuncs.h"

#include "output/FileOutput.h"
#include "output/Logger.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace {

// Records that reached the message centre; the centre itself only counts them.
std::atomic<int64_t> delivered{0};

int CountingCentre(int /*kind*/, const Quill::MsgRecord* /*records*/, size_t count) {
  delivered.fetch_add(static_cast<int64_t>(count), std::memory_order_relaxed);
  return 1;
}

// The module started with the counting centre, its writer driven by a thread of the benchmark
// every 100 ms instead of the timer's 3 seconds, so that a run of a second sees several
// hand-overs and the pending table stays small.
class StartedModule {
 public:
  StartedModule() {
    SysFuncsPlatform services;
    services.SendToMsgCenter = CountingCentre;
    SysFuncs_SetPlatform(services);
    sysfuncs::ResetEnvironmentForTesting();
    SysFuncs_Init(nullptr, nullptr, "", "");
    CSFEnvPtr env = sysfuncs::GetSFEnv();
    env->m_timer->cancel(env->m_loggerTask);
    writer_ = env->m_loggerTask;
    handOver_ = std::thread([this] {
      while (!stop_.load()) {
        writer_->runTimerTask();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
      }
    });
  }
  ~StartedModule() {
    stop_.store(true);
    handOver_.join();
    SysFuncs_Exit();
    writer_ = nullptr;
    sysfuncs::ResetEnvironmentForTesting();
    SysFuncs_SetPlatform(SysFuncs_DefaultPlatform());
  }

 private:
  IceUtil::TimerTaskPtr writer_;
  std::atomic<bool> stop_{false};
  std::thread handOver_;
};

StartedModule* module = nullptr;

// Each thread appends numbered lines of about 30 bytes; two threads share each file.
void FileAppendContended(benchmark::State& state) {
  if (state.thread_index() == 0) module = new StartedModule();
  const std::string file = "bench" + std::to_string(state.thread_index() / 2) + ".txt";
  char text[64];
  int64_t line = 0;
  for (auto _ : state) {
    std::snprintf(text, sizeof text, "thread %d line %lld", state.thread_index(),
                  static_cast<long long>(line++));
    benchmark::DoNotOptimize(sysfuncs::FileAppend(file, text));
  }
  state.SetItemsProcessed(state.iterations());
  if (state.thread_index() == 0) {
    delete module;
    module = nullptr;
  }
}
BENCHMARK(FileAppendContended)->Threads(1)->Threads(8)->UseRealTime()->MinTime(1.0);

// One hand-over of `lines` pending lines spread over eight files.
void HandOver(benchmark::State& state) {
  SysFuncsPlatform services;
  services.SendToMsgCenter = CountingCentre;
  SysFuncs_SetPlatform(services);
  CTimerTask_LoggerPtr writer = new CTimerTask_Logger();
  const int64_t lines = state.range(0);
  char text[64];
  for (auto _ : state) {
    state.PauseTiming();
    for (int64_t line = 0; line < lines; ++line) {
      std::snprintf(text, sizeof text, "thread %lld line %lld", static_cast<long long>(line % 8),
                    static_cast<long long>(line));
      writer->Append("bench" + std::to_string(line % 8) + ".txt", text);
    }
    state.ResumeTiming();
    writer->runTimerTask();
  }
  state.SetItemsProcessed(state.iterations() * lines);
  writer = nullptr;
  SysFuncs_SetPlatform(SysFuncs_DefaultPlatform());
}
BENCHMARK(HandOver)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
