// The whole page: template slots, the inlined library and the data the script draws.
#include "page/PageJson.h"
#include "page/ReportPage.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace qxrun {
namespace {

using nlohmann::json;

constexpr int64_t kJan2 = 1704153600;  // 2024-01-02 00:00

size_t Count(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

std::string Page(const PageData& data) {
  std::ostringstream out;
  WriteReportPage(data, out);
  return out.str();
}

// The JSON between the data element's tags.
json DataOf(const std::string& page) {
  const std::string open = "<script id=\"page-data\" type=\"application/json\">";
  const size_t start = page.find(open);
  if (start == std::string::npos) {
    ADD_FAILURE() << "no data element";
    return {};
  }
  const size_t end = page.find("</script>", start);
  return json::parse(page.substr(start + open.size(), end - start - open.size()));
}

PageData SmallRun() {
  PageData data;
  data.Title = "ma_cross on rb888 & friends";
  data.Subtitle = "@STATS@";  // looks like a slot, stays text
  data.Candles = {{kJan2 + 9 * 3600, 3500, 3512.123456789012, 3499, 3510},
                  {kJan2 + 9 * 3600 + 60, 3510, 3515, 3505, 3506}};
  data.Lines = {{"</script><b>ma", "red", false, {{kJan2 + 9 * 3600, 3501.5}}},
                {"rsi", "#00FF7f", true, {{kJan2 + 9 * 3600 + 60, 55}}}};
  data.Markers = {{kJan2 + 9 * 3600 + 60, MarkerKind::kSellShort, 3506, 2, ""}};
  data.Equity = {{kJan2 + 9 * 3600, 1000000}, {kJan2 + 9 * 3600 + 60, 1000040}};
  data.Drawdown = {{kJan2 + 9 * 3600, 0}, {kJan2 + 9 * 3600 + 60, 0}};
  data.StatColumns = {"All"};
  data.Stats = {{"net_profit", "Net profit", {"40.00"}}};
  data.Monthly = {{2024, 1, 0.00004}};
  data.Notes = {"Equity is marked at each close."};
  return data;
}

TEST(ReportPage, SlotsAreFilledOnceAndInsertedTextIsNotReread) {
  const std::string page = Page(SmallRun());
  EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0u);
  EXPECT_NE(page.find("<title>ma_cross on rb888 &amp; friends</title>"), std::string::npos);
  EXPECT_NE(page.find("<h1>ma_cross on rb888 &amp; friends</h1>"), std::string::npos);
  EXPECT_NE(page.find("<p class=\"subtitle\">@STATS@</p>"), std::string::npos);
  EXPECT_EQ(Count(page, "<table id=\"stats\">"), 1u);
  EXPECT_NE(page.find("<tr data-key=\"net_profit\"><th scope=\"row\">Net profit</th>"
                      "<td>40.00</td></tr>"),
            std::string::npos);
  EXPECT_NE(page.find("<table id=\"monthly\">"), std::string::npos);
  EXPECT_NE(page.find("<li>Equity is marked at each close.</li>"), std::string::npos);
  EXPECT_NE(page.find("<p id=\"period-note\"></p>"), std::string::npos);  // full resolution
  // The chart library is inlined, and nothing ends a script early: the library, the data and
  // the page's script are the only three.
  EXPECT_NE(page.find("window.LightweightCharts"), std::string::npos);
  EXPECT_EQ(Count(page, "<script"), 3u);
  EXPECT_EQ(Count(page, "</script>"), 3u);
  EXPECT_EQ(page.find("@TITLE@"), std::string::npos);
  EXPECT_EQ(page.find("@DATA@"), std::string::npos);
}

TEST(ReportPage, DataHoldsCompactArraysTheScriptDraws) {
  const json data = DataOf(Page(SmallRun()));
  // Ten significant digits: 3512.123456789012 -> 3512.123457.
  EXPECT_EQ(data["candles"], json::parse("[[1704186000,3500,3512.123457,3499,3510],"
                                         "[1704186060,3510,3515,3505,3506]]"));
  ASSERT_EQ(data["lines"].size(), 2u);
  // "red" is no "#rrggbb" colour: the first of the palette replaces it.
  EXPECT_EQ(data["lines"][0], json::parse(R"({"name":"</script><b>ma","color":"#2962ff",
                                             "ownPane":false,"points":[[1704186000,3501.5]]})"));
  EXPECT_EQ(data["lines"][1]["color"], "#00FF7f");
  EXPECT_EQ(data["lines"][1]["ownPane"], true);
  // Kind 2 is a sell short, in the order of MarkerKind.
  EXPECT_EQ(data["markers"], json::parse(R"([[1704186060,2,3506,"SellShort 2 @ 3506"]])"));
  EXPECT_EQ(data["equity"], json::parse("[[1704186000,1000000],[1704186060,1000040]]"));
  EXPECT_EQ(data["drawdown"], json::parse("[[1704186000,0],[1704186060,0]]"));
}

TEST(ReportPage, DataTextIsSafeInsideAScriptAndAlwaysUtf8) {
  ShownSeries shown;
  shown.Lines = {{"</script>\xBE\xF9", "#000000", false, {}}};
  const std::string text = PageDataJson(shown);
  EXPECT_EQ(text.find('<'), std::string::npos);
  EXPECT_EQ(json::parse(text)["lines"][0]["name"], "</script>\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ReportPage, LongSeriesNameTheirPeriod) {
  // 12,001 one-second bars from 09:00 fill 201 minute buckets (09:00 to 12:20).
  PageData data;
  for (int64_t i = 0; i <= 12000; ++i) {
    data.Candles.push_back({kJan2 + 9 * 3600 + i, 1, 2, 0.5, 1.5});
  }
  const std::string page = Page(data);
  EXPECT_NE(
      page.find("<p id=\"period-note\">Shown at 1 min per candle (12,001 bars aggregated)</p>"),
      std::string::npos);
  const json shown = DataOf(page);
  ASSERT_EQ(shown["candles"].size(), 201u);
  EXPECT_EQ(shown["candles"][200], json::parse("[1704198000,1,2,0.5,1.5]"));  // 12:20
}

TEST(ReportPage, AnEmptyRunStillMakesAPage) {
  const std::string page = Page(PageData{});
  const json data = DataOf(page);
  EXPECT_TRUE(data["candles"].empty());
  EXPECT_NE(page.find("<table id=\"stats\">"), std::string::npos);
  EXPECT_NE(page.find("No monthly returns."), std::string::npos);
}

}  // namespace
}  // namespace qxrun
