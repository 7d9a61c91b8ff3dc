// Reading bar files: CSV with a header line, "Date[,Time],Open,High,Low,Close,Volume,OpenInterest",
// dates as YYYY-MM-DD or YYYY/MM/DD and times as hh:mm[:ss], in local time.
#ifndef SYSFUNCS_EXAMPLES_BAR_FILE_H_
#define SYSFUNCS_EXAMPLES_BAR_FILE_H_

#include "sysfuncs/HostData.h"

#include <stdexcept>
#include <string>
#include <vector>

// A bar file that cannot be read; what() names the file, the line and the field.
class BarFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The bars of `path`, oldest first. Throws BarFileError on a missing file, a bad header, a field
// that is not a number or a date, or bars out of time order.
std::vector<QXBar> ReadBarFile(const std::string& path);

#endif  // SYSFUNCS_EXAMPLES_BAR_FILE_H_
