// The column map of a run file.
#include "qxrun/InputError.h"
#include "qxrun/data/BarFile.h"
#include "qxrun/data/DateParsing.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string_view>

namespace qxrun {
namespace {

using Json = nlohmann::json;

[[noreturn]] void Fail(const std::string& path, const std::string& problem) {
  throw InputError(path + ": " + problem);
}

std::string Shown(const Json& value) {
  std::string text = value.dump();
  if (text.size() > 40) text = text.substr(0, 40) + "...";
  return text;
}

int ColumnNumber(const Json& value, const std::string& path) {
  if (!value.is_number_integer() || value.get<int64_t>() < 0 || value.get<int64_t>() > 999) {
    Fail(path, "expected a column number from 0 (the first column), got " + Shown(value));
  }
  return value.get<int>();
}

char Delimiter(const Json& value, const std::string& path) {
  static constexpr std::array<std::pair<std::string_view, char>, 6> kNames = {
      {{",", ','}, {";", ';'}, {"\t", '\t'}, {"tab", '\t'}, {" ", ' '}, {"space", ' '}}};
  if (value.is_string()) {
    for (const auto& [text, delimiter] : kNames) {
      if (value.get<std::string>() == text) return delimiter;
    }
  }
  Fail(path, "expected one of \",\", \";\", \"tab\", \"space\", got " + Shown(value));
}

std::string Format(const Json& value, const std::string& path, DateTimeFormat::Kind kind) {
  if (!value.is_string()) Fail(path, "expected a text, got " + Shown(value));
  std::string error;
  if (!DateTimeFormat::Compile(value.get<std::string>(), kind, &error)) Fail(path, error);
  return value.get<std::string>();
}

}  // namespace

ColumnMap ColumnMapFromJson(const nlohmann::json& value, const std::string& path) {
  if (!value.is_object()) Fail(path, "expected an object, got " + Shown(value));
  ColumnMap map;
  const std::array<std::pair<std::string_view, int*>, 9> columns = {
      {{"datetime", &map.DateTime},
       {"date", &map.Date},
       {"time", &map.Time},
       {"open", &map.Open},
       {"high", &map.High},
       {"low", &map.Low},
       {"close", &map.Close},
       {"volume", &map.Volume},
       {"open_interest", &map.OpenInt}}};
  for (const auto& entry : value.items()) {
    const std::string& key = entry.key();
    const Json& item = entry.value();
    std::string itemPath = path;
    itemPath.append("/").append(key);
    const auto column = std::find_if(columns.begin(), columns.end(),
                                     [&key](const auto& known) { return known.first == key; });
    if (column != columns.end()) {
      *column->second = ColumnNumber(item, itemPath);
    } else if (key == "delimiter") {
      map.Delimiter = Delimiter(item, itemPath);
    } else if (key == "header") {
      if (!item.is_boolean()) Fail(itemPath, "expected true or false, got " + Shown(item));
      map.HasHeader = item.get<bool>() ? 1 : 0;
    } else if (key == "date_format") {
      map.DateFormat = Format(item, itemPath, DateTimeFormat::Kind::kDate);
    } else if (key == "time_format") {
      map.TimeFormat = Format(item, itemPath, DateTimeFormat::Kind::kTime);
    } else {
      Fail(itemPath,
           "unknown key (known: delimiter, header, datetime, date, time, open, high, low, close, "
           "volume, open_interest, date_format, time_format)");
    }
  }
  if (map.DateTime >= 0 && (map.Date >= 0 || map.Time >= 0)) {
    Fail(path + "/datetime", "give \"datetime\" or \"date\" and \"time\", not both");
  }
  return map;
}

}  // namespace qxrun
