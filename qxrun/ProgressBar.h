// A progress bar on standard error, drawn only on a terminal and only after the first second.
#ifndef QXRUN_PROGRESS_BAR_H_
#define QXRUN_PROGRESS_BAR_H_

#include <chrono>
#include <cstdint>

namespace qxrun {

class ProgressBar {
 public:
  // `unit` names what is counted ("bars", "points").
  explicit ProgressBar(bool enabled, const char* unit = "bars");
  ~ProgressBar();  // clears the line it drew
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void operator()(int64_t done, int64_t total);

 private:
  bool enabled_;
  bool drawn_ = false;
  const char* unit_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace qxrun

#endif  // QXRUN_PROGRESS_BAR_H_
