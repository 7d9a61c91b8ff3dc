// Draws the report's charts from the page's data: the price pane (candles, lines over them and
// order markers), a pane per line that asks for its own, then the equity and drawdown panes, all
// on one time scale.
(function () {
  'use strict';

  const data = JSON.parse(document.getElementById('page-data').textContent);
  const container = document.getElementById('chart');
  const legend = document.getElementById('legend');
  const charts = window.LightweightCharts;

  if (data.markers.length === 0) document.getElementById('marker-key').hidden = true;
  if (data.candles.length === 0) {
    container.classList.add('empty');
    container.textContent = 'No bars to draw.';
    return;
  }

  // Marker kinds in the order the writer numbers them: buy, sell, sell short, buy to cover,
  // live buy, live sell.
  const markerStyles = [
    { position: 'belowBar', shape: 'arrowUp', color: '#1e88e5' },
    { position: 'aboveBar', shape: 'arrowDown', color: '#d81b60' },
    { position: 'aboveBar', shape: 'arrowDown', color: '#f4511e' },
    { position: 'belowBar', shape: 'arrowUp', color: '#00897b' },
    { position: 'belowBar', shape: 'circle', color: '#8e24aa' },
    { position: 'aboveBar', shape: 'circle', color: '#8e24aa' },
  ];
  // Beyond this many markers their texts would cover the candles: the legend shows them instead.
  const maxMarkerTexts = 40;
  const priceHeight = 380;
  const paneHeight = 140;

  const ownPaneLines = data.lines.filter((line) => line.ownPane);
  const paneCount = 1 + ownPaneLines.length + (data.equity.length ? 1 : 0) +
    (data.drawdown.length ? 1 : 0);
  container.style.height = priceHeight + paneHeight * (paneCount - 1) + 'px';

  // Times are wall-clock seconds; show the time of day only for intraday candles.
  let intraday = false;
  for (let i = 1; i < data.candles.length && !intraday; ++i) {
    intraday = (data.candles[i][0] - data.candles[i - 1][0]) % 86400 !== 0;
  }

  const chart = charts.createChart(container, {
    autoSize: true,
    layout: {
      background: { type: 'solid', color: '#ffffff' },
      textColor: '#3e4c59',
      fontSize: 11,
      panes: { separatorColor: '#cbd2d9', enableResize: true },
    },
    grid: { vertLines: { color: '#f0f3f6' }, horzLines: { color: '#f0f3f6' } },
    crosshair: { mode: charts.CrosshairMode.Normal },
    rightPriceScale: { borderColor: '#e4e7eb' },
    timeScale: { borderColor: '#e4e7eb', timeVisible: intraday, secondsVisible: false },
  });

  const point = (p) => ({ time: p[0], value: p[1] });
  const seriesByName = [];

  const candleSeries = chart.addSeries(charts.CandlestickSeries, {
    upColor: '#26a69a', downColor: '#ef5350', borderVisible: false,
    wickUpColor: '#26a69a', wickDownColor: '#ef5350',
  }, 0);
  candleSeries.setData(data.candles.map((c) => ({
    time: c[0], open: c[1], high: c[2], low: c[3], close: c[4],
  })));

  let pane = 0;
  for (const line of data.lines) {
    const index = line.ownPane ? ++pane : 0;
    const series = chart.addSeries(charts.LineSeries, {
      color: line.color, lineWidth: 2, title: line.name,
      priceLineVisible: false, lastValueVisible: index !== 0,
    }, index);
    series.setData(line.points.map(point));
    seriesByName.push([line.name, series]);
  }
  if (data.equity.length) {
    const series = chart.addSeries(charts.AreaSeries, {
      lineColor: '#2962ff', topColor: 'rgba(41,98,255,0.25)', bottomColor: 'rgba(41,98,255,0.02)',
      lineWidth: 2, title: 'Equity', priceLineVisible: false,
    }, ++pane);
    series.setData(data.equity.map(point));
    seriesByName.push(['Equity', series]);
  }
  if (data.drawdown.length) {
    const series = chart.addSeries(charts.AreaSeries, {
      lineColor: '#dc2626', topColor: 'rgba(220,38,38,0.02)', bottomColor: 'rgba(220,38,38,0.3)',
      invertFilledArea: true, lineWidth: 1, title: 'Drawdown', priceLineVisible: false,
    }, ++pane);
    series.setData(data.drawdown.map(point));
    seriesByName.push(['Drawdown', series]);
  }
  const panes = chart.panes();
  panes[0].setStretchFactor(priceHeight / paneHeight);
  for (let i = 1; i < panes.length; ++i) panes[i].setStretchFactor(1);

  const showTexts = data.markers.length <= maxMarkerTexts;
  const markersByTime = new Map();
  charts.createSeriesMarkers(candleSeries, data.markers.map((m) => {
    const style = markerStyles[m[1]] || markerStyles[0];
    const list = markersByTime.get(m[0]) || [];
    list.push(m[3]);
    markersByTime.set(m[0], list);
    return {
      time: m[0], position: style.position, shape: style.shape, color: style.color,
      text: showTexts ? m[3] : '', size: showTexts ? 1 : 0.6,
    };
  }));

  chart.timeScale().fitContent();

  // The legend names what is under the crosshair: the candle, each line's value and the orders.
  const two = (n) => String(n).padStart(2, '0');
  const formatTime = (t) => {
    const d = new Date(t * 1000);
    const day = d.getUTCFullYear() + '-' + two(d.getUTCMonth() + 1) + '-' + two(d.getUTCDate());
    return intraday ? day + ' ' + two(d.getUTCHours()) + ':' + two(d.getUTCMinutes()) : day;
  };
  const formatNumber = (n) => (typeof n === 'number' ? String(+n.toPrecision(10)) : '');
  const last = data.candles[data.candles.length - 1];
  const showLegend = (param) => {
    const time = param && param.time !== undefined ? param.time : last[0];
    let candle = param && param.seriesData ? param.seriesData.get(candleSeries) : undefined;
    if (!candle && time === last[0]) {
      candle = { open: last[1], high: last[2], low: last[3], close: last[4] };
    }
    const parts = [formatTime(time)];
    if (candle) {
      parts.push('O ' + formatNumber(candle.open) + '  H ' + formatNumber(candle.high) +
        '  L ' + formatNumber(candle.low) + '  C ' + formatNumber(candle.close));
    }
    for (const [name, series] of seriesByName) {
      const value = param && param.seriesData ? param.seriesData.get(series) : undefined;
      if (value && value.value !== undefined) parts.push(name + ' ' + formatNumber(value.value));
    }
    const orders = markersByTime.get(time);
    let text = parts.join('   ');
    if (orders) text += '\n' + orders.join('; ');
    legend.textContent = text;
  };
  chart.subscribeCrosshairMove(showLegend);
  showLegend(null);
})();
