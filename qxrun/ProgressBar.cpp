#include "qxrun/ProgressBar.h"

#include <cstdio>
#include <unistd.h>

namespace qxrun {

ProgressBar::ProgressBar(bool enabled, const char* unit)
    : enabled_(enabled && isatty(STDERR_FILENO) == 1), unit_(unit) {}

ProgressBar::~ProgressBar() {
  if (drawn_) std::fputs("\r\033[K", stderr);
}

void ProgressBar::operator()(int64_t done, int64_t total) {
  if (!enabled_ || total <= 0) return;
  if (std::chrono::steady_clock::now() - start_ < std::chrono::seconds(1)) return;
  constexpr int kWidth = 40;
  const int filled = static_cast<int>(done * kWidth / total);
  std::fprintf(stderr, "\r[%.*s%*s] %3d%% %lld/%lld %s", filled,
               "########################################", kWidth - filled, "",
               static_cast<int>(done * 100 / total), static_cast<long long>(done),
               static_cast<long long>(total), unit_);
  std::fflush(stderr);
  drawn_ = true;
}

}  // namespace qxrun
