// Two-series spread: trades the difference close(0) - ratio x close(1) against its mean. When
// the spread lies more than `entry` standard deviations (over `length` bars) above its mean,
// sell the first series short and buy the second; below, the mirror. Both legs close when the
// spread comes back within `exit` deviations. Plots the spread's z-score.
#include "qxrun/formulas/Bundled.h"

#include <cmath>

namespace qxrun {
namespace {

class Spread : public Formula {
 public:
  explicit Spread(FormulaContext& context)
      : data_(context.Data()),
        length_(context.IntParam("length")),
        ratio_(context.Param("ratio")),
        entry_(context.Param("entry")),
        exit_(context.Param("exit")),
        lots_(context.IntParam("lots")),
        spreads_(context.Numeric()) {}

  void OnBar(CSystemFuncs& f) override {
    if (data_->DataCount < 2) return;
    const double first = f.Close();
    double second = 0.0;
    {
      DataScope other(*data_, 1);
      second = f.Close();
    }
    spreads_.Set(first - ratio_ * second);
    if (data_->CurrentBar + 1 < length_) return;
    double sum = 0.0;
    double squares = 0.0;
    for (int32_t ago = 0; ago < length_; ++ago) {
      sum += spreads_[ago];
      squares += spreads_[ago] * spreads_[ago];
    }
    const double mean = sum / length_;
    const double variance = squares / length_ - mean * mean;
    if (variance <= 0.0) return;
    const double z = (spreads_[0] - mean) / std::sqrt(variance);
    f.PlotNumeric("zscore", z);

    const int32_t position = f.MarketPosition();
    if (position == 0 && z > entry_) {
      Trade(f, -1);
    } else if (position == 0 && z < -entry_) {
      Trade(f, 1);
    } else if (position != 0 && std::abs(z) < exit_) {
      Trade(f, 0);
    }
  }

 private:
  // Holds `direction` of the spread: 1 long the first series and short the second, -1 the
  // mirror, 0 flat.
  void Trade(CSystemFuncs& f, int direction) {
    Hold(f, direction);
    DataScope other(*data_, 1);
    Hold(f, -direction);
  }
  void Hold(CSystemFuncs& f, int direction) {
    if (direction > 0) {
      f.Buy(lots_, 0);
    } else if (direction < 0) {
      f.SellShort(lots_, 0);
    } else if (f.MarketPosition() > 0) {
      f.Sell(0, 0);
    } else if (f.MarketPosition() < 0) {
      f.BuyToCover(0, 0);
    }
  }

  CQXBaseData* data_;
  int32_t length_;
  double ratio_;
  double entry_;
  double exit_;
  int32_t lots_;
  NumericSeries spreads_;
};

}  // namespace

const FormulaInfo& SpreadInfo() {
  static const FormulaInfo info = {
      kFormulaInterfaceVersion,
      "spread",
      "two-series spread against its mean (needs two --data files)",
      {{"length", 20, 2, 10000, true, "bars of the mean and deviation"},
       {"ratio", 1, 0.0001, 10000, false, "lots-neutral ratio: spread = close0 - ratio x close1"},
       {"entry", 2, 0.1, 10, false, "entry distance, standard deviations"},
       {"exit", 0.5, 0, 10, false, "exit distance, standard deviations"},
       {"lots", 1, 1, 10000, true, "lots per leg"}},
      2,
      [](FormulaContext& context) -> std::unique_ptr<Formula> {
        return std::make_unique<Spread>(context);
      }};
  return info;
}

}  // namespace qxrun
