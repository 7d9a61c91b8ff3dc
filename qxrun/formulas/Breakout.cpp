// Channel breakout with a protective stop and partial exits. A close above the highest high of
// the last `length` bars buys `lots` lots; a close below the lowest low sells short as many. The
// protective stop lies `stop` percent from the entry price: a bar reaching it closes the whole
// position at the stop. A close `target` percent in favour of the entry closes half the lots;
// the rest rides until the stop, the opposite breakout or a close through the `exit_length`-bar
// channel on the other side.
#include "qxrun/formulas/Bundled.h"

#include <algorithm>
#include <cmath>

namespace qxrun {
namespace {

class Breakout : public Formula {
 public:
  explicit Breakout(FormulaContext& context)
      : data_(context.Data()),
        length_(context.IntParam("length")),
        exitLength_(context.IntParam("exit_length")),
        stop_(context.Param("stop") / 100.0),
        target_(context.Param("target") / 100.0),
        lots_(context.IntParam("lots")),
        highs_(context.Numeric()),
        lows_(context.Numeric()),
        partialTaken_(context.Bool()) {}

  void OnBar(CSystemFuncs& f) override {
    const int32_t bar = data_->CurrentBar;
    const bool enoughBars = bar >= std::max(length_, exitLength_);
    // Channels of the bars before this one.
    const double entryHigh = enoughBars ? Highest(length_) : 0.0;
    const double entryLow = enoughBars ? Lowest(length_) : 0.0;
    const double exitHigh = enoughBars ? Highest(exitLength_) : 0.0;
    const double exitLow = enoughBars ? Lowest(exitLength_) : 0.0;
    highs_.Set(f.High());
    lows_.Set(f.Low());
    partialTaken_.Set(partialTaken_[1]);
    if (!enoughBars) return;

    const int32_t position = f.MarketPosition();
    if (position != 0) {
      const double entry = f.EntryPrice();
      const bool isLong = position > 0;
      const double stopPrice = isLong ? entry * (1.0 - stop_) : entry * (1.0 + stop_);
      if (isLong ? f.Low() <= stopPrice : f.High() >= stopPrice) {
        isLong ? f.Sell(0, stopPrice) : f.BuyToCover(0, stopPrice);
      } else if (isLong ? f.Close() < exitLow : f.Close() > exitHigh) {
        isLong ? f.Sell(0, 0) : f.BuyToCover(0, 0);
      } else if (!partialTaken_[0] && std::abs(f.CurrentContracts()) >= 2.0 &&
                 (isLong ? f.Close() >= entry * (1.0 + target_)
                         : f.Close() <= entry * (1.0 - target_))) {
        const double half = std::floor(std::abs(f.CurrentContracts()) / 2.0);
        isLong ? f.Sell(half, 0) : f.BuyToCover(half, 0);
        partialTaken_.Set(1);
      }
    }
    if (f.Close() > entryHigh && f.MarketPosition() <= 0) {
      if (f.Buy(lots_, 0)) partialTaken_.Set(0);
    } else if (f.Close() < entryLow && f.MarketPosition() >= 0) {
      if (f.SellShort(lots_, 0)) partialTaken_.Set(0);
    }
  }

 private:
  double Highest(int32_t n) const {
    double value = highs_[1];
    for (int32_t ago = 2; ago <= n; ++ago) value = std::max(value, highs_[ago]);
    return value;
  }
  double Lowest(int32_t n) const {
    double value = lows_[1];
    for (int32_t ago = 2; ago <= n; ++ago) value = std::min(value, lows_[ago]);
    return value;
  }

  CQXBaseData* data_;
  int32_t length_;
  int32_t exitLength_;
  double stop_;
  double target_;
  int32_t lots_;
  NumericSeries highs_;
  NumericSeries lows_;
  BoolSeries partialTaken_;
};

}  // namespace

const FormulaInfo& BreakoutInfo() {
  static const FormulaInfo info = {
      kFormulaInterfaceVersion,
      "breakout",
      "channel breakout with a protective stop and a partial exit at a profit target",
      {{"length", 20, 2, 10000, true, "bars of the entry channel"},
       {"exit_length", 10, 2, 10000, true, "bars of the exit channel"},
       {"stop", 2, 0.1, 50, false, "protective stop, percent from the entry price"},
       {"target", 3, 0.1, 100, false, "profit target of the partial exit, percent"},
       {"lots", 2, 1, 10000, true, "lots per entry"}},
      1,
      [](FormulaContext& context) -> std::unique_ptr<Formula> {
        return std::make_unique<Breakout>(context);
      }};
  return info;
}

}  // namespace qxrun
