// Stock picker: ranks the symbols of a pool by their `length`-bar rate of change and holds the
// best `top` long. Each bar it gives its sort value and, from its rank, the decision to hold or
// not (`qxrun pool` holds the symbol from that bar's close). Run alone, outside a pool, it reads
// no rank and decides nothing.
#include "qxrun/formulas/Bundled.h"

namespace qxrun {
namespace {

class MomentumPick : public Formula {
 public:
  explicit MomentumPick(FormulaContext& context)
      : data_(context.Data()),
        length_(context.IntParam("length")),
        top_(context.IntParam("top")),
        closes_(context.Numeric()) {}

  void OnBar(CSystemFuncs& f) override {
    closes_.Set(f.Close());
    if (data_->CurrentBar < length_ || closes_[length_] <= 0.0) return;
    const double change = f.Close() / closes_[length_] - 1.0;
    f.SetSPSortValue(0, change, true);
    f.PlotNumeric("change%", change * 100.0);
    const int32_t rank = f.GetSPSortRanking(0);
    if (rank == sysfuncs::kInvalidInteger) return;  // no ranking yet
    f.StockPickingCheckPoint(rank <= top_ ? 1 : 0, true);
  }

 private:
  CQXBaseData* data_;
  int32_t length_;
  int32_t top_;
  NumericSeries closes_;
};

}  // namespace

const FormulaInfo& MomentumPickInfo() {
  static const FormulaInfo info = {
      kFormulaInterfaceVersion,
      "momentum_pick",
      "stock picker: holds the symbols with the best rate of change (for pools)",
      {{"length", 20, 1, 10000, true, "bars of the rate of change"},
       {"top", 10, 1, 10000, true, "symbols held"}},
      1,
      [](FormulaContext& context) -> std::unique_ptr<Formula> {
        return std::make_unique<MomentumPick>(context);
      }};
  return info;
}

}  // namespace qxrun
