// The quote of the replayed symbol as a live platform would report it, following the ticks.
#ifndef QXRUN_REPLAY_QUOTE_FEED_H_
#define QXRUN_REPLAY_QUOTE_FEED_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/HostData.h"

#include "qxrun/replay/TickPath.h"

#include <cstdint>
#include <string>

namespace qxrun {

// The trading day of an instant, as YYYYMMDD: the local date 7 hours later, a Saturday or a
// Sunday moved on to the Monday. So 17:00 and later belongs to the next day's session.
int32_t TradingDayOf(int64_t millis);

struct FeedSettings {
  uint32_t Market = 0;
  std::string Code;
  double TickSize = 0.01;
  int32_t SpreadTicks = 1;  // ask - bid, in ticks
  double LotValue = 1.0;    // money per point per lot, for the turnover
  // The day's constants: limits, previous settlement and open interest (zero: none given).
  // A previous settlement of zero is taken from the previous trading day's last price.
  Quill::ITickDeepLevel Constants;
};

// What the snapshot holds: the last price and volume of the newest tick with its time and change;
// the trading day's open, high, low, total volume, turnover and volume-weighted average price
// (from the bars and ticks of the day so far); the open interest of the bar being formed and the
// last one of the day before; the previous close (the last price of the trading day before) and
// settlement; the limits given for the symbol; one depth level, the bid `SpreadTicks / 2` ticks
// (rounded down) below the last price and the ask `SpreadTicks` above the bid, each with the last
// tick's volume; the volume of upticks as bought at the ask (outside) and of downticks as sold at
// the bid (inside), an unchanged tick counting as the one before it; the four direction flags
// against the tick before. Volumes opened and closed today are not known from bars: they are 0.
class QuoteFeed {
 public:
  explicit QuoteFeed(FeedSettings settings);

  // A whole bar of history: the day's figures advance by it as by one tick at its close.
  void AddBar(const QXBar& bar);
  // One tick of the bar being formed, whose open interest is `openInt`.
  void AddTick(const Tick& tick, double openInt);

  bool Started() const { return started_; }
  const Quill::ITickDeepLevel& Snapshot() const { return quote_; }
  int32_t TradingDay() const { return day_; }
  double Bid() const { return quote_.DepthLevels[0].BidPrice; }
  double Ask() const { return quote_.DepthLevels[0].AskPrice; }
  const FeedSettings& Settings() const { return settings_; }

 private:
  void Advance(int64_t time, double open, double price, double high, double low, double volume,
               double openInt);

  FeedSettings settings_;
  Quill::ITickDeepLevel quote_;
  bool started_ = false;
  int32_t day_ = 0;
  bool lastUp_ = true;  // the direction of the last tick that moved
};

}  // namespace qxrun

#endif  // QXRUN_REPLAY_QUOTE_FEED_H_
