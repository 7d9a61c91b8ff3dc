// A live-trading exercise: on the newest bar it reads the quote on every evaluation (last price,
// best bid and ask, the account's equity and long position), and every `every` evaluations it
// trades one round: it cancels what is still working, else sells its long position at the bid,
// else buys `lots` at the ask. On earlier bars it does nothing. Plots the last price it saw.
#include "qxrun/formulas/Bundled.h"

namespace qxrun {
namespace {

class LiveQuotes : public Formula {
 public:
  explicit LiveQuotes(FormulaContext& context)
      : every_(context.IntParam("every")), lots_(context.IntParam("lots")) {}

  void OnBar(CSystemFuncs& f) override {
    if (f.BarStatus() != 2 || !f.QuoteDataExist()) return;
    const double last = f.Q_Last();
    const double bid = f.Q_BidPrice(0);
    const double ask = f.Q_AskPrice(0);
    const double equity = f.A_CurrentEquity();
    const double held = f.A_BuyPosition();
    f.PlotNumeric("last", last);
    if (++evaluations_ % every_ != 0 || equity == sysfuncs::kInvalidNumber) return;
    if (f.A_GetOpenOrderCount() > 0) {
      f.A_DeleteOrder("");
    } else if (held >= 1.0) {
      f.A_SendOrder(2, 1, held, bid, 0, 0);
    } else {
      f.A_SendOrder(1, 0, lots_, ask, 0, 0);
    }
  }

 private:
  int32_t every_;
  int32_t lots_;
  int64_t evaluations_ = 0;  // of this instance: a replay started again counts from 0
};

}  // namespace

const FormulaInfo& LiveQuotesInfo() {
  static const FormulaInfo info = {
      kFormulaInterfaceVersion,
      "live_quotes",
      "reads the quote and the account on every tick, trades one round every N ticks (replay)",
      {{"every", 100, 1, 1000000, true, "evaluations of the newest bar between orders"},
       {"lots", 1, 1, 1000, true, "lots of each entry"}},
      1,
      [](FormulaContext& context) -> std::unique_ptr<Formula> {
        return std::make_unique<LiveQuotes>(context);
      }};
  return info;
}

}  // namespace qxrun
