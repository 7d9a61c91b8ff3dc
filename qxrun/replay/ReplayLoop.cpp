#include "qxrun/replay/ReplayLoop.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace qxrun {

void SleepingPacer::Wait(int64_t fromMillis, int64_t toMillis) {
  if (toMillis <= fromMillis || speed_ <= 0.0) return;
  const double seconds =
      std::min(static_cast<double>(toMillis - fromMillis) / 1000.0 / speed_, 2.0);
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

ReplayPlan MakePlan(std::vector<QXBar> bars, size_t start, const std::vector<Tick>* ticks,
                    TickPathKind kind, const std::filesystem::path& tickFile) {
  ReplayPlan plan;
  const int64_t period = BarPeriod(bars);
  plan.Start = std::min(start, bars.size());
  if (ticks != nullptr) {
    plan.Ticks = AssignTicks(*ticks, bars, plan.Start, period, tickFile);
    plan.Synthesized = false;
  } else {
    for (size_t bar = plan.Start; bar < bars.size(); ++bar) {
      plan.Ticks.push_back(TicksOfBar(bars[bar], period, kind));
    }
  }
  plan.Bars = std::move(bars);
  return plan;
}

ReplayCounts RunReplay(const ReplayPlan& plan, std::vector<QXBar>& live, HostInstance& instance,
                       QuoteFeed& feed, ReplayMarket* market, Pacer* pacer) {
  ReplayCounts counts;
  const std::vector<QXBar>& bars = plan.Bars;
  live.assign(bars.begin(), bars.begin() + static_cast<long>(plan.Start));
  for (const QXBar& bar : live) feed.AddBar(bar);
  const int64_t resumeAfter = market != nullptr ? market->ResumeAfter() : 0;
  // Until the first tick that is evaluated, bars are only formed: the history is evaluated in one
  // pass when that tick comes.
  bool evaluating = false;
  int64_t sequence = 0;
  int64_t previousTime = 0;
  for (size_t bar = plan.Start; bar < bars.size(); ++bar) {
    const std::vector<Tick>& ticks = plan.Ticks[bar - plan.Start];
    const auto index = static_cast<int32_t>(bar);
    for (size_t k = 0; k < ticks.size(); ++k) {
      const Tick& tick = ticks[k];
      ++sequence;
      if (k == 0) {
        QXBar forming = bars[bar];
        FormBar(forming, tick, true);
        live.push_back(forming);
        // The bar before is no longer the newest: its last evaluation checks it out as history,
        // which keeps the state this bar starts from.
        if (evaluating && index > 0) {
          instance.Reevaluate(index - 1);
          instance.MarkBarStart();
        }
      } else {
        FormBar(live.back(), tick, false);
      }
      // A bar made from its own path ends on the recorded bar exactly (volume parts included).
      if (plan.Synthesized && k + 1 == ticks.size()) live.back() = bars[bar];
      feed.AddTick(tick, bars[bar].OpenInt);
      ++counts.Ticks;
      if (sequence <= resumeAfter) {
        ++counts.SkippedTicks;
        continue;
      }
      if (!evaluating) {
        instance.RunHistory(index);
        instance.MarkBarStart();
        evaluating = true;
      }
      if (pacer != nullptr && previousTime != 0) pacer->Wait(previousTime, tick.Time);
      previousTime = tick.Time;
      if (market != nullptr) market->OnTick(sequence, tick, feed.Snapshot(), feed.TradingDay());
      // The replay's last tick settles the run in its own output mode; every other tick is
      // checked out as a live chart is.
      instance.Reevaluate(index, bar + 1 < bars.size() || k + 1 < ticks.size());
      ++counts.Evaluations;
    }
  }
  // Everything was taken in before: the bars are evaluated once each, the last as the newest.
  if (!evaluating) instance.RunHistory(static_cast<int32_t>(live.size()));
  if (market != nullptr) market->OnEnd(sequence);
  return counts;
}

}  // namespace qxrun
