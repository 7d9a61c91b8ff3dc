#include "EngineInvariants.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace sysfuncs::fuzz {
namespace {

[[noreturn]] void Broken(const char* rule, const std::string& detail) {
  std::fprintf(stderr, "fuzz_engine: broken rule: %s (%s)\n", rule, detail.c_str());
  std::abort();
}

// Where a rule was checked; formatted only when it is broken, since checks run millions of times.
struct Detail {
  size_t series = 0;
  const char* what = "";
  double value = 0.0;
};

Detail Where(size_t series, const char* what, double value) { return {series, what, value}; }

void Require(bool holds, const char* rule, const Detail& detail = {}) {
  if (holds) return;
  char text[160];
  std::snprintf(text, sizeof text, "series %zu, %s = %.17g", detail.series, detail.what,
                detail.value);
  Broken(rule, text);
}

bool Near(double a, double b, double absolute) {
  return std::fabs(a - b) <= absolute + 1e-9 * std::max(std::fabs(a), std::fabs(b));
}

double SignedContracts(const StrategyLedger& ledger) {
  double sum = 0.0;
  for (const EntryLot& entry : ledger.OpenEntries) {
    sum += (entry.Kind & 0xFF) == kSellShort ? -entry.Lots : entry.Lots;
  }
  return sum;
}

void RequireFinite(double value, size_t series, const char* what) {
  Require(std::isfinite(value), "no statistic becomes NaN or infinite from finite bars",
          Where(series, what, value));
}

}  // namespace

void CheckSeriesStatistics(CSystemFuncs& funcs, size_t series) {
  const struct {
    const char* name;
    double (CSystemFuncs::*read)();
  } reads[] = {
      {"CurrentContracts", &CSystemFuncs::CurrentContracts},
      {"EntryTime", &CSystemFuncs::EntryTime},
      {"EntryPrice", &CSystemFuncs::EntryPrice},
      {"LastEntryTime", &CSystemFuncs::LastEntryTime},
      {"LastEntryPrice", &CSystemFuncs::LastEntryPrice},
      {"ExitTime", &CSystemFuncs::ExitTime},
      {"ExitPrice", &CSystemFuncs::ExitPrice},
      {"AvgEntryPrice", &CSystemFuncs::AvgEntryPrice},
      {"ContractProfit", &CSystemFuncs::ContractProfit},
      {"PositionProfit", &CSystemFuncs::PositionProfit},
      {"MaxPositionProfit", &CSystemFuncs::MaxPositionProfit},
      {"MaxPositionLoss", &CSystemFuncs::MaxPositionLoss},
      {"MaxContracts", &CSystemFuncs::MaxContracts},
      {"MaxContractsHeld", &CSystemFuncs::MaxContractsHeld},
      {"PercentProfit", &CSystemFuncs::PercentProfit},
      {"LargestWinTrade", &CSystemFuncs::LargestWinTrade},
      {"LargestLosTrade", &CSystemFuncs::LargestLosTrade},
      {"GrossProfit", &CSystemFuncs::GrossProfit},
      {"GrossLoss", &CSystemFuncs::GrossLoss},
      {"NetProfit", &CSystemFuncs::NetProfit},
  };
  for (const auto& read : reads) RequireFinite((funcs.*read.read)(), series, read.name);
}

void CheckPortfolioStatistics(CSystemFuncs& funcs) {
  const struct {
    const char* name;
    double (CSystemFuncs::*read)();
  } reads[] = {
      {"Portfolio_InitCapital", &CSystemFuncs::Portfolio_InitCapital},
      {"Portfolio_CurrentCapital", &CSystemFuncs::Portfolio_CurrentCapital},
      {"Portfolio_UsedMargin", &CSystemFuncs::Portfolio_UsedMargin},
      {"Portfolio_PositionProfit", &CSystemFuncs::Portfolio_PositionProfit},
      {"Portfolio_CurrentEquity", &CSystemFuncs::Portfolio_CurrentEquity},
      {"Portfolio_TotalProfit", &CSystemFuncs::Portfolio_TotalProfit},
      {"Portfolio_GrossProfit", &CSystemFuncs::Portfolio_GrossProfit},
      {"Portfolio_GrossLoss", &CSystemFuncs::Portfolio_GrossLoss},
      {"Portfolio_NetProfit", &CSystemFuncs::Portfolio_NetProfit},
      {"Portfolio_PercentProfit", &CSystemFuncs::Portfolio_PercentProfit},
      {"Portfolio_MaxDrawDown", &CSystemFuncs::Portfolio_MaxDrawDown},
      {"Portfolio_MaxDrawDownRatio", &CSystemFuncs::Portfolio_MaxDrawDownRatio},
  };
  for (const auto& read : reads) RequireFinite((funcs.*read.read)(), 0, read.name);
}

namespace {

void CheckEquityCurve(const StrategyAccount& account, int32_t bar) {
  // The curve holds one point per bar checked out, in bar order.
  Require(account.EquityCurve.size() == static_cast<size_t>(bar) + 1,
          "equity points number the bars checked out",
          Where(0, "points", static_cast<double>(account.EquityCurve.size())));
  for (size_t i = 0; i < account.EquityCurve.size(); ++i) {
    const EquityPoint& point = account.EquityCurve[i];
    Require(point.Bar == static_cast<int32_t>(i), "equity point i is bar i",
            Where(i, "Bar", point.Bar));
    for (double value :
         {point.LongMargin, point.ShortMargin, point.LongLots, point.ShortLots, point.Available,
          point.Equity, point.PercentEquity, point.OpenReturn, point.BarCost, point.Capital}) {
      RequireFinite(value, i, "an equity point's value");
    }
  }
}

void CheckReport(const PerformanceReport& report) {
  for (double value : {report.FinalEquity,      report.NetProfit,
                       report.GrossProfit,      report.GrossLoss,
                       report.ProfitFactor,     report.MaxDrawDown,
                       report.MaxDrawDownRatio, report.ReturnOnInitialCapital,
                       report.AnnualReturn,     report.SharpeRatio,
                       report.TimeInMarket,     report.PercentProfitable,
                       report.AvgTrade,         report.AvgWin,
                       report.AvgLoss,          report.WinLossRatio,
                       report.LargestWin,       report.LargestLoss,
                       report.AvgBarsWinners,   report.AvgBarsLosers,
                       report.MarginUse,        report.MaxMarginUsed,
                       report.MaxLotsHeld}) {
    RequireFinite(value, 0, "a figure of the report");
  }
  for (const auto* periods : {&report.Years, &report.Months}) {
    for (const PeriodResult& period : *periods) {
      RequireFinite(period.NetProfit, 0, "a period's net profit");
      RequireFinite(period.Return, 0, "a period's return");
    }
  }
}

// An order of a bar before the last executed at a price on the tick grid inside the bar's range:
// limits are clamped into [Low, High] (the Close on single-price series) and market orders take
// the Close. The one exception is a limit order on a bar without trading, which executes at 0.
void CheckHistoricalPrices(const CQXBaseData& data, const RunFacts& facts) {
  for (size_t series = 0; series < data.Ledgers.size(); ++series) {
    const std::vector<QXBar>& bars = (*data.DataSources)[series].Bars;
    const double tick = facts.TickSizes[series];
    for (const OrderRecord& order : data.Ledgers[series].Orders) {
      if (order.Bar >= facts.BarCount - 1) continue;
      const QXBar& bar = bars.at(static_cast<size_t>(order.Bar));
      const bool noTrade = bar.Vol < 0.0001 && std::fabs(bar.High - bar.Low) < 0.0001;
      if (noTrade && order.Price == 0.0) continue;
      const double steps = order.Price / tick;
      const bool inRange =
          order.Price >= bar.Low - 1e-9 * bar.Low && order.Price <= bar.High + 1e-9 * bar.High;
      const bool onTick =
          std::fabs(steps - std::round(steps)) <= 1e-6 * std::max(1.0, std::fabs(steps));
      if (inRange && onTick) continue;
      char detail[200];
      std::snprintf(detail, sizeof detail,
                    "series %zu, bar %d, kind %u: price %.17g, L %.17g H %.17g", series, order.Bar,
                    order.Kind, order.Price, bar.Low, bar.High);
      Broken(inRange ? "executed prices of historical bars lie on the tick"
                     : "executed prices of historical bars lie inside the bar's range",
             detail);
    }
  }
}

}  // namespace

OrderMark MarkOrders(const CQXBaseData& data) {
  OrderMark mark;
  for (const StrategyLedger& ledger : data.Ledgers) {
    mark.OrderCounts.push_back(ledger.Orders.size());
    mark.Contracts.push_back(SignedContracts(ledger));
  }
  return mark;
}

void CheckNewOrders(const CQXBaseData& data, const OrderMark& mark) {
  for (size_t series = 0; series < data.Ledgers.size(); ++series) {
    const StrategyLedger& ledger = data.Ledgers[series];
    // A reset or a roll-back empties the order list; there is nothing new to replay then.
    if (ledger.Orders.size() < mark.OrderCounts[series]) continue;
    double position = mark.Contracts[series];
    for (size_t i = mark.OrderCounts[series]; i < ledger.Orders.size(); ++i) {
      const OrderRecord& order = ledger.Orders[i];
      const Detail where = Where(series, "lots", order.Lots);
      Require(order.Lots >= 1.0 && order.Lots == std::trunc(order.Lots),
              "an order is for whole lots, at least one", where);
      switch (order.Kind & 0xFF) {
        case kBuy:
          Require(position >= 0.0, "an entry adds to its own side", where);
          position += order.Lots;
          break;
        case kSellShort:
          Require(position <= 0.0, "an entry adds to its own side", where);
          position -= order.Lots;
          break;
        case kSell:
          Require(position > 0.0 && order.Lots <= position + 1e-9,
                  "an exit never closes more than is held", where);
          position -= order.Lots;
          break;
        case kBuyToCover:
          Require(position < 0.0 && order.Lots <= -position + 1e-9,
                  "an exit never closes more than is held", where);
          position += order.Lots;
          break;
        default:
          Require(false, "an order's kind byte is 1 to 4", where);
      }
    }
    Require(Near(position, SignedContracts(ledger), 1e-9),
            "the orders lead from the position before to the position after",
            Where(series, "replayed position", position));
  }
}

void CheckPositions(const CQXBaseData& data) {
  for (size_t series = 0; series < data.Ledgers.size(); ++series) {
    const StrategyLedger& ledger = data.Ledgers[series];
    for (const EntryLot& entry : ledger.OpenEntries) {
      // Open lots are never negative: an entry holds at least one whole lot.
      Require(entry.Lots >= 1.0 && std::isfinite(entry.Price),
              "open lots are never negative; an open entry holds at least one lot",
              Where(series, "lots", entry.Lots));
      // A position is all long or all short.
      Require((entry.Kind & 0xFF) == (ledger.OpenEntries.front().Kind & 0xFF) &&
                  ((entry.Kind & 0xFF) == kBuy || (entry.Kind & 0xFF) == kSellShort),
              "a position's entries are all Buy or all SellShort",
              Where(series, "kind", entry.Kind));
    }
    // The position's sign agrees with its open lots.
    const double contracts = SignedContracts(ledger);
    const int32_t sign = contracts > 0.0 ? 1 : contracts < 0.0 ? -1 : 0;
    int32_t position = 0;
    if (!ledger.OpenEntries.empty()) {
      position = (ledger.OpenEntries.front().Kind & 0xFF) == kBuy ? 1 : -1;
    }
    Require(position == sign, "the position's sign agrees with its open lots",
            Where(series, "contracts", contracts));
    // Entries are capped at MaxPositionLots and at MaxOpenEntries (a flat position always
    // takes its first entry).
    Require(std::fabs(contracts) <= std::max(data.MaxPositionLots, 1),
            "a position holds at most MaxPositionLots", Where(series, "contracts", contracts));
    Require(ledger.OpenEntries.size() <= static_cast<size_t>(std::max(data.MaxOpenEntries, 1)),
            "a position holds at most MaxOpenEntries entries",
            Where(series, "entries", static_cast<double>(ledger.OpenEntries.size())));
  }
}

void CheckAfterCheckout(CQXBaseData& data, CSystemFuncs& funcs, int32_t bar,
                        const RunFacts& facts) {
  CheckPositions(data);
  const int32_t current = data.CurrentData;
  const StrategyAccount& account = *data.Account;
  int32_t seriesTrades = 0;
  size_t seriesTradeRecords = 0;
  double seriesNet = 0.0;
  for (size_t series = 0; series < data.Ledgers.size(); ++series) {
    data.CurrentData = static_cast<int32_t>(series);
    CheckSeriesStatistics(funcs, series);
    const double gross = funcs.GrossProfit();
    const double loss = funcs.GrossLoss();
    // Net profit is gross profit plus gross loss; the one never falls below 0, the other never
    // rises above it.
    Require(funcs.NetProfit() == gross + loss && gross >= 0.0 && loss <= 0.0,
            "net profit is gross profit plus gross loss", Where(series, "net", funcs.NetProfit()));
    // Trade counts add up: wins, losses and even trades make the total.
    const int32_t total = funcs.TotalTrades();
    Require(total == funcs.NumWinTrades() + funcs.NumLosTrades() + funcs.NumEvenTrades(),
            "trade counts add up", Where(series, "total", total));
    const StrategyLedger& ledger = data.Ledgers[series];
    if (!facts.StaleRollback) {
      // Every closed trade record counts its whole lots once, and books its net profit (money
      // runs; results within 0.0001 of 0 count as even and book nothing).
      int32_t lots = 0;
      double net = 0.0;
      for (const TradeRecord& trade : ledger.Trades) {
        lots += static_cast<int32_t>(trade.Lots);
        net += trade.NetProfit;
      }
      Require(total == lots, "the trade count is the lots of the trade records",
              Where(series, "total", total));
      if (!data.PercentMode) {
        Require(Near(funcs.NetProfit(), net, 0.0001 * static_cast<double>(ledger.Trades.size())),
                "net profit is the sum of the trades' net profits",
                Where(series, "net", funcs.NetProfit()));
      }
    }
    seriesTrades += total;
    seriesTradeRecords += ledger.Trades.size();
    seriesNet += funcs.NetProfit();
  }
  data.CurrentData = current;

  CheckPortfolioStatistics(funcs);
  Require(
      funcs.Portfolio_NetProfit() == funcs.Portfolio_GrossProfit() + funcs.Portfolio_GrossLoss(),
      "the portfolio's net profit is its gross profit plus its gross loss");
  Require(funcs.Portfolio_TotalTrades() >=
              funcs.Portfolio_NumWinTrades() + funcs.Portfolio_NumLossTrades(),
          "the portfolio's trade counts add up");
  if (!facts.StaleRollback) {
    // The account books every trade of every series, once.
    Require(account.Trades.size() == seriesTradeRecords,
            "the account's trade list is the series' trade lists together",
            Where(0, "account trades", static_cast<double>(account.Trades.size())));
  }
  if (!facts.Reevaluated) {
    // A roll-back restores the series' statistics but not the account's, which keep what every
    // evaluation of the bar booked; without one, the portfolio sums the series.
    Require(funcs.Portfolio_TotalTrades() == seriesTrades,
            "the portfolio's trade count is the series' counts together",
            Where(0, "portfolio trades", funcs.Portfolio_TotalTrades()));
    Require(Near(funcs.Portfolio_NetProfit(), seriesNet, 1e-6),
            "the portfolio's net profit is the series' net profits together",
            Where(0, "portfolio net", funcs.Portfolio_NetProfit()));
  }
  if (!facts.Reevaluated) {
    // Realised capital moves only by the net profit of closed trades.
    double net = 0.0;
    for (const TradeRecord& trade : account.Trades) net += trade.NetProfit;
    Require(Near(account.Capital, data.InitCapital + net, 1e-6),
            "the capital is the initial capital plus the closed trades' net profit",
            Where(0, "capital", account.Capital));
  }
  CheckHistoricalPrices(data, facts);
  CheckEquityCurve(account, bar);
  if (bar == facts.BarCount - 1) CheckReport(account.Report);
}

}  // namespace sysfuncs::fuzz
