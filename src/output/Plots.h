// Plot output: named series of per-bar cells in the host data object, which the host paints.
#ifndef SYSFUNCS_OUTPUT_PLOTS_H_
#define SYSFUNCS_OUTPUT_PLOTS_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <string>

namespace sysfuncs {

// Each plot call writes into the cell of bar CurrentBar - barsAgo of the series `name` (found
// without regard to letter case, created on its first plot) after resizing the series to
// BarCount cells. A plot is refused while OutputMode is non-zero, for the name "N/A" and for a
// bar outside the series. The locator is kept only when its magnitude exceeds 1e-7; the colour
// -1 means no colour.

// Returns `value`; false when refused, and false (not the value) while OutputMode is non-zero.
bool PlotBool(CQXBaseData& data, const std::string& name, bool value, double locator, int32_t color,
              int32_t barsAgo);

// Returns `value`, also while OutputMode is non-zero; the invalid number when refused. The
// invalid number is stored but not shown.
double PlotNumeric(CQXBaseData& data, const std::string& name, double value, double locator,
                   int32_t color, int32_t barsAgo);

// Returns `text`, also while OutputMode is non-zero; "N/A" when refused. The text "N/A" is
// stored but not shown.
std::string PlotString(CQXBaseData& data, const std::string& name, const std::string& text,
                       double locator, int32_t color, int32_t barsAgo);

// Clears the shown flags of one cell of an existing series; the values stay. False when refused,
// when no series has the name or when the series has no such cell. Never creates or resizes a
// series.
bool Unplot(CQXBaseData& data, const std::string& name, int32_t barsAgo);

// True when two series names are equal without regard to the letter case of ASCII letters. In a
// double-byte code page the second byte of a character is compared as it is, so that two
// different characters never meet.
bool SameSeriesName(const std::string& left, const std::string& right);

}  // namespace sysfuncs

#endif  // SYSFUNCS_OUTPUT_PLOTS_H_
