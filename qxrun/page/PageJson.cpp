#include "page/PageJson.h"

#include "page/PageText.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

namespace qxrun {
namespace {

using nlohmann::json;

// Colours for lines that bring none (or one the page cannot read).
constexpr std::array<const char*, 6> kLinePalette = {"#2962ff", "#ff6d00", "#8e24aa",
                                                     "#00897b", "#6d4c41", "#c2185b"};

// Ten significant digits: a page needs no more, and the numbers stay short.
double Compact(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", value);
  return std::strtod(text, nullptr);
}

bool IsHexColor(const std::string& color) {
  if (color.size() != 7 || color[0] != '#') {
    return false;
  }
  for (size_t i = 1; i < color.size(); ++i) {
    if (!std::isxdigit(static_cast<unsigned char>(color[i]))) {
      return false;
    }
  }
  return true;
}

json Points(const std::vector<PagePoint>& points) {
  json array = json::array();
  for (const PagePoint& point : points) {
    array.push_back({point.Time, Compact(point.Value)});
  }
  return array;
}

}  // namespace

std::string PageDataJson(const ShownSeries& shown) {
  json candles = json::array();
  for (const PageCandle& candle : shown.Candles) {
    candles.push_back({candle.Time, Compact(candle.Open), Compact(candle.High), Compact(candle.Low),
                       Compact(candle.Close)});
  }
  json lines = json::array();
  for (size_t i = 0; i < shown.Lines.size(); ++i) {
    const PageLine& line = shown.Lines[i];
    lines.push_back(
        {{"name", line.Name},
         {"color", IsHexColor(line.Color) ? line.Color : kLinePalette[i % kLinePalette.size()]},
         {"ownPane", line.OwnPane},
         {"points", Points(line.Points)}});
  }
  json markers = json::array();
  for (const ShownMarker& marker : shown.Markers) {
    markers.push_back(
        {marker.Time, static_cast<int>(marker.Kind), Compact(marker.Price), MarkerText(marker)});
  }
  const json data = {{"candles", std::move(candles)},
                     {"lines", std::move(lines)},
                     {"markers", std::move(markers)},
                     {"equity", Points(shown.Equity)},
                     {"drawdown", Points(shown.Drawdown)}};
  // Text that is not UTF-8 becomes U+FFFD rather than failing the page.
  return ScriptSafeJson(data.dump(-1, ' ', false, json::error_handler_t::replace));
}

}  // namespace qxrun
