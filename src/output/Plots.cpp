#include "output/Plots.h"

#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

namespace sysfuncs {
namespace {

// Narrow literals are GBK bytes unless the library is built for UTF-8 hosts: a Chinese character
// then takes two bytes.
constexpr bool kDoubleByteTexts = sizeof("中") == 3;

// A locator this close to zero means "no locator given".
constexpr double kLocatorEpsilon = 1e-7;

char FoldAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsLeadByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return kDoubleByteTexts && byte >= 0x81 && byte <= 0xFE;
}

// The target bar of a plot call, or nothing when the call is refused.
std::optional<int32_t> Admit(const CQXBaseData& data, const std::string& name, int32_t barsAgo) {
  if (data.OutputMode != 0) return std::nullopt;
  if (name == std::string_view(kInvalidText)) return std::nullopt;
  const int64_t target = int64_t{data.CurrentBar} - barsAgo;  // no overflow for any barsAgo
  if (target < 0 || target >= data.BarCount) return std::nullopt;
  return static_cast<int32_t>(target);
}

PlotSeries* FindSeries(CQXBaseData& data, const std::string& name) {
  for (PlotSeries& series : data.Plots) {
    if (SameSeriesName(series.name, name)) return &series;
  }
  return nullptr;
}

// A locator near zero, NaN or infinite is no locator: the cell keeps the one it holds.
void KeepLocator(double& target, double locator) {
  if (std::isfinite(locator) && std::fabs(locator) > kLocatorEpsilon) target = locator;
}

// Admits the call, finds or builds the series, resizes it to BarCount and lets `fill` change the
// target cell, which is then stored; a new series joins the list after its cell is filled. False
// when refused.
template <typename Fill>
bool Plot(CQXBaseData& data, const std::string& name, int32_t color, int32_t barsAgo, Fill fill) {
  const std::optional<int32_t> target = Admit(data, name, barsAgo);
  if (!target) return false;
  PlotSeries* found = FindSeries(data, name);
  // A new series is built aside (only when there is none of the name yet).
  std::optional<PlotSeries> created;
  if (found == nullptr) created.emplace().name = name;
  PlotSeries& series = found != nullptr ? *found : *created;
  series.Resize(static_cast<size_t>(data.BarCount));
  PlotCell cell = series.Cell(static_cast<size_t>(*target));
  fill(cell);
  cell.colorSet = color != -1;
  cell.color = color;
  series.SetCell(static_cast<size_t>(*target), cell);
  if (created) data.Plots.push_back(std::move(*created));
  return true;
}

}  // namespace

bool SameSeriesName(const std::string& left, const std::string& right) {
  if (left.size() != right.size()) return false;
  if (left == right) return true;  // the usual case: a formula names a series the same each time
  for (size_t i = 0; i < left.size(); ++i) {
    if (IsLeadByte(left[i]) && i + 1 < left.size()) {
      // A double-byte character: the lead bytes fold as themselves, the second bytes are equal.
      if (left[i] != right[i] || left[i + 1] != right[i + 1]) return false;
      ++i;
      continue;
    }
    if (FoldAscii(left[i]) != FoldAscii(right[i])) return false;
  }
  return true;
}

bool PlotBool(CQXBaseData& data, const std::string& name, bool value, double locator, int32_t color,
              int32_t barsAgo) {
  if (data.OutputMode != 0) return false;
  const bool stored = Plot(data, name, color, barsAgo, [&](PlotCell& cell) {
    cell.boolSet = true;
    cell.boolValue = value;
    KeepLocator(cell.boolLocator, locator);
  });
  return stored && value;
}

double PlotNumeric(CQXBaseData& data, const std::string& name, double value, double locator,
                   int32_t color, int32_t barsAgo) {
  // NaN and the infinities plot as the invalid number: no value is drawn.
  if (!std::isfinite(value)) value = kInvalidNumber;
  if (data.OutputMode != 0) return value;
  const bool stored = Plot(data, name, color, barsAgo, [&](PlotCell& cell) {
    cell.numericSet = value != kInvalidNumber;
    cell.numericValue = value;
    KeepLocator(cell.numericLocator, locator);
  });
  return stored ? value : kInvalidNumber;
}

std::string PlotString(CQXBaseData& data, const std::string& name, const std::string& text,
                       double locator, int32_t color, int32_t barsAgo) {
  if (data.OutputMode != 0) return text;
  const bool stored = Plot(data, name, color, barsAgo, [&](PlotCell& cell) {
    cell.stringSet = text != kInvalidText;
    cell.text = text;
    KeepLocator(cell.stringLocator, locator);
  });
  return stored ? text : std::string(kInvalidText);
}

bool Unplot(CQXBaseData& data, const std::string& name, int32_t barsAgo) {
  const std::optional<int32_t> target = Admit(data, name, barsAgo);
  if (!target) return false;
  PlotSeries* series = FindSeries(data, name);
  if (series == nullptr) return false;
  if (static_cast<size_t>(*target) >= series->Size()) return false;
  PlotCell cell = series->Cell(static_cast<size_t>(*target));
  cell.stringSet = false;
  cell.boolSet = false;
  cell.numericSet = false;
  cell.colorSet = false;
  series->SetCell(static_cast<size_t>(*target), cell);
  return true;
}

}  // namespace sysfuncs
