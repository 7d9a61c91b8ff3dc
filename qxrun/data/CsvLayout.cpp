#include "qxrun/data/CsvLayout.h"

#include "qxrun/InputError.h"

#include <algorithm>
#include <cctype>

namespace qxrun {
namespace {

constexpr std::array<const char*, kBarFieldCount> kFieldNames = {
    "DateTime", "Date", "Time", "Open", "High", "Low", "Close", "Volume", "OpenInterest"};

// Header names of each field, compared after lower-casing and dropping everything but letters
// and digits ("Open Interest", "open_interest" and "OpenInterest" are one name). A name not
// listed ("Adj Close", "Amount") is a column the loader does not read.
struct HeaderName {
  std::string_view name;
  BarField field;
};
constexpr std::array<HeaderName, 23> kHeaderNames = {{
    {"datetime", BarField::kDateTime},
    {"timestamp", BarField::kDateTime},
    {"date", BarField::kDate},
    {"day", BarField::kDate},
    {"tradedate", BarField::kDate},
    {"tradingday", BarField::kDate},
    {"time", BarField::kTime},
    {"open", BarField::kOpen},
    {"o", BarField::kOpen},
    {"high", BarField::kHigh},
    {"h", BarField::kHigh},
    {"low", BarField::kLow},
    {"l", BarField::kLow},
    {"close", BarField::kClose},
    {"c", BarField::kClose},
    {"last", BarField::kClose},
    {"volume", BarField::kVolume},
    {"vol", BarField::kVolume},
    {"v", BarField::kVolume},
    {"openinterest", BarField::kOpenInt},
    {"openint", BarField::kOpenInt},
    {"oi", BarField::kOpenInt},
    {"position", BarField::kOpenInt},
}};

// Chinese header names, matched byte for byte in UTF-8 and in GBK (written as bytes so that the
// compiler's code page for literals does not touch them): date, time, open, high, low, close
// (each also with the suffix "price"), volume and open interest.
constexpr std::array<HeaderName, 24> kChineseHeaderNames = {{
    {"\xe6\x97\xa5\xe6\x9c\x9f", BarField::kDate},
    {"\xc8\xd5\xc6\xda", BarField::kDate},
    {"\xe6\x97\xb6\xe9\x97\xb4", BarField::kTime},
    {"\xca\xb1\xbc\xe4", BarField::kTime},
    {"\xe5\xbc\x80\xe7\x9b\x98", BarField::kOpen},
    {"\xbf\xaa\xc5\xcc", BarField::kOpen},
    {"\xe5\xbc\x80\xe7\x9b\x98\xe4\xbb\xb7", BarField::kOpen},
    {"\xbf\xaa\xc5\xcc\xbc\xdb", BarField::kOpen},
    {"\xe6\x9c\x80\xe9\xab\x98", BarField::kHigh},
    {"\xd7\xee\xb8\xdf", BarField::kHigh},
    {"\xe6\x9c\x80\xe9\xab\x98\xe4\xbb\xb7", BarField::kHigh},
    {"\xd7\xee\xb8\xdf\xbc\xdb", BarField::kHigh},
    {"\xe6\x9c\x80\xe4\xbd\x8e", BarField::kLow},
    {"\xd7\xee\xb5\xcd", BarField::kLow},
    {"\xe6\x9c\x80\xe4\xbd\x8e\xe4\xbb\xb7", BarField::kLow},
    {"\xd7\xee\xb5\xcd\xbc\xdb", BarField::kLow},
    {"\xe6\x94\xb6\xe7\x9b\x98", BarField::kClose},
    {"\xca\xd5\xc5\xcc", BarField::kClose},
    {"\xe6\x94\xb6\xe7\x9b\x98\xe4\xbb\xb7", BarField::kClose},
    {"\xca\xd5\xc5\xcc\xbc\xdb", BarField::kClose},
    {"\xe6\x88\x90\xe4\xba\xa4\xe9\x87\x8f", BarField::kVolume},
    {"\xb3\xc9\xbd\xbb\xc1\xbf", BarField::kVolume},
    {"\xe6\x8c\x81\xe4\xbb\x93\xe9\x87\x8f", BarField::kOpenInt},
    {"\xb3\xd6\xb2\xd6\xc1\xbf", BarField::kOpenInt},
}};

size_t Index(BarField field) { return static_cast<size_t>(field); }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string NormalName(std::string_view name) {
  std::string normal;
  for (const char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      normal.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    }
  }
  return normal;
}

std::optional<BarField> FieldOfHeaderName(std::string_view name) {
  const bool chinese = std::any_of(name.begin(), name.end(),
                                   [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  if (chinese) {
    for (const HeaderName& entry : kChineseHeaderNames) {
      if (entry.name == name) return entry.field;
    }
    return std::nullopt;
  }
  const std::string normal = NormalName(name);
  for (const HeaderName& entry : kHeaderNames) {
    if (entry.name == normal) return entry.field;
  }
  return std::nullopt;
}

// Where the time starts in a date-and-time field: after the first blank or 'T' that follows the
// date; npos when the field holds a date only.
size_t TimePartStart(std::string_view field, const DateTimeFormat& dateFormat) {
  CivilDate date;
  const std::optional<size_t> dateLength = dateFormat.ReadDate(field, &date);
  if (!dateLength || *dateLength >= field.size()) return std::string_view::npos;
  const char separator = field[*dateLength];
  if (separator != ' ' && separator != 'T') return std::string_view::npos;
  size_t start = *dateLength + 1;
  while (start < field.size() && field[start] == ' ') ++start;
  return start < field.size() ? start : std::string_view::npos;
}

class LayoutResolver {
 public:
  LayoutResolver(const ColumnMap& map, std::string_view firstLine, std::string_view barLine,
                 int barLineNumber, const std::string& fileName)
      : map_(map),
        firstLine_(firstLine),
        barLine_(barLine),
        barLineNumber_(barLineNumber),
        fileName_(fileName) {}

  BarLayout Resolve() {
    layout_.Delimiter = map_.Delimiter != 0 ? map_.Delimiter : DetectDelimiter(firstLine_);
    layout_.HasHeader =
        map_.HasHeader >= 0 ? map_.HasHeader == 1 : LooksLikeHeader(firstLine_, layout_.Delimiter);
    layout_.Columns.fill(-1);
    barFieldCount_ = SplitFields(barLine_, layout_.Delimiter, barFields_.data(), kMaxColumns);
    if (layout_.HasHeader) {
      ColumnsFromHeader();
    } else {
      ColumnsInUsualOrder();
    }
    ApplyExplicitColumns();
    RequireColumns();
    ResolveFormats();
    return layout_;
  }

 private:
  int& Column(BarField field) { return layout_.Columns[Index(field)]; }

  std::string_view ValueAt(int column) const {
    return column >= 0 && column < barFieldCount_ ? barFields_[static_cast<size_t>(column)]
                                                  : std::string_view();
  }

  [[noreturn]] void Fail(int line, BarField field, const std::string& problem) const {
    throw InputError(fileName_ + ":" + std::to_string(line) + ": field " + BarFieldName(field) +
                     ": " + problem);
  }

  std::string HintFor(std::string_view line) const {
    const std::string hint = DelimiterHint(line, layout_.Delimiter);
    return hint.empty() ? "; map it in the column map" : hint;
  }

  void ColumnsFromHeader() {
    std::array<std::string_view, kMaxColumns> names{};
    const int count = SplitFields(firstLine_, layout_.Delimiter, names.data(), kMaxColumns);
    for (int column = 0; column < count; ++column) {
      const std::optional<BarField> field = FieldOfHeaderName(names[static_cast<size_t>(column)]);
      if (field && Column(*field) < 0) Column(*field) = column;
    }
    if (Column(BarField::kDate) < 0 && Column(BarField::kDateTime) < 0) {
      std::swap(Column(BarField::kDate), Column(BarField::kTime));  // a "Time" holding both
    }
    const int date = Column(BarField::kDate);
    if (date < 0 || Column(BarField::kTime) >= 0) return;
    // Rows that hold one field more than the header, a time after the date: the header left the
    // time column out. Every column after the date moves one place right.
    if (barFieldCount_ == count + 1 &&
        !DetectTimeFormat(ValueAt(date + 1), /*digitsOnly=*/false).empty()) {
      for (int& column : layout_.Columns) {
        if (column > date) ++column;
      }
      Column(BarField::kTime) = date + 1;
    }
  }

  void ColumnsInUsualOrder() {
    // Date[,Time],Open,High,Low,Close[,Volume[,OpenInterest]]; a time only with a colon, since a
    // number of digits could be a price as well.
    int next = 1;
    Column(BarField::kDate) = 0;
    if (!DetectTimeFormat(ValueAt(1), /*digitsOnly=*/false).empty())
      Column(BarField::kTime) = next++;
    for (const BarField field :
         {BarField::kOpen, BarField::kHigh, BarField::kLow, BarField::kClose}) {
      Column(field) = next++;
    }
    if (barFieldCount_ > next) Column(BarField::kVolume) = next++;
    if (barFieldCount_ > next) Column(BarField::kOpenInt) = next;
  }

  void ApplyExplicitColumns() {
    const std::array<int, kBarFieldCount> given = {map_.DateTime, map_.Date,   map_.Time,
                                                   map_.Open,     map_.High,   map_.Low,
                                                   map_.Close,    map_.Volume, map_.OpenInt};
    const bool anyGiven = std::any_of(given.begin(), given.end(), [](int c) { return c >= 0; });
    if (!anyGiven) return;
    if (given[Index(BarField::kDateTime)] >= 0 &&
        (given[Index(BarField::kDate)] >= 0 || given[Index(BarField::kTime)] >= 0)) {
      throw InputError(fileName_ +
                       ": column map: give \"datetime\" or \"date\" and \"time\", not both");
    }
    if (given[Index(BarField::kDateTime)] >= 0) {
      Column(BarField::kDate) = -1;
      Column(BarField::kTime) = -1;
    }
    if (given[Index(BarField::kDate)] >= 0 || given[Index(BarField::kTime)] >= 0) {
      Column(BarField::kDateTime) = -1;
    }
    // A detected column that stands where the map puts another field is not read.
    for (size_t field = 0; field < kBarFieldCount; ++field) {
      if (given[field] >= 0) continue;
      if (std::find(given.begin(), given.end(), layout_.Columns[field]) != given.end()) {
        layout_.Columns[field] = -1;
      }
    }
    for (size_t field = 0; field < kBarFieldCount; ++field) {
      if (given[field] >= 0) layout_.Columns[field] = given[field];
    }
    for (size_t first = 0; first < kBarFieldCount; ++first) {
      for (size_t second = first + 1; second < kBarFieldCount; ++second) {
        if (layout_.Columns[first] >= 0 && layout_.Columns[first] == layout_.Columns[second]) {
          throw InputError(fileName_ + ": column map: " + kFieldNames[first] + " and " +
                           kFieldNames[second] + " are both column " +
                           std::to_string(layout_.Columns[first]));
        }
      }
    }
  }

  void RequireColumns() {
    const bool hasDate = Column(BarField::kDate) >= 0 || Column(BarField::kDateTime) >= 0;
    for (const BarField field :
         {BarField::kDate, BarField::kOpen, BarField::kHigh, BarField::kLow, BarField::kClose}) {
      if ((field == BarField::kDate && hasDate) ||
          (field != BarField::kDate && Column(field) >= 0)) {
        continue;
      }
      if (layout_.HasHeader) {
        Fail(1, field,
             "no column of the header names it (header '" + Quoted(firstLine_) + "')" +
                 HintFor(firstLine_));
      }
      Fail(barLineNumber_, field, "missing column" + DelimiterHint(barLine_, layout_.Delimiter));
    }
    for (const int column : layout_.Columns) {
      layout_.ColumnsNeeded = std::max(layout_.ColumnsNeeded, column + 1);
    }
    if (layout_.ColumnsNeeded > kMaxColumns) {
      throw InputError(fileName_ + ": column map: a column beyond " +
                       std::to_string(kMaxColumns - 1));
    }
  }

  DateTimeFormat Compiled(const std::string& text, DateTimeFormat::Kind kind, BarField field) {
    std::string error;
    std::optional<DateTimeFormat> format = DateTimeFormat::Compile(text, kind, &error);
    if (!format) {
      throw InputError(fileName_ + ": column map: " + BarFieldName(field) + " format '" + text +
                       "': " + error);
    }
    return *format;
  }

  void ResolveFormats() {
    const bool combined = Column(BarField::kDateTime) >= 0;
    const BarField dateField = combined ? BarField::kDateTime : BarField::kDate;
    const std::string_view dateValue = ValueAt(Column(dateField));
    std::string dateText = map_.DateFormat;
    if (dateText.empty()) dateText = DetectDateFormat(dateValue);
    if (dateText.empty()) {
      Fail(barLineNumber_, dateField,
           "not a date in a known layout (value '" + Quoted(dateValue) +
               "'); set \"date_format\" in the column map");
    }
    layout_.DateFormat = Compiled(dateText, DateTimeFormat::Kind::kDate, dateField);
    std::string_view timeValue;
    if (combined) {
      const size_t start = TimePartStart(dateValue, *layout_.DateFormat);
      if (start != std::string_view::npos) timeValue = dateValue.substr(start);
    } else if (Column(BarField::kTime) >= 0) {
      timeValue = ValueAt(Column(BarField::kTime));
    } else {
      // A "Date" column that holds the time as well.
      const size_t start = TimePartStart(dateValue, *layout_.DateFormat);
      if (start == std::string_view::npos) {
        if (map_.TimeFormat.empty()) return;
        throw InputError(fileName_ + ": column map: a time format but no time in the file");
      }
      std::swap(Column(BarField::kDate), Column(BarField::kDateTime));
      timeValue = dateValue.substr(start);
    }
    const BarField timeField = Column(BarField::kTime) >= 0 ? BarField::kTime : BarField::kDateTime;
    std::string timeText = map_.TimeFormat;
    if (timeText.empty() && !timeValue.empty()) {
      timeText = DetectTimeFormat(timeValue, /*digitsOnly=*/timeField == BarField::kTime);
      if (timeText.empty()) {
        Fail(barLineNumber_, timeField,
             "not a time of day in a known layout (value '" + Quoted(timeValue) +
                 "'); set \"time_format\" in the column map");
      }
    }
    if (!timeText.empty()) {
      layout_.TimeFormat = Compiled(timeText, DateTimeFormat::Kind::kTime, timeField);
    }
  }

  const ColumnMap& map_;
  std::string_view firstLine_;
  std::string_view barLine_;
  int barLineNumber_;
  const std::string& fileName_;
  BarLayout layout_;
  std::array<std::string_view, kMaxColumns> barFields_{};
  int barFieldCount_ = 0;
};

}  // namespace

const char* BarFieldName(BarField field) { return kFieldNames[Index(field)]; }

std::string DelimiterName(char delimiter) {
  return delimiter == '\t' ? std::string("tab") : std::string("'") + delimiter + "'";
}

std::string DelimiterHint(std::string_view line, char delimiter) {
  const char other = DetectDelimiter(line);
  if (other == delimiter || line.find(other) == std::string_view::npos) return "";
  return "; the line is split at " + DelimiterName(delimiter) + " but holds " +
         DelimiterName(other) + ": set \"delimiter\" in the column map";
}

int SplitFields(std::string_view line, char delimiter, std::string_view* fields, int limit) {
  int count = 0;
  size_t at = 0;
  const size_t size = line.size();
  if (delimiter == ' ') {
    while (at < size && IsBlank(line[at])) ++at;
    if (at == size) return 0;
  }
  while (count < limit) {
    while (at < size && IsBlank(line[at]) && line[at] != delimiter) ++at;
    size_t begin = at;
    size_t end = at;
    if (at < size && line[at] == '"') {
      const size_t close = line.find('"', at + 1);
      begin = at + 1;
      end = close == std::string_view::npos ? size : close;
      at = close == std::string_view::npos ? size : close + 1;
      while (at < size && line[at] != delimiter) ++at;
    } else {
      while (at < size && line[at] != delimiter) ++at;
      end = at;
      while (end > begin && IsBlank(line[end - 1])) --end;
    }
    fields[count++] = std::string_view(line.data() + begin, end - begin);
    if (at >= size) break;
    ++at;  // the delimiter
    if (delimiter == ' ') {
      while (at < size && IsBlank(line[at])) ++at;
      if (at == size) break;
    }
  }
  return count;
}

char DetectDelimiter(std::string_view line) {
  const auto commas = std::count(line.begin(), line.end(), ',');
  const auto semicolons = std::count(line.begin(), line.end(), ';');
  const auto tabs = std::count(line.begin(), line.end(), '\t');
  if (commas == 0 && semicolons == 0 && tabs == 0) {
    return line.find(' ') != std::string_view::npos ? ' ' : ',';
  }
  if (commas >= semicolons && commas >= tabs) return ',';
  return semicolons >= tabs ? ';' : '\t';
}

bool LooksLikeHeader(std::string_view firstLine, char delimiter) {
  std::string_view first;
  SplitFields(firstLine, delimiter, &first, 1);
  return first.empty() || first.front() < '0' || first.front() > '9';
}

std::string Quoted(std::string_view value) {
  constexpr size_t kLongest = 40;
  std::string quoted;
  for (size_t i = 0; i < value.size() && i < kLongest; ++i) {
    const auto byte = static_cast<unsigned char>(value[i]);
    quoted.push_back(byte < 0x20 || byte == 0x7f ? '?' : value[i]);
  }
  if (value.size() > kLongest) quoted += "...";
  return quoted;
}

BarLayout ResolveLayout(const ColumnMap& map, std::string_view firstLine, std::string_view barLine,
                        int barLineNumber, const std::string& fileName) {
  return LayoutResolver(map, firstLine, barLine, barLineNumber, fileName).Resolve();
}

}  // namespace qxrun
