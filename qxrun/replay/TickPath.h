// The ticks that form a bar during a replay: read from a tick file, or made from the bar itself.
//
// Bars are stamped at their end: bar i covers the span (Time[i] - period, Time[i]], where the
// period is the usual spacing of the series' bars. A tick belongs to the bar whose span holds its
// time.
#ifndef QXRUN_REPLAY_TICK_PATH_H_
#define QXRUN_REPLAY_TICK_PATH_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace qxrun {

struct Tick {
  int64_t Time = 0;  // milliseconds since 1970 UTC
  double Price = 0.0;
  double Volume = 0.0;
};

enum class TickPathKind {
  // Open, then the nearer of High and Low, then the other, then Close. When Open is as far from
  // High as from Low, the extreme away from the Close comes first (a bar closing at or above its
  // open visits its Low first), so the last leg runs towards the close.
  kNearerExtremeFirst,
  // Open, High, Low, Close whatever the bar.
  kOpenHighLowClose,
};

// The usual spacing of the bars: the median of the differences of consecutive stamps (one minute
// for fewer than two bars).
int64_t BarPeriod(const std::vector<QXBar>& bars);

// The ticks of `bar` along `kind`. Consecutive points of equal price are one tick. The bar's
// volume is split over the ticks: a whole volume in whole shares, the first ticks taking the
// remainder one each; any other volume in equal parts, the last tick taking what rounding left,
// so that the ticks' volumes always add up to the bar's exactly. The ticks are spread evenly over
// the bar's span (`period` long), the last one at the bar's stamp.
std::vector<Tick> TicksOfBar(const QXBar& bar, int64_t period, TickPathKind kind);

// Reads a tick file: lines "YYYY-MM-DD,HH:MM:SS[.mmm],price,volume" in local time, an optional
// header line first. Throws InputError naming the file, the line and the field, also when a tick
// is earlier than the one before it.
std::vector<Tick> LoadTickFile(const std::filesystem::path& file);

// The ticks of bars [first, bars.size()), one list per bar. Ticks before the span of bar `first`
// are passed over (they belong to history). Throws InputError naming the file when a tick lies
// outside the span of every bar or after the last bar, or when a bar gets no tick.
std::vector<std::vector<Tick>> AssignTicks(const std::vector<Tick>& ticks,
                                           const std::vector<QXBar>& bars, size_t first,
                                           int64_t period, const std::filesystem::path& file);

// Adds `tick` to the bar being formed; the first tick of a bar opens it. Time and open interest
// stay those of the recorded bar.
void FormBar(QXBar& forming, const Tick& tick, bool first);

}  // namespace qxrun

#endif  // QXRUN_REPLAY_TICK_PATH_H_
