// The formula interface of qxrun: strategies, indicators and stock pickers written in C++.
//
// A formula is a class derived from qxrun::Formula. The host creates one object per formula
// instance through the formula's factory, then calls OnBar once per bar of the main series with
// the instance's CSystemFuncs; after each call the host checks the bar out. A formula knows
// nothing of the mode it runs in (a back-test, a replay, a pool or a sweep).
//
// Series variables (a value per bar that the formula reads back some bars later) live in the
// host data object's series lists, through NumericSeries, BoolSeries and StringSeries, so that a
// bar evaluated anew starts from the values of the bar before.
//
// A shared object adds formulas by exporting the factory function:
//
//   extern "C" const qxrun::FormulaInfo* qxrun_formulas(int* count);
//
// which returns an array of `count` formula descriptions that live as long as the shared object.
#ifndef QXRUN_FORMULA_H_
#define QXRUN_FORMULA_H_

#include "sysfuncs/sysfuncs.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qxrun {

// The current version of this interface; a shared object built against another is refused.
inline constexpr int kFormulaInterfaceVersion = 1;

// A parameter of a formula: the value given by --param name=value must lie in [Min, Max]; an
// integral parameter takes whole numbers only.
struct Parameter {
  std::string Name;
  double Default = 0.0;
  double Min = 0.0;
  double Max = 0.0;
  bool Integral = true;
  std::string Help;
};

// A series variable: one value per bar, stored in the host data object. Set writes the value of
// the current bar; Get(n) reads the value n bars ago (0: the current bar). Before the first bar,
// the first bar's value is read; a bar not yet written reads the last value written.
template <typename T, typename List>
class SeriesRef {
 public:
  SeriesRef() = default;
  SeriesRef(CQXBaseData* data, List* lists, size_t index)
      : data_(data), lists_(lists), index_(index) {}

  void Set(const T& value) {
    auto& values = (*lists_)[index_];
    const size_t bar = static_cast<size_t>(data_->CurrentBar);
    if (values.size() == bar) {
      values.push_back(value);  // the usual case: one value per bar, in bar order
      return;
    }
    if (values.size() < bar) values.resize(bar + 1, values.empty() ? T() : values.back());
    values[bar] = value;
  }

  T Get(int32_t barsAgo = 0) const {
    const auto& values = (*lists_)[index_];
    if (values.empty()) return T();
    int64_t bar = static_cast<int64_t>(data_->CurrentBar) - barsAgo;
    if (bar < 0) bar = 0;
    if (static_cast<size_t>(bar) >= values.size()) return values.back();
    return values[static_cast<size_t>(bar)];
  }

  T operator[](int32_t barsAgo) const { return Get(barsAgo); }
  // Bars written so far.
  size_t Size() const { return (*lists_)[index_].size(); }

 private:
  CQXBaseData* data_ = nullptr;
  List* lists_ = nullptr;
  size_t index_ = 0;
};

using NumericSeries = SeriesRef<double, std::vector<std::vector<double>>>;
using BoolSeries = SeriesRef<uint8_t, std::vector<std::vector<uint8_t>>>;
using StringSeries = SeriesRef<std::string, std::vector<std::vector<std::string>>>;

// What a factory receives: the instance's data object and its parameter values.
class FormulaContext {
 public:
  FormulaContext(CQXBaseData* data, std::map<std::string, double> params)
      : data_(data), params_(std::move(params)) {}

  // The value of a declared parameter (its default unless --param gave one).
  double Param(const std::string& name) const {
    const auto found = params_.find(name);
    return found == params_.end() ? 0.0 : found->second;
  }
  int32_t IntParam(const std::string& name) const {
    return static_cast<int32_t>(std::lround(Param(name)));
  }

  // A new series variable with room for every bar.
  NumericSeries Numeric() { return Make<NumericSeries>(data_->NumericSeries); }
  BoolSeries Bool() { return Make<BoolSeries>(data_->BoolSeries); }
  StringSeries String() { return Make<StringSeries>(data_->StringSeries); }

  CQXBaseData* Data() const { return data_; }

 private:
  template <typename Series, typename List>
  Series Make(List& lists) {
    lists.emplace_back().reserve(static_cast<size_t>(data_->BarCount));
    return Series(data_, &lists, lists.size() - 1);
  }

  CQXBaseData* data_;
  std::map<std::string, double> params_;
};

// Addresses another data source for the life of the scope: CurrentData becomes `index` and
// CurrentBar the last bar of that source stamped at or before the main series' current bar
// (its first bar when none is). Restores both when it ends.
class DataScope {
 public:
  DataScope(CQXBaseData& data, int32_t index)
      : data_(data),
        savedData_(data.CurrentData),
        savedBar_(data.CurrentBar),
        savedCount_(data.BarCount) {
    const std::vector<QXDataSource>& sources = *data.DataSources;
    const int64_t time = sources[0].Bars[static_cast<size_t>(savedBar_)].Time;
    const std::vector<QXBar>& bars = sources[static_cast<size_t>(index)].Bars;
    // Binary search: the last bar with Time <= time.
    size_t low = 0;
    size_t high = bars.size();
    while (low < high) {
      const size_t middle = (low + high) / 2;
      if (bars[middle].Time <= time) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    data.CurrentData = index;
    data.CurrentBar = low == 0 ? 0 : static_cast<int32_t>(low - 1);
    data.BarCount = static_cast<int32_t>(bars.size());
  }
  ~DataScope() {
    data_.CurrentData = savedData_;
    data_.CurrentBar = savedBar_;
    data_.BarCount = savedCount_;
  }
  DataScope(const DataScope&) = delete;
  DataScope& operator=(const DataScope&) = delete;

 private:
  CQXBaseData& data_;
  int32_t savedData_;
  int32_t savedBar_;
  int32_t savedCount_;
};

// One formula instance.
class Formula {
 public:
  virtual ~Formula() = default;
  // Called once per bar of the main series, with CurrentData 0 and CurrentBar the bar.
  virtual void OnBar(CSystemFuncs& f) = 0;
};

// A formula as the host lists and creates it.
struct FormulaInfo {
  int InterfaceVersion = kFormulaInterfaceVersion;
  std::string Name;
  std::string Summary;
  std::vector<Parameter> Parameters;
  int32_t DataSources = 1;  // bar files the formula needs
  std::unique_ptr<Formula> (*Create)(FormulaContext& context) = nullptr;
};

}  // namespace qxrun

// The factory a formula shared object exports.
extern "C" {
using QxrunFormulasFunction = const qxrun::FormulaInfo* (*)(int* count);
}

#endif  // QXRUN_FORMULA_H_
