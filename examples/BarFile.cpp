#include "BarFile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>

namespace {

std::vector<std::string> SplitFields(const std::string& line) {
  std::vector<std::string> fields;
  std::stringstream stream(line);
  std::string field;
  while (std::getline(stream, field, ',')) fields.push_back(field);
  if (!line.empty() && line.back() == ',') fields.emplace_back();
  return fields;
}

class LineReader {
 public:
  LineReader(std::string path, int line) : path_(std::move(path)), line_(line) {}

  [[noreturn]] void Fail(const std::string& what) const {
    throw BarFileError(path_ + ":" + std::to_string(line_) + ": " + what);
  }

  double Number(const std::string& field, const std::string& name) const {
    const char* begin = field.c_str();
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(begin, &end);
    if (field.empty() || end != begin + field.size() || errno == ERANGE) {
      Fail("field " + name + " '" + field + "' is not a number");
    }
    return value;
  }

  // Milliseconds since 1970 UTC of a local date and time.
  int64_t Instant(const std::string& date, const std::string& time) const {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    char separator1 = 0, separator2 = 0;
    if (std::sscanf(date.c_str(), "%4d%c%2d%c%2d", &year, &separator1, &month, &separator2, &day) !=
            5 ||
        separator1 != separator2 || (separator1 != '-' && separator1 != '/') || month < 1 ||
        month > 12 || day < 1 || day > 31) {
      Fail("field Date '" + date + "' is not a date (YYYY-MM-DD)");
    }
    if (!time.empty() && std::sscanf(time.c_str(), "%2d:%2d:%2d", &hour, &minute, &second) < 2) {
      Fail("field Time '" + time + "' is not a time (hh:mm[:ss])");
    }
    std::tm local{};
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = day;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_sec = second;
    local.tm_isdst = -1;
    return static_cast<int64_t>(std::mktime(&local)) * 1000;
  }

 private:
  std::string path_;
  int line_;
};

}  // namespace

std::vector<QXBar> ReadBarFile(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw BarFileError("cannot open '" + path + "': " + std::strerror(errno));

  std::string line;
  if (!std::getline(file, line)) throw BarFileError(path + ":1: the file is empty");
  if (!line.empty() && line.back() == '\r') line.pop_back();
  const std::vector<std::string> header = SplitFields(line);
  const bool withTime = header.size() >= 2 && header[1] == "Time";
  const size_t columns = withTime ? 8 : 7;
  if (header.size() != columns || header[0] != "Date") {
    throw BarFileError(path + ":1: header '" + line +
                       "' is not Date[,Time],Open,High,Low,Close,Volume,OpenInterest");
  }

  std::vector<QXBar> bars;
  for (int number = 2; std::getline(file, line); ++number) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    const LineReader reader(path, number);
    const std::vector<std::string> fields = SplitFields(line);
    if (fields.size() != columns) {
      reader.Fail("expected " + std::to_string(columns) + " fields, found " +
                  std::to_string(fields.size()));
    }
    const size_t first = withTime ? 2 : 1;
    QXBar bar;
    bar.Time = reader.Instant(fields[0], withTime ? fields[1] : "");
    bar.Open = reader.Number(fields[first], "Open");
    bar.High = reader.Number(fields[first + 1], "High");
    bar.Low = reader.Number(fields[first + 2], "Low");
    bar.Close = reader.Number(fields[first + 3], "Close");
    bar.Vol = reader.Number(fields[first + 4], "Volume");
    bar.OpenInt = reader.Number(fields[first + 5], "OpenInterest");
    if (!bars.empty() && bar.Time <= bars.back().Time)
      reader.Fail("bar is not later than the one before");
    bars.push_back(bar);
  }
  if (bars.empty()) throw BarFileError(path + ": the file holds no bars");
  return bars;
}
