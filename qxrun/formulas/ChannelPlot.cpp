// An indicator that only plots: the highest high, the lowest low and the middle of the last
// `length` bars, and the close's distance from the middle in percent on a pane of its own.
#include "qxrun/formulas/Bundled.h"

#include <algorithm>

namespace qxrun {
namespace {

class ChannelPlot : public Formula {
 public:
  explicit ChannelPlot(FormulaContext& context)
      : length_(context.IntParam("length")), highs_(context.Numeric()), lows_(context.Numeric()) {}

  void OnBar(CSystemFuncs& f) override {
    highs_.Set(f.High());
    lows_.Set(f.Low());
    double highest = highs_[0];
    double lowest = lows_[0];
    for (int32_t ago = 1; ago < length_; ++ago) {
      highest = std::max(highest, highs_[ago]);
      lowest = std::min(lowest, lows_[ago]);
    }
    const double middle = (highest + lowest) / 2.0;
    f.PlotNumeric("upper", highest);
    f.PlotNumeric("lower", lowest);
    f.PlotNumeric("middle", middle);
    if (middle != 0.0) f.PlotNumeric("distance%", (f.Close() - middle) / middle * 100.0);
  }

 private:
  int32_t length_;
  NumericSeries highs_;
  NumericSeries lows_;
};

}  // namespace

const FormulaInfo& ChannelPlotInfo() {
  static const FormulaInfo info = {
      kFormulaInterfaceVersion,
      "channel",
      "indicator: price channel of the last bars (plots only, no orders)",
      {{"length", 20, 1, 10000, true, "bars of the channel"}},
      1,
      [](FormulaContext& context) -> std::unique_ptr<Formula> {
        return std::make_unique<ChannelPlot>(context);
      }};
  return info;
}

}  // namespace qxrun
