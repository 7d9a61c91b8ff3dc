// The one place that builds a host data object from loaded bar series and the run settings, and
// steps a formula over the bars. Every mode of qxrun runs formulas through it.
#ifndef QXRUN_HOST_HOST_RUN_H_
#define QXRUN_HOST_HOST_RUN_H_

#include "sysfuncs/sysfuncs.h"

#include "qxrun/Formula.h"
#include "qxrun/config/RunFile.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qxrun {

// A formula instance over its data object. The data sources are not copied: the caller keeps
// `sources` alive and unchanged while the instance lives.
class HostInstance {
 public:
  HostInstance(std::vector<QXDataSource>& sources, const RunSettings& settings,
               const std::string& formulaName);
  HostInstance(const HostInstance&) = delete;
  HostInstance& operator=(const HostInstance&) = delete;

  // Called every `every` bars with the bars done so far.
  using Progress = std::function<void(int32_t done, int32_t total)>;

  // A back-test: the formula created once, its body run on every bar of the main series once,
  // the bar checked out after each. The body runs as a chart run, so that plots are kept (unless
  // SkipPlots); the
  // checkout runs in the settings' output mode, which decides the end-of-run settlement and the
  // report block.
  void Run(const FormulaInfo& info, const std::map<std::string, double>& params,
           const Progress& progress = {}, int32_t every = 65536);

  // A live session, bar by bar. The main series may grow between calls (the bar being formed
  // is its last bar); BarCount follows its size.
  //
  // Creates the formula for the rest of the instance's life.
  void Start(const FormulaInfo& info, const std::map<std::string, double>& params);
  // Evaluates bars [0, end) once each, checked out after each, with one CSystemFuncs.
  // REQUIRES: Start.
  void RunHistory(int32_t end);
  // Evaluates `bar` anew, as a live platform does on every tick of the newest bar: a new
  // CSystemFuncs at `bar` (the library rolls the bar's ledgers, trades and series back), the body,
  // the checkout. The account's own block (capital, returns, drawdown and statistics, report,
  // equity points and bar orders of this bar) is not part of the library's roll-back: a checkout
  // that closed trades on the bar would book their profit into the capital again. It is put back
  // first from the copy MarkBarStart took. With `chart` set the bar is checked out as a chart run
  // (output mode 0), as on a live chart: no settlement and no report block, which the next
  // evaluation would throw away. REQUIRES: Start, and MarkBarStart after the last checkout of
  // bar - 1.
  void Reevaluate(int32_t bar, bool chart = false);
  // Keeps the account's own block as the state the next bar starts from.
  void MarkBarStart();

  // Bar by bar, for modes that interleave instances (a pool). Begin creates the formula at bar
  // 0; Evaluate runs its body on `bar`, and again on the same bar when called twice (a body that
  // keeps its state in series variables then leaves what one run would; on the last bar the
  // second run starts from the state at the bar's start); Checkout checks the bar out. Bars go
  // in increasing order, each evaluated before it is checked out.
  void Begin(const FormulaInfo& info, const std::map<std::string, double>& params);
  void Evaluate(int32_t bar);
  void Checkout(int32_t bar);

  // The body runs in the settings' output mode from now on, as in a platform's report run:
  // nothing is plotted and no alert is raised (a formula's PlotBool then answers false). For modes
  // that read only the figures, such as a sweep: a point's plot series would be most of its
  // memory. Changes nothing when the settings' output mode is 0.
  void SkipPlots() { bodyMode_ = outputMode_; }

  CQXBaseData& Data() { return data_; }
  const CQXBaseData& Data() const { return data_; }
  const StrategyAccount& Account() const { return *data_.Account; }

 private:
  // The part of the strategy account a re-evaluation puts back.
  struct AccountBlock {
    double Capital = 0.0;
    double CumReturn = 0.0;
    double PercentEquitySum = 0.0;
    AccountStatistics Stats;
    AccountStatistics SavedStats;
    int32_t FinalPosition = 0;
    ReportDetail Detail;
    PerformanceReport Report;
    size_t EquityPoints = 0;
  };

  // Points the data object at `bar` of the main series, its bar count the series' size (which
  // grows during a replay). Returns the size.
  int32_t PointAt(int32_t bar);
  // The body on `bar`, then the checkout in `checkoutMode`.
  void Step(CSystemFuncs& funcs, int32_t bar, int32_t checkoutMode);

  CQXBaseData data_;
  int32_t outputMode_;
  int32_t bodyMode_ = 0;  // the output mode the body runs in; 0 keeps plots
  std::unique_ptr<FormulaContext> context_;
  std::unique_ptr<Formula> formula_;
  AccountBlock barStart_;
  // The object of Begin, Evaluate and Checkout.
  std::unique_ptr<CSystemFuncs> funcs_;
  int32_t evaluatedBar_ = -1;
};

}  // namespace qxrun

#endif  // QXRUN_HOST_HOST_RUN_H_
