#include "qxrun/replay/TickPath.h"

#include "qxrun/InputError.h"
#include "qxrun/data/DateParsing.h"
#include "qxrun/data/LineStream.h"
#include "qxrun/data/LocalDays.h"
#include "qxrun/data/Numbers.h"
#include "qxrun/report/BrokerTables.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace qxrun {
namespace {

// The comma-separated fields of a line.
std::vector<std::string_view> Fields(std::string_view line) {
  std::vector<std::string_view> fields;
  size_t start = 0;
  while (true) {
    const size_t comma = line.find(',', start);
    fields.push_back(line.substr(start, comma == std::string_view::npos ? comma : comma - start));
    if (comma == std::string_view::npos) return fields;
    start = comma + 1;
  }
}

}  // namespace

int64_t BarPeriod(const std::vector<QXBar>& bars) {
  if (bars.size() < 2) return 60000;
  std::vector<int64_t> gaps;
  gaps.reserve(bars.size() - 1);
  for (size_t i = 1; i < bars.size(); ++i) gaps.push_back(bars[i].Time - bars[i - 1].Time);
  std::nth_element(gaps.begin(), gaps.begin() + static_cast<long>(gaps.size() / 2), gaps.end());
  return std::max<int64_t>(gaps[gaps.size() / 2], 1);
}

std::vector<Tick> TicksOfBar(const QXBar& bar, int64_t period, TickPathKind kind) {
  double first = bar.High;
  double second = bar.Low;
  if (kind == TickPathKind::kNearerExtremeFirst) {
    const double toHigh = bar.High - bar.Open;
    const double toLow = bar.Open - bar.Low;
    const bool lowFirst = toLow < toHigh || (toLow == toHigh && bar.Close >= bar.Open);
    if (lowFirst) std::swap(first, second);
  }
  const double path[] = {bar.Open, first, second, bar.Close};
  std::vector<Tick> ticks;
  for (double price : path) {
    if (ticks.empty() || ticks.back().Price != price) ticks.push_back({0, price, 0.0});
  }
  const size_t count = ticks.size();
  const double whole = std::floor(bar.Vol);
  if (bar.Vol >= 0.0 && whole == bar.Vol && whole < 9.0e15) {
    const auto total = static_cast<int64_t>(whole);
    const int64_t share = total / static_cast<int64_t>(count);
    const int64_t remainder = total % static_cast<int64_t>(count);
    for (size_t i = 0; i < count; ++i) {
      ticks[i].Volume = static_cast<double>(share + (static_cast<int64_t>(i) < remainder ? 1 : 0));
    }
  } else {
    double given = 0.0;
    for (size_t i = 0; i + 1 < count; ++i) {
      ticks[i].Volume = bar.Vol / static_cast<double>(count);
      given += ticks[i].Volume;
    }
    ticks.back().Volume = bar.Vol - given;
  }
  for (size_t i = 0; i < count; ++i) {
    const auto steps = static_cast<int64_t>(count - 1 - i);
    ticks[i].Time = bar.Time - steps * period / static_cast<int64_t>(count);
  }
  return ticks;
}

std::vector<Tick> LoadTickFile(const std::filesystem::path& file) {
  const std::string name = file.string();
  std::string error;
  const std::optional<DateTimeFormat> dateFormat =
      DateTimeFormat::Compile("%Y-%m-%d", DateTimeFormat::Kind::kDate, &error);
  const std::optional<DateTimeFormat> timeFormat =
      DateTimeFormat::Compile("%H:%M:%S", DateTimeFormat::Kind::kTime, &error);
  LineStream lines(file);
  LocalDays days;
  std::vector<Tick> ticks;
  std::string_view line;
  while (lines.Next(&line)) {
    const std::string where = name + ":" + std::to_string(lines.LineNumber()) + ": ";
    if (line.empty()) continue;
    if (ticks.empty() && lines.LineNumber() == 1 &&
        !std::isdigit(static_cast<unsigned char>(line[0]))) {
      continue;  // the header
    }
    const std::vector<std::string_view> fields = Fields(line);
    if (fields.size() != 4) {
      throw InputError(where + "expected 4 fields (date,time,price,volume), found " +
                       std::to_string(fields.size()));
    }
    CivilDate date;
    int32_t millisOfDay = 0;
    const std::optional<size_t> dateRead = dateFormat->ReadDate(fields[0], &date);
    if (!dateRead || *dateRead != fields[0].size()) {
      throw InputError(where + "date: '" + std::string(fields[0]) + "' is not YYYY-MM-DD");
    }
    const std::optional<size_t> timeRead = timeFormat->ReadTime(fields[1], &millisOfDay);
    if (!timeRead || *timeRead != fields[1].size()) {
      throw InputError(where + "time: '" + std::string(fields[1]) + "' is not HH:MM:SS[.mmm]");
    }
    Tick tick;
    tick.Time =
        days.Instant(date, millisOfDay, ticks.empty() ? LocalDays::kNoPrevious : ticks.back().Time);
    if (!ParseNumber(fields[2], &tick.Price) || !std::isfinite(tick.Price) || tick.Price <= 0.0) {
      throw InputError(where + "price: '" + std::string(fields[2]) + "' is not a positive number");
    }
    if (!ParseNumber(fields[3], &tick.Volume) || !std::isfinite(tick.Volume) || tick.Volume < 0.0) {
      throw InputError(where + "volume: '" + std::string(fields[3]) +
                       "' is not a number of at least 0");
    }
    if (!ticks.empty() && tick.Time < ticks.back().Time) {
      throw InputError(where + "time: " + LocalTimeText(tick.Time) +
                       " is before the tick above it (" + LocalTimeText(ticks.back().Time) +
                       "): ticks must be in time order");
    }
    ticks.push_back(tick);
  }
  return ticks;
}

std::vector<std::vector<Tick>> AssignTicks(const std::vector<Tick>& ticks,
                                           const std::vector<QXBar>& bars, size_t first,
                                           int64_t period, const std::filesystem::path& file) {
  std::vector<std::vector<Tick>> perBar(bars.size() > first ? bars.size() - first : 0);
  if (perBar.empty()) return perBar;
  const int64_t replayStart = bars[first].Time - period;
  size_t bar = first;
  for (const Tick& tick : ticks) {
    if (tick.Time <= replayStart) continue;
    while (bar < bars.size() && bars[bar].Time < tick.Time) ++bar;
    if (bar == bars.size()) {
      throw InputError(file.string() + ": the tick at " + LocalTimeText(tick.Time) +
                       " lies after the last bar (" + LocalTimeText(bars.back().Time) + ")");
    }
    if (tick.Time <= bars[bar].Time - period) {
      throw InputError(file.string() + ": the tick at " + LocalTimeText(tick.Time) +
                       " lies outside its bar (the bar stamped " + LocalTimeText(bars[bar].Time) +
                       " spans the " + std::to_string(period / 1000) + " s before it)");
    }
    perBar[bar - first].push_back(tick);
  }
  for (size_t i = 0; i < perBar.size(); ++i) {
    if (perBar[i].empty()) {
      throw InputError(file.string() + ": no tick for the bar stamped " +
                       LocalTimeText(bars[first + i].Time));
    }
  }
  return perBar;
}

void FormBar(QXBar& forming, const Tick& tick, bool first) {
  if (first) {
    forming.Open = forming.High = forming.Low = forming.Close = tick.Price;
    forming.Vol = tick.Volume;
    return;
  }
  forming.High = std::max(forming.High, tick.Price);
  forming.Low = std::min(forming.Low, tick.Price);
  forming.Close = tick.Price;
  forming.Vol += tick.Volume;
}

}  // namespace qxrun
