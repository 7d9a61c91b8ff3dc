// The layout of a bar file: delimiter, header, which column holds what, date and time formats.
#ifndef QXRUN_DATA_CSV_LAYOUT_H_
#define QXRUN_DATA_CSV_LAYOUT_H_

#include "qxrun/data/BarFile.h"
#include "qxrun/data/DateParsing.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace qxrun {

// The values a row may hold, in the order of `BarLayout::Columns`.
enum class BarField : int {
  kDateTime,
  kDate,
  kTime,
  kOpen,
  kHigh,
  kLow,
  kClose,
  kVolume,
  kOpenInt,
};
inline constexpr size_t kBarFieldCount = 9;

// The name of a field in messages: "DateTime", "Date", "Time", "Open", ..., "OpenInterest".
const char* BarFieldName(BarField field);

// The most fields a row may hold; further fields are not split off (they are never read).
inline constexpr int kMaxColumns = 64;

// Splits `line` at `delimiter` into at most `limit` fields, each trimmed of surrounding blanks
// and of one pair of enclosing double quotes; a space delimiter takes a run of blanks as one.
// Returns the number of fields, counting up to `limit`.
int SplitFields(std::string_view line, char delimiter, std::string_view* fields, int limit);

// How every row of one file is read.
struct BarLayout {
  char Delimiter = ',';
  bool HasHeader = false;
  std::array<int, kBarFieldCount> Columns{};  // column of each BarField, -1 when absent
  int ColumnsNeeded = 0;                      // 1 + the largest column read
  std::optional<DateTimeFormat> DateFormat;   // of the Date or DateTime column
  std::optional<DateTimeFormat> TimeFormat;   // of the Time column or the DateTime's time part

  int Column(BarField field) const { return Columns[static_cast<size_t>(field)]; }
};

// Resolves the layout of a file from `map` and the file's first line and first bar line
// (`barLine`, the same as `firstLine` when the file has no header; empty when it holds no bar).
// Whatever `map` leaves open is detected. Throws InputError naming `fileName`, the line and the
// field when the layout cannot be made out. `barLineNumber` is the line number of `barLine`.
BarLayout ResolveLayout(const ColumnMap& map, std::string_view firstLine, std::string_view barLine,
                        int barLineNumber, const std::string& fileName);

// Whether `firstLine` is a header: its first field does not begin with a digit.
bool LooksLikeHeader(std::string_view firstLine, char delimiter);

// The delimiter of `line`: the most frequent of ',', ';' and tab, else a space, else ','.
char DetectDelimiter(std::string_view line);

// How a message names a delimiter: "','", "';'", "tab", "' '".
std::string DelimiterName(char delimiter);

// A hint for a line split at `delimiter` into too few fields: when the line holds another
// delimiter, "; the line is split at ',' but holds ';': set "delimiter" in the column map";
// otherwise empty.
std::string DelimiterHint(std::string_view line, char delimiter);

// A value as a message quotes it: at most 40 characters, unprintable bytes as '?'.
std::string Quoted(std::string_view value);

}  // namespace qxrun

#endif  // QXRUN_DATA_CSV_LAYOUT_H_
