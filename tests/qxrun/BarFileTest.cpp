#include "qxrun/InputError.h"
#include "qxrun/data/BarFile.h"
#include "support/HostBuilder.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace qxrun {
namespace {

using sysfuncs::testing::ScopedTimeZone;

// 2006-01-02 00:00:00 UTC is 13150 days after 1970-01-01 (36 years of 365 days and 9 leap days
// to 2006-01-01, and one day more): 13150 * 86400 = 1136160000 s. Shanghai is UTC+8, so local
// 09:01:00 is 01:01:00 UTC and the local midnight is 16:00 UTC the day before.
constexpr int64_t kUtcMidnight20060102 = 1136160000;
constexpr int64_t kShanghai0901 = (kUtcMidnight20060102 + 3660) * 1000;
constexpr int64_t kShanghaiMidnight = (kUtcMidnight20060102 - 8 * 3600) * 1000;

// A file of the `header` columns and Open,High,Low,Close, one bar of prices 1 for each of the
// '|'-separated `rows`.
std::string BarsAt(std::string text, std::string_view rows) {
  text += ",Open,High,Low,Close\n";
  while (!rows.empty()) {
    const size_t bar = rows.find('|');
    text += std::string(rows.substr(0, bar)) + ",1,1,1,1\n";
    rows = bar == std::string_view::npos ? std::string_view() : rows.substr(bar + 1);
  }
  return text;
}

class BarFileTest : public ::testing::Test {
 protected:
  std::filesystem::path Write(const std::string& text) {
    std::ofstream(folder_ / "bars.csv", std::ios::binary) << text;
    return folder_ / "bars.csv";
  }

  QXDataSource Load(const std::string& text, const ColumnMap& map = {}) {
    QXDataSource source;
    LoadBarFile(Write(text), map, source);
    return source;
  }

  // The message of the error loading `path` gives, with the path cut off the front.
  static std::string ErrorAt(const std::filesystem::path& path, const ColumnMap& map = {}) {
    QXDataSource source;
    try {
      LoadBarFile(path, map, source);
    } catch (const InputError& error) {
      const std::string message = error.what();
      if (message.rfind(path.string(), 0) != 0) return "message without the file: " + message;
      return message.substr(path.string().size());
    }
    return "loaded " + std::to_string(source.Bars.size()) + " bars";
  }
  std::string ErrorOf(const std::string& text, const ColumnMap& map = {}) {
    return ErrorAt(Write(text), map);
  }

  sysfuncs::testing::TempFolder folder_{"bar_file_test_"};
};

// ------------------------------------------------------------------------------------------------
// Layouts people have

// Every file holds the same two bars, 2006-01-02 09:01 and 09:02, O 3602 H 3603 L 3597 C 3599.
TEST_F(BarFileTest, ReadsTheLayoutsPeopleHave) {
  const std::string rows =  // date, time, prices, volume, open interest
      "2006-01-02,09:01:00,3602,3603,3597,3599,5699,12\n"
      "2006-01-02,09:02:00,3599,3600,3598,3599,894,13\n";
  ColumnMap semicolonNoHeader;
  semicolonNoHeader.Delimiter = ';';
  semicolonNoHeader.HasHeader = 0;
  const struct {
    const char* name;
    std::string text;
    double volume, openInt;
    ColumnMap map = {};
  } cases[] = {
      {"date and time columns", "Date,Time,Open,High,Low,Close,Volume,OpenInterest\n" + rows, 5699,
       12},
      {"no header, date and time in the usual order", rows, 5699, 12},
      {"ISO date-time with T, names in other case",
       "timestamp,OPEN,high,Low,close,vol,open_interest\n"
       "2006-01-02T09:01:00,3602,3603,3597,3599,5699,12\n"
       "2006-01-02T09:02:00,3599,3600,3598,3599,894,13\n",
       5699, 12},
      {"one date-time column, no volume",
       "DateTime,Open,High,Low,Close\n"
       "2006-01-02 09:01:00,3602,3603,3597,3599\n2006-01-02 09:02:00,3599,3600,3598,3599\n",
       0, 0},
      {"header without the time column its rows hold",
       "Date,Open,High,Low,Close,Volume,OpenInterest\r\n"
       "2006-01-02,09:01:00,3602.00,3603.00,3597.00,3599.00,5699,12\r\n"
       "2006-01-02,09:02:00,3600.00,3601.00,3598.00,3599.00,894,0\r\n",
       5699, 12},
      {"a Date column holding date and time",
       "Date,Open,High,Low,Close,Volume\n"
       "2006-01-02 09:01,3602,3603,3597,3599,5699\n2006-01-02 09:02,3599,3600,3598,3599,894\n",
       5699, 0},
      {"times with milliseconds",
       "Date,Time,Open,High,Low,Close\n"
       "2006-01-02,09:01:00.000,3602,3603,3597,3599\n2006-01-02,09:02:00.000,3599,3600,3598,3599\n",
       0, 0},
      {"a Time column holding date and time",
       "Time,Open,High,Low,Close\n"
       "2006-01-02 09:01:00,3602,3603,3597,3599\n2006-01-02 09:02:00,3599,3600,3598,3599\n",
       0, 0},
      {"quoted header, semicolons, extra column",
       "\"Date\";\"Time\";\"Open\";\"High\";\"Low\";\"Close\";\"Amount\";\"Volume\"\n"
       "\"2006-01-02\";\"09:01\";3602;3603;3597;3599;1.5e7;5699\n"
       "\"2006-01-02\";\"09:02\";3599;3600;3598;3599;3.2e6;894\n",
       5699, 0},
      {"tabs, compact date and digits-only time without its leading zero",
       "Date\tTime\tOpen\tHigh\tLow\tClose\tVolume\n"
       "20060102\t90100\t3602\t3603\t3597\t3599\t5699\n"
       "20060102\t90200\t3599\t3600\t3598\t3599\t894\n",
       5699, 0},
      {"month-first dates, blanks around fields",
       "Date, Time, Open, High, Low, Close\n"
       "01/02/2006, 09:01, 3602, 3603, 3597, 3599\n01/02/2006, 09:02, 3599, 3600, 3598, 3599\n",
       0, 0},
      // A byte order mark, CRLF, and empty lines and a last line without a line end at the end.
      {"byte order mark, CRLF, blank tail",
       "\xEF\xBB\xBF"
       "Date,Time,Open,High,Low,Close\r\n"
       "2006-01-02,09:01:00,3602,3603,3597,3599\r\n2006-01-02,09:02:00,3599,3600,3598,3599\r\n"
       "\n  \r\n\t",
       0, 0},
      {"Chinese names in UTF-8",  // date, time, open price, high, low, close, volume, open int.
       "\xe6\x97\xa5\xe6\x9c\x9f,\xe6\x97\xb6\xe9\x97\xb4,"
       "\xe5\xbc\x80\xe7\x9b\x98\xe4\xbb\xb7,\xe6\x9c\x80\xe9\xab\x98,"
       "\xe6\x9c\x80\xe4\xbd\x8e,\xe6\x94\xb6\xe7\x9b\x98,"
       "\xe6\x88\x90\xe4\xba\xa4\xe9\x87\x8f,\xe6\x8c\x81\xe4\xbb\x93\xe9\x87\x8f\n" +
           rows,
       5699, 12},
      {"Chinese names in GBK, open interest before volume",
       "\xc8\xd5\xc6\xda,\xca\xb1\xbc\xe4,\xbf\xaa\xc5\xcc,\xd7\xee\xb8\xdf\xbc\xdb,"
       "\xd7\xee\xb5\xcd,\xca\xd5\xc5\xcc\xbc\xdb,\xb3\xd6\xb2\xd6\xc1\xbf,"
       "\xb3\xc9\xbd\xbb\xc1\xbf\n"
       "2006-01-02,09:01:00,3602,3603,3597,3599,12,5699\n"
       "2006-01-02,09:02:00,3599,3600,3598,3599,13,894\n",
       5699, 12},
      {"declared delimiter and no header",
       "2006-01-02;09:01:00;3602;3603;3597;3599;5699\n"
       "2006-01-02;09:02:00;3599;3600;3598;3599;894\n",
       5699, 0, semicolonNoHeader},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    QXDataSource source;
    try {
      source = Load(row.text, row.map);
    } catch (const InputError& error) {
      ADD_FAILURE() << error.what();
      continue;
    }
    ASSERT_EQ(source.Bars.size(), 2u);
    const QXBar& bar = source.Bars[0];
    EXPECT_EQ(bar.Time, kShanghai0901);
    EXPECT_EQ(std::vector<double>({bar.Open, bar.High, bar.Low, bar.Close, bar.Vol, bar.OpenInt}),
              std::vector<double>({3602, 3603, 3597, 3599, row.volume, row.openInt}));
    EXPECT_EQ(source.Bars[1].Time, kShanghai0901 + 60000);
    EXPECT_EQ(source.BarType, 1u);
    EXPECT_EQ(source.BarInterval, 1u);
  }
}

TEST_F(BarFileTest, StockFileSkipsAdjustedCloseAndReadsVolume) {
  const QXDataSource source = Load(
      "Date,Open,High,Low,Close,Adj Close,Volume\n"
      "1995-01-03,2.179012,2.191358,2.117284,2.117284,1.883304,36301200\n"
      "1995-01-04,2.123457,2.148148,2.092592,2.135803,1.899776,46051600\n");
  ASSERT_EQ(source.Bars.size(), 2u);
  // 1995-01-03 is 9133 days after 1970-01-01 (25 years of 365 days, 6 leap days, 2 days);
  // Shanghai's midnight is 8 hours earlier in UTC.
  EXPECT_EQ(source.Bars[0].Time, (9133LL * 86400 - 8 * 3600) * 1000);
  EXPECT_EQ(source.Bars[0].Close, 2.117284);
  EXPECT_EQ(source.Bars[1].Vol, 46051600.0);
  EXPECT_EQ(source.BarType, 0u);
}

TEST_F(BarFileTest, ColumnMapPlacesEveryField) {
  ColumnMap map;
  map.HasHeader = 0;
  map.Close = 0;
  map.Open = 1;
  map.High = 2;
  map.Low = 3;
  map.DateTime = 4;
  map.OpenInt = 5;
  map.DateFormat = "%d/%m/%y";
  map.TimeFormat = "%H.%M";
  map.Delimiter = '|';
  const QXDataSource source =
      Load("3599|3602|3603|3597|02/01/06 09.01|12\n3598|3599|3600|3598|02/01/06 09.06|13\n", map);
  ASSERT_EQ(source.Bars.size(), 2u);
  EXPECT_EQ(source.Bars[0].Time, kShanghai0901);
  EXPECT_EQ(source.Bars[0].Open, 3602.0);
  EXPECT_EQ(source.Bars[0].Close, 3599.0);
  EXPECT_EQ(source.Bars[0].OpenInt, 12.0);
  EXPECT_EQ(source.Bars[1].Time, kShanghai0901 + 5 * 60000);
  EXPECT_EQ(source.BarInterval, 5u);

  // Compact date and time formats; a second's spacing makes second bars.
  map = ColumnMap{};
  map.DateFormat = "%Y%m%d";
  map.TimeFormat = "%H%M%S";
  const QXDataSource seconds =
      Load("DateTime,Open,High,Low,Close\n20060102 090100,1,1,1,1\n20060102 090101,1,1,1,1\n", map);
  ASSERT_EQ(seconds.Bars.size(), 2u);
  EXPECT_EQ(seconds.Bars[1].Time, kShanghai0901 + 1000);
  EXPECT_EQ(seconds.BarType, 2u);
  EXPECT_EQ(seconds.BarInterval, 1u);
}

TEST_F(BarFileTest, ColumnMapOverridesOneDetectedColumn) {
  // The header calls the open interest "Position2", which no rule knows; the map names it, and the
  // detected columns stay.
  const std::string text =
      "Date,Time,Open,High,Low,Close,Position2\n2006-01-02,09:01:00,3602,3603,3597,3599,12\n";
  EXPECT_EQ(Load(text).Bars.at(0).OpenInt, 0.0);
  ColumnMap map;
  map.OpenInt = 6;
  const QXDataSource mapped = Load(text, map);
  EXPECT_EQ(mapped.Bars.at(0).OpenInt, 12.0);
  EXPECT_EQ(mapped.Bars[0].Close, 3599.0);
}

// ------------------------------------------------------------------------------------------------
// Periods from the spacing of the bars

TEST_F(BarFileTest, PeriodFollowsTheMostFrequentSpacing) {
  const struct {
    const char* name;
    const char* rows;  // Date,Time rows; each gets prices appended
    uint32_t barType, interval;
  } cases[] = {
      // Four 5-minute gaps outweigh the one of 90 minutes over the lunch break.
      {"five minutes",
       "2006-01-02,10:20|2006-01-02,10:25|2006-01-02,10:30|2006-01-02,12:00|"
       "2006-01-02,12:05|2006-01-02,12:10",
       1, 5},
      {"an hour", "2006-01-02,10:00|2006-01-02,11:00|2006-01-02,12:00", 1, 60},
      {"thirty seconds", "2006-01-02,10:00:00|2006-01-02,10:00:30|2006-01-02,10:01:00", 2, 30},
      {"days over a weekend", "2006-01-05,00:00|2006-01-06,00:00|2006-01-09,00:00|2006-01-10,00:00",
       0, 1},
      {"days stamped at the close", "2006-01-05,15:00|2006-01-06,15:00|2006-01-09,15:00", 0, 1},
      {"weeks", "2006-01-06,00:00|2006-01-13,00:00|2006-01-20,00:00", 4, 1},
      {"months", "2006-01-31,00:00|2006-02-28,00:00|2006-03-31,00:00|2006-04-28,00:00", 5, 1},
      {"one bar at midnight", "2006-01-02,00:00", 0, 1},
      {"one bar in the day", "2006-01-02,09:30", 1, 1},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    const QXDataSource source = Load(BarsAt("Date,Time", row.rows));
    EXPECT_EQ(source.BarType, row.barType);
    EXPECT_EQ(source.BarInterval, row.interval);
  }
}

// ------------------------------------------------------------------------------------------------
// Local times across changes of the UTC offset

// 2024-03-10 00:00 UTC is 19792 days after 1970-01-01 (19723 days to 2024-01-01, then 31 + 29 +
// 9): 1710028800 s. New York's clocks go from 02:00 EST (UTC-5) to 03:00 EDT (UTC-4) that night.
// 2024-11-03 00:00 UTC: 19723 + 305 + 2 = 20030 days, 1730592000 s. Clocks go back from 02:00
// EDT to 01:00 EST. In 2018 Sao Paulo's clocks went from 00:00 (UTC-3) to 01:00 (UTC-2) on 4
// November, whose 00:00 UTC is 17839 days after 1970-01-01 (48 * 365 + 12 leap days, then 304 +
// 3): 1541289600.
TEST_F(BarFileTest, LocalTimesTakeTheOffsetAtTheBarsTime) {
  const struct {
    const char* name;
    const char* zone;
    const char* rows;            // Date,Time or, for days, Date
    uint32_t barType, interval;  // an interval of 0 is not checked
    int64_t utcMidnight;
    std::vector<int64_t> minutes;  // of each bar after utcMidnight, in UTC
  } cases[] = {
      // 02:30 does not exist: it is read on the old clock, 03:30 EDT.
      {"New York springs forward",
       "America/New_York",
       "2024-03-10,01:59|2024-03-10,02:30|2024-03-10,03:31|2024-03-10,09:30|2024-03-11,09:30",
       1,
       0,
       1710028800,
       {6 * 60 + 59, 7 * 60 + 30, 7 * 60 + 31, 13 * 60 + 30, 1440 + 13 * 60 + 30}},
      // The repeated hour is read twice: EDT (05:00Z to 05:59Z), then EST (06:00Z to 06:59Z).
      {"New York falls back",
       "America/New_York",
       "2024-11-03,00:59|2024-11-03,01:00|2024-11-03,01:59|2024-11-03,01:00|2024-11-03,01:59|"
       "2024-11-03,02:00|2024-11-03,09:30",
       1,
       1,
       1730592000,
       {4 * 60 + 59, 5 * 60, 5 * 60 + 59, 6 * 60, 6 * 60 + 59, 7 * 60, 14 * 60 + 30}},
      // EST midnights are 05:00Z, the EDT midnight of the 11th is 04:00Z.
      {"New York days",
       "America/New_York",
       "2024-03-09|2024-03-10|2024-03-11",
       0,
       1,
       1710028800,
       {-1440 + 5 * 60, 5 * 60, 1440 + 4 * 60}},
      // The day that starts at 01:00 local stands at its first instant, 03:00 UTC.
      {"Sao Paulo day without a midnight",
       "America/Sao_Paulo",
       "2018-11-03|2018-11-04|2018-11-05",
       0,
       1,
       1541289600,
       {-1440 + 3 * 60, 3 * 60, 1440 + 2 * 60}},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    ScopedTimeZone zone(row.zone);
    const QXDataSource source = Load(BarsAt(row.barType == 0 ? "Date" : "Date,Time", row.rows));
    std::vector<int64_t> minutes;
    for (const QXBar& bar : source.Bars)
      minutes.push_back((bar.Time / 1000 - row.utcMidnight) / 60);
    EXPECT_EQ(minutes, row.minutes);
    EXPECT_EQ(source.BarType, row.barType);
    if (row.interval != 0) {
      EXPECT_EQ(source.BarInterval, row.interval);
    }
  }
  ScopedTimeZone zone("America/New_York");  // a third pass through the repeated hour
  EXPECT_EQ(
      ErrorOf("Date,Time,Open,High,Low,Close\n"
              "2024-11-03,01:30,1,1,1,1\n2024-11-03,01:30,1,1,1,1\n2024-11-03,01:30,1,1,1,1\n"),
      ":4: field Time: repeats the time of line 3 (value '01:30')");
}

// ------------------------------------------------------------------------------------------------
// Streaming

TEST_F(BarFileTest, FilesLargerThanABlockLoadEveryRowAndCountTheirLines) {
  // 40000 one-minute bars from 2006-01-02 00:00, about 1.8 MB: the reader's 1 MiB block ends
  // inside a row. Bar i has close 1000 + i/4 and volume i.
  constexpr int kBars = 40000;
  std::string text = "Date,Time,Open,High,Low,Close,Volume\r\n";
  char row[96];
  for (int i = 0; i < kBars; ++i) {
    const int minute = i % 1440;
    const double close = 1000 + i * 0.25;
    std::snprintf(row, sizeof row, "2006-01-%02d,%02d:%02d:00,%.2f,%.2f,%.2f,%.2f,%d\r\n",
                  2 + i / 1440, minute / 60, minute % 60, close, close + 1, close - 1, close, i);
    text += row;
  }
  const QXDataSource source = Load(text);
  ASSERT_EQ(source.Bars.size(), static_cast<size_t>(kBars));
  for (int i = 0; i < kBars; i += 997) {
    SCOPED_TRACE(i);
    EXPECT_EQ(source.Bars[i].Time, kShanghaiMidnight + int64_t{i} * 60000);
    EXPECT_EQ(source.Bars[i].Close, 1000 + i * 0.25);
    EXPECT_EQ(source.Bars[i].Vol, i);
  }
  EXPECT_EQ(source.Bars.back().Vol, kBars - 1);
  EXPECT_LE(source.Bars.capacity(), static_cast<size_t>(kBars) * 105 / 100);
  // The header is line 1, the good rows lines 2 to 40001.
  EXPECT_EQ(ErrorOf(text + "2006-01-30,00:00:00,3602,3603,3597,35x9,1\r\n"),
            ":40002: field Close: not a number (value '35x9')");
}

TEST_F(BarFileTest, ALineLongerThanABlockIsRead) {
  const QXDataSource source =
      Load("Date,Time,Open,High,Low,Close,Note\n2006-01-02,09:01:00,3602,3603,3597,3599," +
           std::string(3 << 20, 'x') + "\n2006-01-02,09:02:00,1,2,1,2,y\n");
  ASSERT_EQ(source.Bars.size(), 2u);
  EXPECT_EQ(source.Bars[0].Close, 3599.0);
  EXPECT_EQ(source.Bars[1].Time, kShanghai0901 + 60000);
}

// ------------------------------------------------------------------------------------------------
// Bad input: one line naming the file, the line and the field

struct ErrorCase {
  const char* name;
  const char* text;
  const char* message;  // after the file's path
};

TEST_F(BarFileTest, BadRowsNameTheLineAndTheField) {
  const ErrorCase cases[] = {
      {"malformed number", "2006-01-02,09:01:00,3602,36x3,3597,3599,5\n",
       ":2: field High: not a number (value '36x3')"},
      {"empty price", "2006-01-02,09:01:00,3602,3603,3597,,5\n",
       ":2: field Close: empty (value '')"},
      {"missing column",
       "2006-01-02,09:01:00,3602,3603,3597,3599,5\n2006-01-02,09:02:00,3602,3603,3597\n",
       ":3: field Close: missing column: the row has 5 fields split at ',', the field is column 6 "
       "(value '2006-01-02,09:02:00,3602,3603,3597')"},
      {"month 13", "2006-13-02,09:01:00,3602,3603,3597,3599,5\n",
       ":2: field Date: not a date in the layout %Y-%m-%d (value '2006-13-02')"},
      {"30 February", "2006-02-30,09:01:00,3602,3603,3597,3599,5\n",
       ":2: field Date: not a date in the layout %Y-%m-%d (value '2006-02-30')"},
      {"date with a tail", "2006-01-02x,09:01:00,3602,3603,3597,3599,5\n",
       ":2: field Date: not a date in the layout %Y-%m-%d (value '2006-01-02x')"},
      {"hour 24", "2006-01-02,09:01:00,3602,3603,3597,3599,5\n2006-01-02,24:00:00,1,1,1,1,1\n",
       ":3: field Time: not a time of day in the layout %H:%M:%S (value '24:00:00')"},
      {"time going backwards",
       "2006-01-02,09:01:00,1,1,1,1,1\n2006-01-02,09:03:00,1,1,1,1,1\n"
       "2006-01-02,09:02:00,1,1,1,1,1\n",
       ":4: field Time: earlier than line 3; bars must be in ascending time (value '09:02:00')"},
      {"repeated time", "2006-01-02,09:01:00,1,1,1,1,1\n2006-01-02,09:01:00,1,1,1,1,1\n",
       ":3: field Time: repeats the time of line 2 (value '09:01:00')"},
      {"Low above High", "2006-01-02,09:01:00,3602,3597,3603,3599,5\n",
       ":2: field Low: above High 3597 (value '3603')"},
      {"Open below Low", "2006-01-02,09:01:00,3596.5,3603,3597,3599,5\n",
       ":2: field Open: outside Low to High (3597 to 3603) (value '3596.5')"},
      {"Close above High", "2006-01-02,09:01:00,3602,3603,3597,3603.01,5\n",
       ":2: field Close: outside Low to High (3597 to 3603) (value '3603.01')"},
      {"negative price", "2006-01-02,09:01:00,-1,3603,3597,3599,5\n",
       ":2: field Open: negative price (value '-1')"},
      {"negative volume", "2006-01-02,09:01:00,3602,3603,3597,3599,-5\n",
       ":2: field Volume: negative (value '-5')"},
      {"NaN", "2006-01-02,09:01:00,3602,nan,3597,3599,5\n",
       ":2: field High: not a finite number (value 'nan')"},
      {"infinity", "2006-01-02,09:01:00,3602,3603,3597,3599,inf\n",
       ":2: field Volume: not a finite number (value 'inf')"},
      {"empty line between bars",
       "2006-01-02,09:01:00,1,1,1,1,1\n\n2006-01-02,09:02:00,1,1,1,1,1\n",
       ":3: an empty line between bars (the next bar is on line 4)"},
  };
  for (const ErrorCase& row : cases) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ErrorOf(std::string("Date,Time,Open,High,Low,Close,Volume\n") + row.text),
              row.message);
  }
}

TEST_F(BarFileTest, BadFilesAndLayoutsSayWhatIsWrong) {
  const ErrorCase cases[] = {
      {"empty file", "", ": the bar file is empty"},
      {"only empty lines", "\r\n\n  \n", ": the bar file is empty"},
      {"header only", "Date,Time,Open,High,Low,Close\r\n", ":1: a header but no bars after it"},
      {"header and empty lines", "Date,Time,Open,High,Low,Close\n\n\n",
       ":1: a header but no bars after it"},
      {"empty line after the header", "Date,Open,High,Low,Close\n\n2006-01-02,1,1,1,1\n",
       ":2: an empty line after the header"},
      {"empty line first", "\n2006-01-02,1,1,1,1\n",
       ":1: an empty line before the first line of data"},
      {"header without Close", "Date,Open,High,Low,Volume\n2006-01-02,1,1,1,1\n",
       ":1: field Close: no column of the header names it (header "
       "'Date,Open,High,Low,Volume'); map it in the column map"},
      {"header without a date", "When,Open,High,Low,Close\n2006-01-02,1,1,1,1\n",
       ":1: field Date: no column of the header names it (header 'When,Open,High,Low,Close'); "
       "map it in the column map"},
      {"unknown date layout", "Date,Open,High,Low,Close\nJan 2 2006,1,1,1,1\n",
       ":2: field Date: not a date in a known layout (value 'Jan 2 2006'); set \"date_format\" "
       "in the column map"},
      {"unknown time layout", "Date,Time,Open,High,Low,Close\n2006-01-02,9h01,1,1,1,1\n",
       ":2: field Time: not a time of day in a known layout (value '9h01'); set \"time_format\" "
       "in the column map"},
      {"too few fields without a header", "2006-01-02,1,1,1\n",
       ":1: field Close: missing column: the row has 4 fields split at ',', the field is column 5 "
       "(value '2006-01-02,1,1,1')"},
  };
  for (const ErrorCase& row : cases) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ErrorOf(row.text), row.message);
  }
  EXPECT_EQ(ErrorAt(folder_ / "missing.csv"),
            ": cannot open the bar file: No such file or directory");
  EXPECT_EQ(ErrorAt(folder_.path()), ": cannot read the bar file: it is a folder");
}

TEST_F(BarFileTest, ColumnMapsThatCannotFitTheFileAreRefused) {
  ColumnMap comma;
  comma.Delimiter = ',';
  EXPECT_EQ(ErrorOf("Date;Open;High;Low;Close\n2006-01-02;1;1;1;1\n", comma),
            ":1: field Date: no column of the header names it (header "
            "'Date;Open;High;Low;Close'); the line is split at ',' but holds ';': set "
            "\"delimiter\" in the column map");
  comma.HasHeader = 0;
  EXPECT_EQ(ErrorOf("2006-01-02;1;1;1;1\n", comma),
            ":1: field Open: missing column: the row has 1 field split at ',', the field is "
            "column 2; the line is split at ',' but holds ';': set \"delimiter\" in the column "
            "map (value '2006-01-02;1;1;1;1')");
  const std::string daily = "Date,Open,High,Low,Close\n2006-01-02,1,1,1,1\n";
  ColumnMap both;
  both.Close = 4;
  both.Volume = 4;
  EXPECT_EQ(ErrorOf(daily, both), ": column map: Close and Volume are both column 4");
  ColumnMap timeWithoutTime;
  timeWithoutTime.TimeFormat = "%H:%M";
  EXPECT_EQ(ErrorOf(daily, timeWithoutTime), ": column map: a time format but no time in the file");
  ColumnMap badFormat;
  badFormat.DateFormat = "%Y-%q";
  EXPECT_EQ(ErrorOf(daily, badFormat),
            ": column map: Date format '%Y-%q': unknown conversion '%q' in a date format (known: "
            "%Y %y %m %b %d)");
}

TEST_F(BarFileTest, AFailedLoadLeavesTheSourceAsItWas) {
  QXDataSource source;
  source.Bars.resize(3);
  source.BarInterval = 5;
  EXPECT_THROW(LoadBarFile(Write("Date,Time,Open,High,Low,Close\n2006-01-02,09:01:00,1,1,1,x\n"),
                           {}, source),
               InputError);
  EXPECT_EQ(source.Bars.size(), 3u);
  EXPECT_EQ(source.BarInterval, 5u);
}

// ------------------------------------------------------------------------------------------------
// The bar files shipped with the project

TEST_F(BarFileTest, EverySampleFileLoads) {
  // Counts are the files' lines less the header; first and last closes read off the files.
  const struct {
    const char* file;
    size_t bars;
    uint32_t barType, interval;
    double firstClose, lastClose;
  } samples[] = {
      {"2006-day-001.txt", 255, 0, 1, 3604.33, 4119.94},
      {"2006-min-005.txt", 2142, 1, 5, 3582.99, 3677.52},
      {"2006-01-02-volume-min-001.txt", 30889, 1, 1, 3599.00, 3838.00},
      {"orcl-1995-2014.txt", 5036, 0, 1, 2.117284, 44.970001},
  };
  const std::filesystem::path folder = QXRUN_SAMPLE_DATA;
  if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << folder << " is not there";
  for (const auto& sample : samples) {
    SCOPED_TRACE(sample.file);
    QXDataSource source;
    LoadBarFile(folder / sample.file, {}, source);
    ASSERT_EQ(source.Bars.size(), sample.bars);
    EXPECT_EQ(source.BarType, sample.barType);
    EXPECT_EQ(source.BarInterval, sample.interval);
    EXPECT_EQ(source.Bars.front().Close, sample.firstClose);
    EXPECT_EQ(source.Bars.back().Close, sample.lastClose);
  }
}

}  // namespace
}  // namespace qxrun
