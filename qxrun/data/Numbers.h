// Numbers in the text of bar files.
#ifndef QXRUN_DATA_NUMBERS_H_
#define QXRUN_DATA_NUMBERS_H_

#include <string_view>

namespace qxrun {

// Reads the whole of `text` as a decimal number ("3602.5", "-0.25", "1.5e7", "nan", "inf") into
// `value`, rounded to the nearest double; false when `text` is not a number or holds more. A
// plain decimal of at most 15 digits is read on a short path that gives the same double.
bool ParseNumber(std::string_view text, double* value);

}  // namespace qxrun

#endif  // QXRUN_DATA_NUMBERS_H_
