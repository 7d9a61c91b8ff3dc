// The data the page's script draws, as one JSON text.
#ifndef QXRUN_PAGE_PAGE_JSON_H_
#define QXRUN_PAGE_PAGE_JSON_H_

#include "page/Aggregation.h"

#include <string>

namespace qxrun {

// The shown series as arrays of arrays, numbers to ten significant digits:
//   {"candles": [[time, open, high, low, close], ...],
//    "lines": [{"name", "color", "ownPane", "points": [[time, value], ...]}, ...],
//    "markers": [[time, kind, price, text], ...],   kind in the order of MarkerKind
//    "equity": [[time, value], ...], "drawdown": [[time, value], ...]}
// A line colour that is not "#rrggbb" is replaced from a palette. The text is safe inside
// <script> (no "<"), and bytes that are not UTF-8 become U+FFFD.
std::string PageDataJson(const ShownSeries& shown);

}  // namespace qxrun

#endif  // QXRUN_PAGE_PAGE_JSON_H_
