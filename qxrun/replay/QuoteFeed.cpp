#include "qxrun/replay/QuoteFeed.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace qxrun {
namespace {

// A 2-bit direction flag: 1 up, 2 down, 0 unchanged.
uint8_t Direction(double before, double now) {
  if (now > before) return 1;
  if (now < before) return 2;
  return 0;
}

}  // namespace

int32_t TradingDayOf(int64_t millis) {
  std::time_t seconds = static_cast<std::time_t>(millis / 1000 + 7 * 3600);
  std::tm local{};
  localtime_r(&seconds, &local);
  if (local.tm_wday == 6 || local.tm_wday == 0) {
    seconds += local.tm_wday == 6 ? 2 * 86400 : 86400;
    localtime_r(&seconds, &local);
  }
  return (local.tm_year + 1900) * 10000 + (local.tm_mon + 1) * 100 + local.tm_mday;
}

QuoteFeed::QuoteFeed(FeedSettings settings) : settings_(std::move(settings)) {
  quote_ = settings_.Constants;
  quote_.DepthLevels.assign(1, Quill::DepthLevel{});
}

void QuoteFeed::AddBar(const QXBar& bar) {
  Advance(bar.Time, bar.Open, bar.Close, bar.High, bar.Low, bar.Vol, bar.OpenInt);
}

void QuoteFeed::AddTick(const Tick& tick, double openInt) {
  Advance(tick.Time, tick.Price, tick.Price, tick.Price, tick.Price, tick.Volume, openInt);
}

void QuoteFeed::Advance(int64_t time, double open, double price, double high, double low,
                        double volume, double openInt) {
  Quill::ITickDeepLevel& q = quote_;
  const int32_t day = TradingDayOf(time);
  const double lastBefore = started_ ? q.LastPrice : price;
  const double openIntBefore = started_ ? q.OpenInt : openInt;
  const Quill::DepthLevel depthBefore = q.DepthLevels[0];
  if (!started_ || day != day_) {
    if (started_) {
      q.PreClosePrice = q.LastPrice;
      q.PreOpenInt = q.OpenInt;
      q.PreSettlePrice = q.LastPrice;
    }
    if (settings_.Constants.PreSettlePrice > 0.0)
      q.PreSettlePrice = settings_.Constants.PreSettlePrice;
    if (settings_.Constants.PreOpenInt > 0.0) q.PreOpenInt = settings_.Constants.PreOpenInt;
    q.OpenPrice = open;
    q.HighPrice = high;
    q.LowPrice = low;
    q.TotalVolume = 0.0;
    q.TurnOver = 0.0;
    q.InsideVolume = 0.0;
    q.OutsideVolume = 0.0;
    day_ = day;
  }
  started_ = true;
  q.TimeStamp = time;
  q.HighPrice = std::max(q.HighPrice, high);
  q.LowPrice = std::min(q.LowPrice, low);
  q.TickChange = price - lastBefore;
  if (price != lastBefore) lastUp_ = price > lastBefore;
  (lastUp_ ? q.OutsideVolume : q.InsideVolume) += volume;
  q.LastPrice = price;
  q.ClosePrice = price;
  q.LastVolume = volume;
  q.TotalVolume += volume;
  q.TurnOver += price * volume * settings_.LotValue;
  q.AvgPrice = q.TotalVolume > 0.0 && settings_.LotValue > 0.0
                   ? q.TurnOver / (q.TotalVolume * settings_.LotValue)
                   : price;
  q.OpenInt = openInt;
  const double tick = settings_.TickSize;
  Quill::DepthLevel& level = q.DepthLevels[0];
  level.BidPrice = price - std::floor(settings_.SpreadTicks / 2.0) * tick;
  level.AskPrice = level.BidPrice + settings_.SpreadTicks * tick;
  level.BidVolume = volume;
  level.AskVolume = volume;
  q.ChangeFlags = static_cast<uint8_t>(Direction(lastBefore, price) |
                                       Direction(depthBefore.BidPrice, level.BidPrice) << 2 |
                                       Direction(depthBefore.AskPrice, level.AskPrice) << 4 |
                                       Direction(openIntBefore, openInt) << 6);
}

}  // namespace qxrun
