#include "qxrun/InputError.h"
#include "qxrun/data/BarFile.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <tuple>
#include <vector>

namespace qxrun {
namespace {

constexpr const char* kPath = "/symbols/0/columns";

TEST(ColumnMapJsonTest, ReadsEveryKey) {
  const ColumnMap map = ColumnMapFromJson(nlohmann::json::parse(R"({
      "delimiter": ";", "header": false, "datetime": 0, "open": 1, "high": 2, "low": 3,
      "close": 4, "volume": 5, "open_interest": 6, "date_format": "%Y%m%d",
      "time_format": "%H%M%S"})"),
                                          kPath);
  EXPECT_EQ(std::tuple(map.Delimiter, map.HasHeader, map.DateFormat, map.TimeFormat),
            std::tuple(';', 0, "%Y%m%d", "%H%M%S"));
  EXPECT_EQ(std::vector<int>({map.DateTime, map.Date, map.Open, map.High, map.Low, map.Close,
                              map.Volume, map.OpenInt}),
            std::vector<int>({0, -1, 1, 2, 3, 4, 5, 6}));

  const ColumnMap tabs = ColumnMapFromJson(
      nlohmann::json::parse(R"({"delimiter": "tab", "header": true, "date": 2, "time": 3})"),
      kPath);
  // Open is left to the header.
  EXPECT_EQ(std::tuple(tabs.Delimiter, tabs.HasHeader, tabs.Date, tabs.Time, tabs.Open),
            std::tuple('\t', 1, 2, 3, -1));
}

TEST(ColumnMapJsonTest, MistakesNameTheirKeyPath) {
  const std::pair<const char*, const char*> cases[] = {
      {"[]", "/symbols/0/columns: expected an object, got []"},
      {R"({"vol": 5})",
       "/symbols/0/columns/vol: unknown key (known: delimiter, header, datetime, date, time, "
       "open, high, low, close, volume, open_interest, date_format, time_format)"},
      {R"({"open": "1"})",
       "/symbols/0/columns/open: expected a column number from 0 (the first column), got \"1\""},
      {R"({"close": -1})",
       "/symbols/0/columns/close: expected a column number from 0 (the first column), got -1"},
      {R"({"close": 1.5})",
       "/symbols/0/columns/close: expected a column number from 0 (the first column), got 1.5"},
      {R"({"delimiter": "|"})",
       "/symbols/0/columns/delimiter: expected one of \",\", \";\", \"tab\", \"space\", got "
       "\"|\""},
      {R"({"header": 1})", "/symbols/0/columns/header: expected true or false, got 1"},
      {R"({"date_format": "%Y-%m"})",
       "/symbols/0/columns/date_format: a date format needs a year, a month and a day"},
      {R"({"time_format": 5})", "/symbols/0/columns/time_format: expected a text, got 5"},
      {R"({"datetime": 0, "time": 1})",
       "/symbols/0/columns/datetime: give \"datetime\" or \"date\" and \"time\", not both"},
  };
  for (const auto& [text, message] : cases) {
    SCOPED_TRACE(text);
    try {
      ColumnMapFromJson(nlohmann::json::parse(text), kPath);
      ADD_FAILURE() << "accepted";
    } catch (const InputError& error) {
      EXPECT_EQ(std::string(error.what()), message);
    }
  }
}

}  // namespace
}  // namespace qxrun
