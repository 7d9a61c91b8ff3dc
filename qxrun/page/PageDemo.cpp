// Writes a report page from synthetic data: a random walk of minute candles traded by a moving-
// average crossover. Usage: qxrun_page_demo OUT.html [BARS]
// Beside the page, OUT.json holds {"summary": {"net_profit": ...}} for checks of the page.
#include "page/PageText.h"
#include "page/ReportPage.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

namespace {

using qxrun::MarkerKind;

constexpr int64_t kMinute = 60;
constexpr int64_t kDay = 86400;
constexpr double kCapital = 1000000.0;
constexpr double kBigPointValue = 10.0;
constexpr size_t kFast = 10;
constexpr size_t kSlow = 30;

// 09:00-11:30 and 13:30-15:00 on weekdays: 240 one-minute bars a day, stamped at their start.
class SessionClock {
 public:
  explicit SessionClock(int64_t day) : day_(day) { SkipWeekend(); }
  int64_t Now() const { return day_ + minute_ * kMinute; }
  void Advance() {
    ++minute_;
    if (minute_ == 11 * 60 + 30) {
      minute_ = 13 * 60 + 30;
    } else if (minute_ == 15 * 60) {
      minute_ = 9 * 60;
      day_ += kDay;
      SkipWeekend();
    }
  }

 private:
  void SkipWeekend() {
    // Counted from Saturday = 0 (1970-01-01, day 0, was a Thursday = 5), the weekend is below 2.
    while ((day_ / kDay + 5) % 7 < 2) {
      day_ += kDay;
    }
  }
  int64_t day_;
  int64_t minute_ = 9 * 60;
};

std::string Money(double value) {
  const double cents = std::round(std::fabs(value) * 100.0);
  const auto units = static_cast<uint64_t>(cents / 100.0);
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%02d", static_cast<int>(cents - units * 100.0));
  std::string text = value < 0.0 && cents > 0.0 ? "-" : "";
  text += qxrun::GroupThousands(units);
  text += fraction;
  return text;
}

struct Trading {
  int position = 0;  // +1 long, -1 short
  double entryPrice = 0.0;
  double realized = 0.0;
  int trades[2] = {0, 0};  // long, short
  int wins = 0;

  void Close(double price) {
    const double profit = position * (price - entryPrice) * kBigPointValue;
    realized += profit;
    ++trades[position > 0 ? 0 : 1];
    wins += profit > 0.0 ? 1 : 0;
    position = 0;
  }
};

qxrun::PageData MakeData(size_t bars) {
  qxrun::PageData data;
  data.Title = "ma_cross on DEMO (synthetic minute bars)";
  data.Subtitle = std::to_string(bars) + " bars, fast 10 / slow 30, 1 lot, big point value 10";
  data.Candles.reserve(bars);
  data.Equity.reserve(bars);
  data.Drawdown.reserve(bars);
  data.Lines = {{"MA10", "#2962ff", false, {}},
                {"MA30", "#ff6d00", false, {}},
                {"Spread", "#8e24aa", true, {}}};

  std::mt19937_64 random(20240102);
  SessionClock clock(19724 * kDay);  // 2024-01-02
  std::deque<double> window;
  double fastSum = 0.0;
  double slowSum = 0.0;
  double previousSpread = 0.0;
  double close = 3500.0;
  double peak = kCapital;
  Trading trading;
  for (size_t i = 0; i < bars; ++i, clock.Advance()) {
    const int64_t time = clock.Now();
    const double open = close;
    close = open + static_cast<double>(random() % 7) - 3.0;
    const double high = std::max(open, close) + static_cast<double>(random() % 3);
    const double low = std::min(open, close) - static_cast<double>(random() % 3);
    data.Candles.push_back({time, open, high, low, close});

    window.push_back(close);
    fastSum += close;
    slowSum += close;
    if (window.size() > kFast) fastSum -= window[window.size() - kFast - 1];
    if (window.size() > kSlow) {
      slowSum -= window.front();
      window.pop_front();
    }
    if (window.size() == kSlow) {
      const double fast = fastSum / kFast;
      const double slow = slowSum / kSlow;
      const double spread = fast - slow;
      data.Lines[0].Points.push_back({time, fast});
      data.Lines[1].Points.push_back({time, slow});
      data.Lines[2].Points.push_back({time, spread});
      const bool up = previousSpread <= 0.0 && spread > 0.0;
      const bool down = previousSpread >= 0.0 && spread < 0.0;
      if ((up && trading.position <= 0) || (down && trading.position >= 0)) {
        if (trading.position != 0) {
          data.Markers.push_back(
              {time, up ? MarkerKind::kBuyToCover : MarkerKind::kSell, close, 1.0, ""});
          trading.Close(close);
        }
        data.Markers.push_back(
            {time, up ? MarkerKind::kBuy : MarkerKind::kSellShort, close, 1.0, ""});
        trading.position = up ? 1 : -1;
        trading.entryPrice = close;
      }
      previousSpread = spread;
    }
    const double open_profit = trading.position * (close - trading.entryPrice) * kBigPointValue;
    const double equity = kCapital + trading.realized + open_profit;
    peak = std::max(peak, equity);
    data.Equity.push_back({time, equity});
    data.Drawdown.push_back({time, equity - peak});
  }
  if (!data.Candles.empty()) {
    const qxrun::PageCandle& last = data.Candles.back();
    data.Markers.push_back(
        {last.Time, MarkerKind::kLiveBuy, last.Low, 1.0, "Live buy 1 (working)"});
  }
  const int total = trading.trades[0] + trading.trades[1];
  data.Stats.push_back({"total_trades",
                        "Closed trades",
                        {std::to_string(total), std::to_string(trading.trades[0]),
                         std::to_string(trading.trades[1])}});
  data.Stats.push_back(
      {"winning_trades", "Winning trades", {std::to_string(trading.wins), "", ""}});
  return data;
}

std::chrono::year_month_day DateOf(int64_t time) {
  return std::chrono::year_month_day{std::chrono::sys_days{std::chrono::days{time / kDay}}};
}

// The statistics, the notes and the month returns (equity at a month's last bar against the
// previous month's last bar, the first against the initial capital).
double AddReport(qxrun::PageData& data) {
  double maxDrawdown = 0.0;
  for (const qxrun::PagePoint& point : data.Drawdown) {
    maxDrawdown = std::min(maxDrawdown, point.Value);
  }
  const double finalEquity = data.Equity.empty() ? kCapital : data.Equity.back().Value;
  const double netProfit = finalEquity - kCapital;

  double monthStart = kCapital;
  for (size_t i = 0; i < data.Equity.size(); ++i) {
    const std::chrono::year_month_day date = DateOf(data.Equity[i].Time);
    if (i + 1 == data.Equity.size() || DateOf(data.Equity[i + 1].Time).month() != date.month()) {
      data.Monthly.push_back({static_cast<int>(date.year()),
                              static_cast<int>(static_cast<unsigned>(date.month())),
                              data.Equity[i].Value / monthStart - 1.0});
      monthStart = data.Equity[i].Value;
    }
  }
  data.StatColumns = {"All", "Long", "Short"};
  data.Stats.insert(data.Stats.begin(),
                    {{"net_profit", "Net profit", {Money(netProfit), "", ""}},
                     {"max_drawdown", "Max drawdown", {Money(maxDrawdown), "", ""}},
                     {"final_equity", "Final equity", {Money(finalEquity), "", ""}}});
  data.Notes = {"Synthetic data: a random walk of one-minute bars, for looking at the page.",
                "Net profit includes the open position valued at the last close."};
  return netProfit;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::cerr << "usage: qxrun_page_demo OUT.html [BARS]\n";
    return 2;
  }
  size_t bars = 2000;
  if (argc == 3) {
    const std::string_view text = argv[2];
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bars);
    if (error != std::errc() || end != text.data() + text.size()) {
      std::cerr << "qxrun_page_demo: BARS must be a whole number, not '" << text << "'\n";
      return 2;
    }
  }
  qxrun::PageData data = MakeData(bars);
  const double netProfit = AddReport(data);

  const std::filesystem::path page = argv[1];
  std::ofstream out(page, std::ios::binary);
  qxrun::WriteReportPage(data, out);
  std::filesystem::path summaryPath = page;
  summaryPath.replace_extension(".json");
  std::ofstream summary(summaryPath);
  summary << nlohmann::json{{"summary", {{"net_profit", netProfit}}}}.dump(2) << '\n';
  out.close();
  summary.close();
  if (!out || !summary) {
    std::cerr << "qxrun_page_demo: cannot write " << page.string() << " or " << summaryPath.string()
              << '\n';
    return 1;
  }
  return 0;
}
