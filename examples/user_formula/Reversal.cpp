// A user formula: after `down` closes in a row lower than the one before, buy at the close; sell
// after `hold` bars.
#include <qxrun/Formula.h>

namespace {

class Reversal : public qxrun::Formula {
 public:
  explicit Reversal(qxrun::FormulaContext& context)
      : data_(context.Data()),
        down_(context.IntParam("down")),
        hold_(context.IntParam("hold")),
        closes_(context.Numeric()) {}

  void OnBar(CSystemFuncs& f) override {
    closes_.Set(f.Close());
    if (f.MarketPosition() > 0 && f.BarsSinceEntry() >= hold_) f.Sell(0, 0);
    if (data_->CurrentBar < down_ || f.MarketPosition() != 0) return;
    for (int32_t ago = 0; ago < down_; ++ago) {
      if (closes_[ago] >= closes_[ago + 1]) return;
    }
    f.Buy(1, 0);
  }

 private:
  CQXBaseData* data_;
  int32_t down_;
  int32_t hold_;
  qxrun::NumericSeries closes_;
};

const qxrun::FormulaInfo kFormulas[] = {
    {qxrun::kFormulaInterfaceVersion,
     "reversal",
     "buys after a run of lower closes, sells some bars later",
     {{"down", 3, 1, 20, true, "lower closes in a row"}, {"hold", 5, 1, 1000, true, "bars held"}},
     1,
     [](qxrun::FormulaContext& context) -> std::unique_ptr<qxrun::Formula> {
       return std::make_unique<Reversal>(context);
     }},
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const qxrun::FormulaInfo* qxrun_formulas(
    int* count) {
  *count = static_cast<int>(sizeof(kFormulas) / sizeof(kFormulas[0]));
  return kFormulas;
}
