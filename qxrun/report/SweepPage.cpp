#include "qxrun/report/SweepPage.h"

#include "qxrun/page/PageText.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace qxrun {
namespace {

// The page: the data in a JSON block, drawn by the script below it into a table whose cells
// are coloured from the worst (red) to the best (green) value of the chosen figure.
constexpr const char* kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>@TITLE@</title>
<style>
body { font: 13px system-ui, sans-serif; color: #1f2933; margin: 24px; }
select { margin-right: 16px; }
table.heat { border-collapse: collapse; margin-top: 12px; }
table.heat td, table.heat th { border: 1px solid #fff; padding: 4px 6px; text-align: right;
  min-width: 44px; }
table.heat th { background: #f0f3f6; font-weight: 600; }
#note { color: #52606d; }
</style>
</head>
<body>
<h1>@TITLE@</h1>
<p>Figure <select id="figure"></select> across <select id="x"></select> and
<select id="y"></select></p>
<p id="note"></p>
<div id="heatmap"></div>
<script id="sweep-data" type="application/json">)";

constexpr const char* kTail = R"(</script>
<script>
(function () {
  'use strict';
  const data = JSON.parse(document.getElementById('sweep-data').textContent);
  const pick = (id, names, chosen) => {
    const select = document.getElementById(id);
    names.forEach((name, i) => select.add(new Option(name, i, false, i === chosen)));
    select.addEventListener('change', draw);
    return select;
  };
  const figure = pick('figure', data.figures, Math.max(0, data.figures.indexOf(data.objective)));
  const x = pick('x', data.parameters, 0);
  const y = pick('y', data.parameters, data.parameters.length > 1 ? 1 : 0);
  function draw() {
    const f = Number(figure.value);
    const xi = Number(x.value);
    const yi = Number(y.value);
    const smaller = data.smaller.includes(data.figures[f]);
    const better = (a, b) => (smaller ? a < b : a > b);
    // Each cell keeps the best value over the points that share its two parameters.
    const cells = new Map();
    const xs = new Set();
    const ys = new Set();
    data.points.forEach((point, i) => {
      const value = data.rows[i][f];
      xs.add(point[xi]);
      ys.add(point[yi]);
      if (value === null) return;
      const key = point[xi] + '|' + point[yi];
      if (!cells.has(key) || better(value, cells.get(key))) cells.set(key, value);
    });
    const values = [...cells.values()];
    const low = Math.min(...values);
    const high = Math.max(...values);
    const colour = (v) => {
      let t = high > low ? (v - low) / (high - low) : 0.5;
      if (smaller) t = 1 - t;
      return 'hsl(' + Math.round(t * 120) + ',65%,' + (88 - 30 * Math.abs(t - 0.5)) + '%)';
    };
    const order = (set) => [...set].sort((a, b) => a - b);
    const table = document.createElement('table');
    table.className = 'heat';
    const head = table.insertRow();
    head.appendChild(document.createElement('th')).textContent =
      data.parameters[yi] + ' \\ ' + data.parameters[xi];
    const columns = order(xs);
    columns.forEach((v) => { head.appendChild(document.createElement('th')).textContent = v; });
    for (const row of order(ys)) {
      const tr = table.insertRow();
      tr.appendChild(document.createElement('th')).textContent = row;
      for (const column of columns) {
        const td = tr.insertCell();
        const value = cells.get(column + '|' + row);
        if (value === undefined) continue;
        td.textContent = Math.abs(value) >= 100 ? value.toFixed(0) : value.toPrecision(3);
        td.style.background = colour(value);
        td.title = data.parameters[xi] + '=' + column + ', ' + data.parameters[yi] + '=' + row +
          ': ' + value;
      }
    }
    const target = document.getElementById('heatmap');
    target.replaceChildren(table);
    document.getElementById('note').textContent = data.points.length + ' points; ' +
      (data.parameters.length > 2 ? 'each cell shows the best value over the other parameters; ' : '') +
      'green is better' + (smaller ? ' (smaller)' : '') + '.';
  }
  draw();
})();
</script>
</body>
</html>
)";

nlohmann::json Numbers(const std::vector<double>& values) {
  nlohmann::json list = nlohmann::json::array();
  for (const double value : values) {
    list.push_back(std::isfinite(value) ? nlohmann::json(value) : nlohmann::json());
  }
  return list;
}

}  // namespace

std::string SweepPageJson(const SweepPageData& data) {
  nlohmann::json points = nlohmann::json::array();
  for (const std::vector<double>& point : data.Points) points.push_back(Numbers(point));
  nlohmann::json rows = nlohmann::json::array();
  for (const std::vector<double>& row : data.Rows) rows.push_back(Numbers(row));
  const nlohmann::json json = {{"parameters", data.Parameters}, {"points", points},
                               {"figures", data.Figures},       {"rows", rows},
                               {"objective", data.Objective},   {"smaller", data.SmallerIsBetter}};
  return json.dump();
}

void WriteSweepPage(std::ostream& out, const SweepPageData& data) {
  std::string head = kHead;
  const std::string title = EscapeHtml(data.Title);
  for (size_t at = head.find("@TITLE@"); at != std::string::npos; at = head.find("@TITLE@")) {
    head.replace(at, 7, title);
  }
  out << head << ScriptSafeJson(SweepPageJson(data)) << kTail;
}

}  // namespace qxrun
