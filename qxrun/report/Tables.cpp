#include "qxrun/report/Tables.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iomanip>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>

namespace qxrun {
namespace {

constexpr double kNoSide = std::numeric_limits<double>::quiet_NaN();

// A buffered writer of CSV rows: numbers through to_chars, flushed in large blocks.
class CsvWriter {
 public:
  explicit CsvWriter(std::ostream& out) : out_(out) { buffer_.reserve(kBlock + 256); }
  ~CsvWriter() { Flush(); }
  CsvWriter(const CsvWriter&) = delete;
  CsvWriter& operator=(const CsvWriter&) = delete;

  CsvWriter& Text(const std::string& text) {
    buffer_ += text;
    return *this;
  }
  CsvWriter& Int(int64_t value) {
    char text[24];
    buffer_.append(text, std::to_chars(text, text + sizeof(text), value).ptr);
    return *this;
  }
  // The shortest text without an exponent that reads back as the same double.
  CsvWriter& Number(double value) {
    char text[400];
    buffer_.append(text,
                   std::to_chars(text, text + sizeof(text), value, std::chars_format::fixed).ptr);
    return *this;
  }
  // A column whose value often stays the same from one row to the next (capital, lots, costs):
  // the text of its last value is kept and copied again while the value (bit for bit) is.
  class RepeatedNumber {
   public:
    std::string_view Text(double value) {
      const auto bits = std::bit_cast<uint64_t>(value);
      if (size_ == 0 || bits != bits_) {
        bits_ = bits;
        size_ = static_cast<size_t>(
            std::to_chars(text_, text_ + sizeof(text_), value, std::chars_format::fixed).ptr -
            text_);
      }
      return {text_, size_};
    }

   private:
    uint64_t bits_ = 0;
    size_t size_ = 0;
    char text_[400];
  };
  CsvWriter& Number(double value, RepeatedNumber& column) {
    buffer_ += column.Text(value);
    return *this;
  }
  CsvWriter& Time(int64_t millis) {
    buffer_ += clock_(millis);
    return *this;
  }
  CsvWriter& Comma() {
    buffer_ += ',';
    return *this;
  }
  void EndRow() {
    buffer_ += '\n';
    if (buffer_.size() >= kBlock) Flush();
  }
  void Flush() {
    out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    buffer_.clear();
  }

  // Local time texts "YYYY-MM-DD HH:MM:SS". The zone's offset is asked for once per day (no zone
  // changes it twice within a day; a day with a change is split where it falls), the date once
  // per local day, and the time of day is counted from the offset. A zone whose clock counts leap
  // seconds disagrees with that count: its texts are converted one by one.
  class Clock {
   public:
    const char* operator()(int64_t millis) {
      const int64_t seconds = FloorDivide(millis, 1000);
      if (seconds < spanStart_ || seconds >= spanEnd_) Enter(seconds);
      if (!counted_) {
        std::tm fields{};
        Convert(seconds, fields);
        WriteDate(fields);
        WriteTime(fields.tm_hour, fields.tm_min, fields.tm_sec);
        return text_;
      }
      const int64_t local = seconds + offset_;
      const int64_t day = FloorDivide(local, kSecondsPerDay);
      if (day != day_) {
        day_ = day;
        std::tm fields{};
        Convert(seconds, fields);
        WriteDate(fields);
      }
      const auto second = static_cast<int>(local - day * kSecondsPerDay);
      WriteTime(second / 3600, second % 3600 / 60, second % 60);
      return text_;
    }

   private:
    static constexpr int64_t kSecondsPerDay = 86400;

    static int64_t FloorDivide(int64_t value, int64_t divisor) {
      return value >= 0 ? value / divisor : (value - divisor + 1) / divisor;
    }
    // The local fields of `seconds` and the zone's offset east of UTC then.
    static int64_t Convert(int64_t seconds, std::tm& fields) {
      const auto instant = static_cast<std::time_t>(seconds);
      if (localtime_r(&instant, &fields) == nullptr) fields = std::tm{};
      return fields.tm_gmtoff;
    }
    // Starts the span of constant offset that holds `seconds`.
    void Enter(int64_t seconds) {
      std::tm fields{};
      offset_ = Convert(seconds, fields);
      const int64_t ofDay =
          seconds + offset_ - FloorDivide(seconds + offset_, kSecondsPerDay) * kSecondsPerDay;
      counted_ = fields.tm_hour * 3600 + fields.tm_min * 60 + fields.tm_sec == ofDay;
      day_ = std::numeric_limits<int64_t>::min();
      spanStart_ = seconds;
      int64_t high = seconds + kSecondsPerDay;
      std::tm ignored{};
      if (Convert(high, ignored) != offset_) {
        // The first second of the new offset.
        int64_t low = seconds;
        while (high - low > 1) {
          const int64_t middle = low + (high - low) / 2;
          (Convert(middle, ignored) == offset_ ? low : high) = middle;
        }
      }
      spanEnd_ = high;
    }
    void WriteDate(const std::tm& fields) {
      Digits(text_, fields.tm_year + 1900, 4);
      Digits(text_ + 5, fields.tm_mon + 1, 2);
      Digits(text_ + 8, fields.tm_mday, 2);
    }
    void WriteTime(int hour, int minute, int second) {
      Digits(text_ + 11, hour, 2);
      Digits(text_ + 14, minute, 2);
      Digits(text_ + 17, second, 2);
    }
    static void Digits(char* at, int value, int width) {
      for (int i = width - 1; i >= 0; --i) {
        at[i] = static_cast<char>('0' + value % 10);
        value /= 10;
      }
    }

    int64_t spanStart_ = 1;  // [spanStart_, spanEnd_): seconds of the offset offset_
    int64_t spanEnd_ = 0;
    int64_t offset_ = 0;
    bool counted_ = false;  // the time of day is counted from the offset
    int64_t day_ = std::numeric_limits<int64_t>::min();  // the local day the date text is of
    char text_[20] = {'0', '0', '0', '0', '-', '0', '0', '-', '0', '0',
                      ' ', '0', '0', ':', '0', '0', ':', '0', '0', '\0'};
  };

 private:
  static constexpr size_t kBlock = 1 << 16;
  std::ostream& out_;
  std::string buffer_;
  Clock clock_;
};

const char* KindName(uint32_t kind) {
  switch (kind & 0xFF) {
    case kBuy:
      return "Buy";
    case kSell:
      return "Sell";
    case kSellShort:
      return "SellShort";
    case kBuyToCover:
      return "BuyToCover";
    default:
      return "?";
  }
}

const char* OriginName(uint32_t kind) {
  if (kind & kOriginRollover) return "rollover";
  if (kind & kOriginSettlement) return "settlement";
  if (kind & kOriginStockPicking) return "stock picking";
  return "formula";
}

std::string Grouped(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof(text), "%.*f", decimals, std::abs(value));
  std::string digits(text);
  const size_t point = digits.find('.');
  size_t end = point == std::string::npos ? digits.size() : point;
  std::string result;
  for (size_t i = 0; i < end; ++i) {
    if (i > 0 && (end - i) % 3 == 0) result += ',';
    result += digits[i];
  }
  result += digits.substr(end);
  // -0.00 reads as 0.00.
  if (value < 0.0 && result.find_first_not_of("0.,") != std::string::npos) result = "-" + result;
  return result;
}

nlohmann::json SideJson(const TradeSide& side) {
  return {{"trades", side.Trades},
          {"winners", side.Winners},
          {"losers", side.Losers},
          {"net_profit", side.NetProfit},
          {"gross_profit", side.GrossProfit},
          {"gross_loss", side.GrossLoss},
          {"profit_factor", side.ProfitFactor},
          {"win_rate", side.WinRate},
          {"average_trade", side.AverageTrade},
          {"average_win", side.AverageWin},
          {"average_loss", side.AverageLoss},
          {"best_trade", side.BestTrade},
          {"worst_trade", side.WorstTrade},
          {"sqn", side.Sqn},
          {"average_bars", side.AverageBars},
          {"average_days", side.AverageDays},
          {"average_mae", side.AverageMae},
          {"average_mfe", side.AverageMfe},
          {"worst_mae", side.WorstMae},
          {"best_mfe", side.BestMfe},
          {"max_win_streak", side.MaxWinStreak},
          {"max_loss_streak", side.MaxLossStreak}};
}

nlohmann::json LibraryReportJson(const PerformanceReport& report) {
  nlohmann::json json = {{"has_summary", report.HasSummary},
                         {"has_trade_analysis", report.HasTradeAnalysis},
                         {"has_detail", report.HasDetail}};
  if (report.HasSummary) {
    json["summary"] = {{"init_capital", report.InitCapital},
                       {"final_equity", report.FinalEquity},
                       {"net_profit", report.NetProfit},
                       {"gross_profit", report.GrossProfit},
                       {"gross_loss", report.GrossLoss},
                       {"profit_factor", report.ProfitFactor},
                       {"max_drawdown", report.MaxDrawDown},
                       {"max_drawdown_ratio", report.MaxDrawDownRatio},
                       {"return_on_initial_capital", report.ReturnOnInitialCapital},
                       {"annual_return", report.AnnualReturn},
                       {"sharpe_ratio_per_bar", report.SharpeRatio},
                       {"time_in_market", report.TimeInMarket}};
  }
  if (report.HasTradeAnalysis) {
    const auto side = [](const SideResult& result) {
      return nlohmann::json{{"trades", result.Trades},
                            {"winning_trades", result.WinningTrades},
                            {"gross_profit", result.GrossProfit},
                            {"gross_loss", result.GrossLoss},
                            {"net_profit", result.NetProfit}};
    };
    json["trade_analysis"] = {{"total_trades", report.TotalTrades},
                              {"winning_trades", report.WinningTrades},
                              {"losing_trades", report.LosingTrades},
                              {"even_trades", report.EvenTrades},
                              {"percent_profitable", report.PercentProfitable},
                              {"avg_trade", report.AvgTrade},
                              {"avg_win", report.AvgWin},
                              {"avg_loss", report.AvgLoss},
                              {"win_loss_ratio", report.WinLossRatio},
                              {"largest_win", report.LargestWin},
                              {"largest_loss", report.LargestLoss},
                              {"max_consec_winners", report.MaxConsecWinners},
                              {"max_consec_losers", report.MaxConsecLosers},
                              {"avg_bars_winners", report.AvgBarsWinners},
                              {"avg_bars_losers", report.AvgBarsLosers},
                              {"long", side(report.Long)},
                              {"short", side(report.Short)}};
  }
  if (report.HasDetail) {
    nlohmann::json years = nlohmann::json::array();
    for (const PeriodResult& period : report.Years) {
      years.push_back(
          {{"period", period.Period}, {"net_profit", period.NetProfit}, {"return", period.Return}});
    }
    json["detail"] = {{"margin_use", report.MarginUse},
                      {"max_margin_used", report.MaxMarginUsed},
                      {"max_lots_held", report.MaxLotsHeld},
                      {"years", years}};
  }
  return json;
}

}  // namespace

std::string LocalDateTime(int64_t millis) {
  CsvWriter::Clock clock;
  return clock(millis);
}

std::vector<StatRow> StatRows(const RunFigures& f) {
  using Unit = StatUnit;
  const auto one = [](const char* key, const char* label, double value, Unit unit) {
    return StatRow{key, label, value, kNoSide, kNoSide, false, unit};
  };
  const auto sides = [&f](const char* key, const char* label, double TradeSide::*member,
                          Unit unit) {
    return StatRow{key, label, f.All.*member, f.Long.*member, f.Short.*member, true, unit};
  };
  const auto counts = [&f](const char* key, const char* label, int32_t TradeSide::*member) {
    return StatRow{key,
                   label,
                   static_cast<double>(f.All.*member),
                   static_cast<double>(f.Long.*member),
                   static_cast<double>(f.Short.*member),
                   true,
                   Unit::kCount};
  };
  return {
      one("initial_capital", "Initial capital", f.InitCapital, Unit::kMoney),
      one("final_equity", "Final equity", f.FinalEquity, Unit::kMoney),
      sides("net_profit", "Net profit", &TradeSide::NetProfit, Unit::kMoney),
      sides("gross_profit", "Gross profit", &TradeSide::GrossProfit, Unit::kMoney),
      sides("gross_loss", "Gross loss", &TradeSide::GrossLoss, Unit::kMoney),
      sides("profit_factor", "Profit factor", &TradeSide::ProfitFactor, Unit::kRatio),
      one("total_return", "Total return", f.TotalReturn, Unit::kPercent),
      one("cagr", "CAGR", f.Cagr, Unit::kPercent),
      one("volatility", "Volatility (annual)", f.Volatility, Unit::kPercent),
      one("sharpe", "Sharpe ratio (annual)", f.Sharpe, Unit::kRatio),
      one("sortino", "Sortino ratio (annual)", f.Sortino, Unit::kRatio),
      one("calmar", "Calmar ratio", f.Calmar, Unit::kRatio),
      one("max_drawdown", "Max drawdown", f.MaxDrawdown, Unit::kMoney),
      one("max_drawdown_pct", "Max drawdown %", f.MaxDrawdownPct, Unit::kPercent),
      one("average_drawdown_pct", "Average drawdown %", f.AverageDrawdownPct, Unit::kPercent),
      one("max_drawdown_bars", "Longest drawdown (bars)", f.MaxDrawdownBars, Unit::kCount),
      one("max_drawdown_days", "Longest drawdown (days)", f.MaxDrawdownDays, Unit::kDays),
      one("average_drawdown_bars", "Average drawdown (bars)", f.AverageDrawdownBars, Unit::kBars),
      one("recovery_factor", "Recovery factor", f.RecoveryFactor, Unit::kRatio),
      one("exposure", "Exposure (time in market)", f.Exposure, Unit::kPercent),
      counts("trades", "Trades", &TradeSide::Trades),
      counts("winners", "Winners", &TradeSide::Winners),
      counts("losers", "Losers", &TradeSide::Losers),
      sides("win_rate", "Win rate", &TradeSide::WinRate, Unit::kPercent),
      sides("average_trade", "Expectancy (average trade)", &TradeSide::AverageTrade, Unit::kMoney),
      sides("average_win", "Average win", &TradeSide::AverageWin, Unit::kMoney),
      sides("average_loss", "Average loss", &TradeSide::AverageLoss, Unit::kMoney),
      sides("best_trade", "Best trade", &TradeSide::BestTrade, Unit::kMoney),
      sides("worst_trade", "Worst trade", &TradeSide::WorstTrade, Unit::kMoney),
      sides("sqn", "SQN", &TradeSide::Sqn, Unit::kRatio),
      sides("average_bars", "Average trade (bars)", &TradeSide::AverageBars, Unit::kBars),
      sides("average_days", "Average trade (days)", &TradeSide::AverageDays, Unit::kDays),
      sides("average_mae", "Average adverse excursion", &TradeSide::AverageMae, Unit::kMoney),
      sides("average_mfe", "Average favourable excursion", &TradeSide::AverageMfe, Unit::kMoney),
      sides("worst_mae", "Worst adverse excursion", &TradeSide::WorstMae, Unit::kMoney),
      sides("best_mfe", "Best favourable excursion", &TradeSide::BestMfe, Unit::kMoney),
      counts("max_win_streak", "Most winners in a row", &TradeSide::MaxWinStreak),
      counts("max_loss_streak", "Most losers in a row", &TradeSide::MaxLossStreak),
  };
}

std::string FormatStat(const StatRow& row, double value) {
  if (std::isnan(value)) return "";
  switch (row.Unit) {
    case StatUnit::kMoney:
      return Grouped(value, 2);
    case StatUnit::kPercent:
      return Grouped(value * 100.0, 2) + "%";
    case StatUnit::kCount:
      return Grouped(value, 0);
    case StatUnit::kRatio:
    case StatUnit::kBars:
    case StatUnit::kDays:
      return Grouped(value, 2);
  }
  return "";
}

void PrintReport(std::ostream& out, const RunHeading& heading, const RunFigures& figures) {
  out << "formula   " << heading.Formula;
  for (const auto& [name, value] : heading.Params) out << ' ' << name << '=' << value;
  out << '\n';
  for (size_t i = 0; i < heading.Files.size(); ++i) {
    out << "data " << i << "    " << heading.Files[i] << " (" << heading.Symbols[i] << ")\n";
  }
  out << "bars      " << figures.Bars;
  if (figures.Bars > 0) {
    out << ", " << LocalDateTime(figures.FirstTime) << " to " << LocalDateTime(figures.LastTime);
  }
  out << "\n\n";
  out << std::left << std::setw(30) << "" << std::right << std::setw(18) << "All" << std::setw(18)
      << "Long" << std::setw(18) << "Short" << '\n';
  for (const StatRow& row : StatRows(figures)) {
    out << std::left << std::setw(30) << row.Label << std::right << std::setw(18)
        << FormatStat(row, row.All) << std::setw(18) << FormatStat(row, row.Long) << std::setw(18)
        << FormatStat(row, row.Short) << '\n';
  }
  if (!figures.YearReturns.empty()) {
    out << "\nYear      Return         Net profit\n";
    for (const PeriodReturn& year : figures.YearReturns) {
      out << std::left << std::setw(10) << year.Year << std::right << std::setw(7)
          << Grouped(year.Return * 100.0, 2) << '%' << std::setw(19) << Grouped(year.NetProfit, 2)
          << '\n';
    }
  }
}

void WriteReportJson(std::ostream& out, const RunHeading& heading, const RunFigures& figures,
                     const PerformanceReport& report) {
  nlohmann::json json;
  json["formula"] = heading.Formula;
  json["params"] = nlohmann::json::object();
  for (const auto& [name, value] : heading.Params) json["params"][name] = value;
  json["data"] = nlohmann::json::array();
  for (size_t i = 0; i < heading.Files.size(); ++i) {
    json["data"].push_back({{"file", heading.Files[i]}, {"symbol", heading.Symbols[i]}});
  }
  json["output_mode"] = heading.OutputMode;
  json["bars"] = figures.Bars;
  json["first_bar"] = figures.Bars > 0 ? LocalDateTime(figures.FirstTime) : "";
  json["last_bar"] = figures.Bars > 0 ? LocalDateTime(figures.LastTime) : "";
  json["years"] = figures.Years;
  json["bars_per_year"] = figures.BarsPerYear;
  nlohmann::json& stats = json["figures"];
  for (const StatRow& row : StatRows(figures)) {
    stats[row.Key] = row.All;
    if (row.HasSides) {
      stats["long"][row.Key] = row.Long;
      stats["short"][row.Key] = row.Short;
    }
  }
  json["all"] = SideJson(figures.All);
  json["long"] = SideJson(figures.Long);
  json["short"] = SideJson(figures.Short);
  nlohmann::json months = nlohmann::json::array();
  for (const PeriodReturn& month : figures.Months) {
    months.push_back({{"year", month.Year},
                      {"month", month.Month},
                      {"return", month.Return},
                      {"net_profit", month.NetProfit}});
  }
  json["monthly"] = months;
  nlohmann::json years = nlohmann::json::array();
  for (const PeriodReturn& year : figures.YearReturns) {
    years.push_back({{"year", year.Year}, {"return", year.Return}, {"net_profit", year.NetProfit}});
  }
  json["yearly"] = years;
  json["library_report"] = LibraryReportJson(report);
  out << json.dump(2) << '\n';
}

void WriteEquityCsv(std::ostream& out, const StrategyAccount& account, double initCapital) {
  CsvWriter csv(out);
  csv.Text("bar,time,equity,capital,drawdown,long_lots,short_lots,margin,bar_cost");
  csv.EndRow();
  double peak = initCapital;
  // Capital, lots and costs change only with the orders: most rows repeat their text.
  CsvWriter::RepeatedNumber capital;
  CsvWriter::RepeatedNumber drawdown;
  CsvWriter::RepeatedNumber longLots;
  CsvWriter::RepeatedNumber shortLots;
  CsvWriter::RepeatedNumber margin;
  CsvWriter::RepeatedNumber barCost;
  for (const EquityPoint& point : account.EquityCurve) {
    peak = std::max(peak, point.Equity);
    csv.Int(point.Bar).Comma().Time(point.Time).Comma().Number(point.Equity).Comma();
    csv.Number(point.Capital, capital).Comma().Number(point.Equity - peak, drawdown).Comma();
    csv.Number(point.LongLots, longLots).Comma().Number(point.ShortLots, shortLots).Comma();
    csv.Number(point.LongMargin + point.ShortMargin, margin).Comma();
    csv.Number(point.BarCost, barCost);
    csv.EndRow();
  }
}

void WriteTradesCsv(std::ostream& out, const StrategyAccount& account, const RunFigures& figures,
                    const std::vector<QXDataSource>& sources) {
  CsvWriter csv(out);
  csv.Text(
      "data,symbol,side,entry_bar,entry_time,entry_price,exit_bar,exit_time,exit_price,exit_kind,"
      "lots,entry_cost,exit_cost,gross_profit,net_profit,return,mae,mfe");
  csv.EndRow();
  for (size_t i = 0; i < account.Trades.size(); ++i) {
    const TradeRecord& trade = account.Trades[i];
    const TradeFigures& extra = figures.Trades[i];
    const size_t index = static_cast<size_t>(trade.DataIndex);
    csv.Int(trade.DataIndex).Comma().Text(index < sources.size() ? sources[index].Symbol : "");
    csv.Comma().Text((trade.EntryKind & 0xFF) == kBuy ? "long" : "short").Comma();
    csv.Int(trade.EntryBar).Comma().Time(extra.EntryTime).Comma().Number(trade.EntryPrice).Comma();
    csv.Int(trade.ExitBar).Comma().Time(extra.ExitTime).Comma().Number(trade.ExitPrice).Comma();
    csv.Text(KindName(trade.ExitKind))
        .Text(trade.ExitKind & kOriginSettlement ? " (end of run)" : "");
    csv.Comma().Number(trade.Lots).Comma().Number(trade.EntryCost).Comma().Number(trade.ExitCost);
    csv.Comma().Number(trade.GrossProfit).Comma().Number(trade.NetProfit).Comma();
    csv.Number(trade.Return).Comma().Number(extra.MaxAdverse).Comma().Number(extra.MaxFavourable);
    csv.EndRow();
  }
}

void WriteOrdersCsv(std::ostream& out, const CQXBaseData& data) {
  std::vector<const OrderRecord*> orders;
  for (const StrategyLedger& ledger : data.Ledgers) {
    for (const OrderRecord& order : ledger.Orders) orders.push_back(&order);
  }
  const std::vector<QXDataSource>& sources = *data.DataSources;
  const auto timeOf = [&sources](const OrderRecord& order) -> int64_t {
    const std::vector<QXBar>& bars = sources[static_cast<size_t>(order.DataIndex)].Bars;
    return bars[static_cast<size_t>(order.Bar)].Time;
  };
  std::stable_sort(orders.begin(), orders.end(), [&](const OrderRecord* a, const OrderRecord* b) {
    return timeOf(*a) < timeOf(*b);
  });
  CsvWriter csv(out);
  csv.Text("data,symbol,bar,time,kind,origin,lots,price,cost");
  csv.EndRow();
  for (const OrderRecord* order : orders) {
    csv.Int(order->DataIndex).Comma().Text(sources[static_cast<size_t>(order->DataIndex)].Symbol);
    csv.Comma().Int(order->Bar).Comma().Time(timeOf(*order)).Comma().Text(KindName(order->Kind));
    csv.Comma().Text(OriginName(order->Kind)).Comma().Number(order->Lots).Comma();
    csv.Number(order->Price).Comma().Number(order->Cost);
    csv.EndRow();
  }
}

void WritePlotsCsv(std::ostream& out, const CQXBaseData& data) {
  CsvWriter csv(out);
  csv.Text("bar,time");
  for (const PlotSeries& series : data.Plots) {
    std::string name = series.name;
    // A name with a comma or a quote is quoted.
    if (name.find_first_of(",\"\n") != std::string::npos) {
      std::string quoted = "\"";
      for (char c : name) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
      name = quoted + "\"";
    }
    csv.Comma().Text(name);
  }
  csv.EndRow();
  if (data.Plots.empty()) return;
  const std::vector<QXBar>& bars = (*data.DataSources)[0].Bars;
  for (size_t bar = 0; bar < bars.size(); ++bar) {
    csv.Int(static_cast<int64_t>(bar)).Comma().Time(bars[bar].Time);
    for (const PlotSeries& series : data.Plots) {
      csv.Comma();
      if (bar < series.Size() && series.NumericSet(bar)) {
        csv.Number(series.NumericValue(bar));
      }
    }
    csv.EndRow();
  }
}

}  // namespace qxrun
