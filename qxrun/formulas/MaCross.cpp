// Moving-average crossover: always in the market after the first cross. When the fast simple
// average of the closes crosses above the slow one, buy (covering a short first); when it
// crosses below, sell short (selling a long first). Orders are market orders at the bar's close
// for the default lots. Plots both averages.
#include "qxrun/formulas/Bundled.h"

#include <algorithm>

namespace qxrun {
namespace {

class MaCross : public Formula {
 public:
  explicit MaCross(FormulaContext& context)
      : data_(context.Data()),
        fast_(context.IntParam("fast")),
        slow_(context.IntParam("slow")),
        closes_(context.Numeric()),
        difference_(context.Numeric()) {}

  void OnBar(CSystemFuncs& f) override {
    const int32_t bar = data_->CurrentBar;
    const double close = f.Close();
    closes_.Set(close);
    if (bar + 1 < slow_ || bar + 1 < fast_) return;
    const double fastAverage = Average(fast_);
    const double slowAverage = Average(slow_);
    difference_.Set(fastAverage - slowAverage);
    f.PlotNumeric("fast", fastAverage);
    f.PlotNumeric("slow", slowAverage);
    if (bar + 1 == std::max(fast_, slow_)) return;  // the first averages have no cross
    const double before = difference_[1];
    const double now = difference_[0];
    if (before <= 0.0 && now > 0.0) {
      f.Buy(0, 0);
    } else if (before >= 0.0 && now < 0.0) {
      f.SellShort(0, 0);
    }
  }

 private:
  // The mean of the last n closes, summed oldest first.
  double Average(int32_t n) const {
    double sum = 0.0;
    for (int32_t ago = n - 1; ago >= 0; --ago) sum += closes_[ago];
    return sum / n;
  }

  CQXBaseData* data_;
  int32_t fast_;
  int32_t slow_;
  NumericSeries closes_;
  NumericSeries difference_;
};

}  // namespace

const FormulaInfo& MaCrossInfo() {
  static const FormulaInfo info = {
      kFormulaInterfaceVersion,
      "ma_cross",
      "moving-average crossover, always in the market: long above, short below",
      {{"fast", 5, 1, 1000, true, "bars of the fast average"},
       {"slow", 20, 2, 10000, true, "bars of the slow average"}},
      1,
      [](FormulaContext& context) -> std::unique_ptr<Formula> {
        return std::make_unique<MaCross>(context);
      }};
  return info;
}

}  // namespace qxrun
