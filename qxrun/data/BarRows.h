// The rows of a bar file turned into bars, each checked.
#ifndef QXRUN_DATA_BAR_ROWS_H_
#define QXRUN_DATA_BAR_ROWS_H_

#include "sysfuncs/HostData.h"

#include "qxrun/data/CsvLayout.h"
#include "qxrun/data/LocalDays.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace qxrun {

// Reads the rows of one file in order. A row gives one bar when its date and time read in the
// layout's formats, its prices are finite numbers of 0 or more with Low <= Open, Close <= High,
// its volume and open interest (empty reads as 0) are finite and not negative, and its time comes
// after the time of the bar before it. Anything else throws InputError naming the file, the line
// and the field.
class BarRows {
 public:
  BarRows(const BarLayout& layout, std::string fileName);

  // Reads `line` (number `lineNumber`) into the bar that follows the last one read.
  QXBar Read(std::string_view line, int64_t lineNumber);

  // The period of the bars read so far, from their most frequent spacing in local time: a day or
  // more gives day (0), week (4, spacing of 7 days or more) or month (5, 28 days or more) bars of
  // interval 1; less than a day gives N-minute bars (1/N) when the spacing is a whole number of
  // minutes, else N-second bars (2/N). One bar: day bars when it stands at midnight, else 1-minute
  // bars. First the bar type, then the interval.
  std::pair<uint32_t, uint32_t> Period() const;

 private:
  [[noreturn]] void Fail(int64_t lineNumber, BarField field, const std::string& problem,
                         std::string_view value) const;
  [[noreturn]] void FailOutsideRange(const QXBar& bar, int64_t lineNumber) const;
  double Number(BarField field, bool required, int64_t lineNumber) const;
  std::optional<size_t> ReadDate(std::string_view text, CivilDate* date);
  int64_t Instant(int64_t lineNumber, int64_t* localMilliseconds);
  void CountSpacing(int64_t localMilliseconds);

  BarLayout layout_;
  std::string fileName_;
  LocalDays days_;
  std::array<std::string_view, kMaxColumns> fields_{};

  std::string lastDateText_;  // the text of the last date read, and the date
  CivilDate lastDate_;

  bool any_ = false;
  int64_t previousInstant_ = 0;
  int64_t previousLine_ = 0;
  int64_t previousLocal_ = 0;

  // The spacings seen and how often; a file holds few different ones, and one not among the
  // first few is not counted.
  static constexpr size_t kSpacings = 16;
  std::array<std::pair<int64_t, int64_t>, kSpacings> spacings_{};
  size_t spacingCount_ = 0;
  size_t lastSpacing_ = 0;
};

}  // namespace qxrun

#endif  // QXRUN_DATA_BAR_ROWS_H_
