// Bar files: CSV in the layouts people have, read without an ingest step.
#ifndef QXRUN_DATA_BAR_FILE_H_
#define QXRUN_DATA_BAR_FILE_H_

#include "sysfuncs/HostData.h"

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace qxrun {

// The layout of a bar file. Every member left at its default is detected from the file.
struct ColumnMap {
  char Delimiter = 0;  // ',', ';', '\t' or ' '; 0: detected from the first line
  int HasHeader = -1;  // 1 yes, 0 no, -1 detected
  // Zero-based column indexes; -1: found by the header's names or the usual order.
  int DateTime = -1;  // date and time in one column
  int Date = -1;
  int Time = -1;
  int Open = -1;
  int High = -1;
  int Low = -1;
  int Close = -1;
  int Volume = -1;
  int OpenInt = -1;
  std::string DateFormat;  // strftime-like, e.g. "%Y-%m-%d", "%Y%m%d", "%m/%d/%Y"; empty: detected
  std::string TimeFormat;  // e.g. "%H:%M:%S", "%H:%M", "%H%M%S"; empty: detected
};

// The column map of a run file's "columns" object. Keys, each optional: "delimiter" (",", ";",
// "tab" or "space"), "header" (true or false), "datetime", "date", "time", "open", "high", "low",
// "close", "volume", "open_interest" (zero-based column numbers), "date_format" and
// "time_format" (formats as in ColumnMap). "datetime" excludes "date" and "time". `path` is the
// object's key path in the run file ("/symbols/0/columns"); an unknown key or a wrong type throws
// InputError naming it.
ColumnMap ColumnMapFromJson(const nlohmann::json& value, const std::string& path);

// How a file is read when the map leaves its layout open:
// - Delimiter: the most frequent of ',', ';' and tab in the first line, else a space (a run of
//   blanks is one delimiter). Fields are trimmed of blanks and of one pair of double quotes.
// - Header: the first line is a header when its first field does not begin with a digit. Its
//   names are compared without case, blanks or punctuation: "Date"/"Day"/"TradeDate"/
//   "TradingDay", "Time", "DateTime"/"Timestamp", "Open"/"O", "High"/"H", "Low"/"L",
//   "Close"/"C"/"Last", "Volume"/"Vol"/"V", "OpenInterest"/"OpenInt"/"OI"/"Position", and their
//   usual Chinese names in UTF-8 or GBK. Other columns ("Adj Close", "Amount") are not read. A
//   date column whose values carry a time ("2006-01-02 09:01") is read as date and time. When
//   the rows hold one field more than the header and the field after the date is a time
//   ("09:01:00"), the header left the time out and the columns after the date move one place
//   right.
// - Without a header: Date[,Time],Open,High,Low,Close[,Volume[,OpenInterest]], the time taken
//   when the second field holds a time with a colon.
// - Formats: dates "%Y-%m-%d" (or '/' or '.'), "%Y%m%d", "%m/%d/%Y", "%d.%m.%Y"; a date and
//   time column separates them by a blank or 'T'; times "%H:%M:%S" (with a fraction),
//   "%H:%M", and in a Time column of digits "%H%M%S" or "%H%M".
// - Volume and open interest are 0 when the file has no such column or the field is empty.
// - Line ends are "\n" or "\r\n"; a UTF-8 byte order mark is dropped. Empty (or blank) lines
//   at the end of the file are fine; an empty line before the first line, after the header or
//   between bars is an error, since it usually marks a lost row or two files run together.
// - A row is refused (InputError, "FILE:LINE: field NAME: problem (value 'xyz')") when a field
//   is missing, a date or time does not read in its format, a price is empty, not a number,
//   not finite or negative, volume or open interest are negative or not finite, Low is above
//   High, Open or Close lie outside Low to High, or its time is not after the previous row's.
// `source` is left as it was when the file is refused.
//
// Loads the bars of `file` into `source.Bars`, oldest first, and sets `source.BarType` and
// `source.BarInterval` from the spacing of the bars (0/1 daily, 1/N N-minute, 2/N N-second).
// Times are local. Throws InputError naming the file, the line and the field.
void LoadBarFile(const std::filesystem::path& file, const ColumnMap& map, QXDataSource& source);

}  // namespace qxrun

#endif  // QXRUN_DATA_BAR_FILE_H_
