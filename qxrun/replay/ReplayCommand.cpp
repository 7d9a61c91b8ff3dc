#include "qxrun/replay/ReplayCommand.h"

#include "sysfuncs/sysfuncs.h"

#include "qxrun/Cli.h"
#include "qxrun/InputError.h"
#include "qxrun/broker/BrokerAdapter.h"
#include "qxrun/broker/BrokerStore.h"
#include "qxrun/broker/OrderDesk.h"
#include "qxrun/data/DateParsing.h"
#include "qxrun/data/LocalDays.h"
#include "qxrun/host/FileAdapter.h"
#include "qxrun/host/HostRun.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"
#include "qxrun/replay/ReplayLoop.h"
#include "qxrun/report/BrokerTables.h"
#include "qxrun/report/RunFiles.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <sstream>

namespace qxrun {
namespace {

// The broker as the replay's market: each tick goes to the broker (fills, and the session moves
// on in the same event) before the formula sees it.
class BrokerMarket : public ReplayMarket {
 public:
  BrokerMarket(PaperBroker& broker, OrderDesk& desk, std::string session, uint32_t market,
               std::string code)
      : broker_(broker),
        desk_(desk),
        session_(std::move(session)),
        market_(market),
        code_(std::move(code)) {}

  int64_t ResumeAfter() override { return broker_.SessionSequence(session_); }
  void OnTick(int64_t sequence, const Tick& tick, const Quill::ITickDeepLevel& quote,
              int32_t tradingDay) override {
    const Quill::DepthLevel& level = quote.DepthLevels[0];
    broker_.OnTick(session_, sequence, market_, code_, tick.Time, tick.Price, tick.Volume,
                   level.BidPrice, level.AskPrice, tradingDay);
    desk_.SetSequence(sequence);
  }
  void OnEnd(int64_t lastSequence) override {
    if (broker_.SessionSequence(session_) < lastSequence) {
      broker_.MarkSession(session_, lastSequence);
    }
  }

 private:
  PaperBroker& broker_;
  OrderDesk& desk_;
  std::string session_;
  uint32_t market_;
  std::string code_;
};

// The first bar formed from ticks.
size_t StartBar(const ReplayOptions& options, const std::vector<QXBar>& bars) {
  if (!options.From.empty() && options.Last) {
    throw InputError("--from and --last: give one of them");
  }
  if (options.Last) {
    if (*options.Last < 1) throw InputError("--last: must be at least 1");
    const auto last = static_cast<size_t>(*options.Last);
    return bars.size() > last ? bars.size() - last : 0;
  }
  if (options.From.empty()) {
    // The bars of the last trading day.
    const int32_t day = TradingDayOf(bars.back().Time);
    size_t start = bars.size() - 1;
    while (start > 0 && TradingDayOf(bars[start - 1].Time) == day) --start;
    return start;
  }
  std::string error;
  const auto dateFormat = DateTimeFormat::Compile("%Y-%m-%d", DateTimeFormat::Kind::kDate, &error);
  CivilDate date;
  const std::optional<size_t> read = dateFormat->ReadDate(options.From, &date);
  int32_t millisOfDay = 0;
  bool good = read.has_value();
  if (good && *read < options.From.size()) {
    const std::string_view rest = std::string_view(options.From).substr(*read + 1);
    const auto timeFormat = DateTimeFormat::Compile(rest.size() > 5 ? "%H:%M:%S" : "%H:%M",
                                                    DateTimeFormat::Kind::kTime, &error);
    const std::optional<size_t> timeRead = timeFormat->ReadTime(rest, &millisOfDay);
    good = options.From[*read] == ' ' && timeRead && *timeRead == rest.size();
  }
  if (!good) {
    throw InputError("--from: '" + options.From + "' is not YYYY-MM-DD[ HH:MM[:SS]]");
  }
  LocalDays days;
  const int64_t from = days.Instant(date, millisOfDay);
  for (size_t bar = 0; bar < bars.size(); ++bar) {
    if (bars[bar].Time >= from) return bar;
  }
  throw InputError("--from: " + options.From + " is after the last bar (" +
                   LocalTimeText(bars.back().Time) + ")");
}

// Names the replay, so that the same command started again goes on with the same session.
std::string SessionBase(const ReplayOptions& options, const RunInputs& inputs, int64_t startTime) {
  std::ostringstream key;
  for (const SymbolSettings& symbol : inputs.Settings.Symbols) {
    key << std::filesystem::absolute(symbol.File).string() << '|';
  }
  key << inputs.Info->Name << '|';
  for (const auto& [name, value] : inputs.Params) key << name << '=' << value << '|';
  key << startTime << '|'
      << (options.Ticks.empty() ? "" : std::filesystem::absolute(options.Ticks).string()) << '|'
      << options.Path << '|' << options.Spread << '|' << options.Account << '|'
      << inputs.Settings.Strategy.InitCapital;
  char hex[17];
  std::snprintf(hex, sizeof(hex), "%016zx", std::hash<std::string>{}(key.str()));
  return std::string(hex);
}

// Opens the account when it is new; otherwise a session that begins (not one that goes on) pays
// in --deposit and takes out --withdraw, once. Nothing is stored when the withdrawal is refused.
void OpenOrTransfer(PaperBroker& broker, const ReplayOptions& options, double initCapital,
                    const std::string& session) {
  const bool opens = !broker.HasAccount(options.Account);
  const double deposit = options.Deposit.value_or(opens ? initCapital : 0.0);
  const double withdrawal = options.Withdraw.value_or(0.0);
  if (!opens && broker.HasSession(session)) return;
  const double free = opens ? deposit : broker.FreeMoney(options.Account) + deposit;
  if (withdrawal > free) {
    char amounts[700];  // room for two of the largest doubles in full
    std::snprintf(amounts, sizeof(amounts), "%.2f is more than the %.2f", withdrawal, free);
    throw InputError("--withdraw: " + std::string(amounts) + " account '" + options.Account +
                     "' has free");
  }
  if (opens) {
    broker.OpenAccount(options.Account, deposit);
    if (withdrawal > 0.0) broker.Transfer(options.Account, 0.0, withdrawal, session);
  } else if (deposit > 0.0 || withdrawal > 0.0) {
    broker.Transfer(options.Account, deposit, withdrawal, session);
  }
}

}  // namespace

int ReplayCommand(const ReplayOptions& options, std::ostream& out, std::ostream& err,
                  ReplayTimes* times) {
  (void)err;
  if (options.Path != "nearer" && options.Path != "ohlc") {
    throw InputError("--path: '" + options.Path + "' is neither nearer nor ohlc");
  }
  if (options.Confirm != "auto" && options.Confirm != "ask") {
    throw InputError("--confirm: '" + options.Confirm + "' is neither auto nor ask");
  }
  if (options.Speed && !(*options.Speed > 0.0)) throw InputError("--speed: must be positive");
  if (options.Spread < 0) throw InputError("--spread: must not be negative");
  if (options.Deposit && !(*options.Deposit > 0.0)) throw InputError("--deposit: must be positive");
  if (options.Withdraw && !(*options.Withdraw > 0.0)) {
    throw InputError("--withdraw: must be positive");
  }
  if (options.Account.empty()) throw InputError("--account: must not be empty");

  RunInputs inputs = PrepareRun(options.Run);
  const RunSettings& settings = inputs.Settings;
  const FormulaInfo& info = *inputs.Info;
  std::vector<QXDataSource> sources = LoadSources(settings);
  const size_t start = StartBar(options, sources[0].Bars);
  std::vector<Tick> recorded;
  if (!options.Ticks.empty()) recorded = LoadTickFile(options.Ticks);
  const ReplayPlan plan = MakePlan(
      sources[0].Bars, start, options.Ticks.empty() ? nullptr : &recorded,
      options.Path == "ohlc" ? TickPathKind::kOpenHighLowClose : TickPathKind::kNearerExtremeFirst,
      options.Ticks);

  // The broker and its account.
  const SymbolSettings& main = settings.Symbols[0];
  const std::vector<double> lotValues = LotValues(settings);
  std::vector<BrokerSymbol> symbols;
  for (size_t i = 0; i < settings.Symbols.size(); ++i) {
    const SymbolTerms& terms = settings.Symbols[i].Terms;
    symbols.push_back({terms.Market, terms.Code, lotValues[i],
                       terms.MinMove * static_cast<double>(static_cast<float>(terms.PriceScale)),
                       settings.Symbols[i].Costs});
  }
  const std::filesystem::path storeFile = inputs.UserDir / "broker.sqlite";
  const bool opensAccount = options.Deposit || options.Account == "paper";
  if (!opensAccount && !std::filesystem::exists(storeFile)) {
    throw InputError("--account: unknown account '" + options.Account +
                     "' (there is no broker store yet; open it with --deposit AMOUNT)");
  }
  BrokerStore store(storeFile);
  PaperBroker broker(symbols, &store);
  broker.Load(store.Load());
  if (!broker.HasAccount(options.Account) && !opensAccount) {
    std::string known;
    for (const std::string& name : broker.AccountNames())
      known += (known.empty() ? "" : ", ") + name;
    throw InputError("--account: unknown account '" + options.Account + "' (the store holds: " +
                     (known.empty() ? "none" : known) + "; open it with --deposit AMOUNT)");
  }
  const std::string base =
      SessionBase(options, inputs, plan.Bars[plan.Start < plan.Bars.size() ? plan.Start : 0].Time);
  int generation = 1;
  while (broker.HasSession(base + "/" + std::to_string(generation + 1))) ++generation;
  if (options.Fresh && broker.HasSession(base + "/" + std::to_string(generation))) ++generation;
  const std::string session = base + "/" + std::to_string(generation);
  OpenOrTransfer(broker, options, settings.Strategy.InitCapital, session);
  const int32_t recovered = broker.AcceptPending();

  std::unique_ptr<TerminalConfirmer> terminal;
  if (options.Confirm == "ask") terminal = TerminalConfirmer::OpenTerminal();

  std::optional<OutputFolder>& folder = inputs.Folder;
  if (folder) folder->Make();
  MessageCentre centre(folder ? folder->Path() : std::filesystem::current_path());

  FeedSettings feedSettings;
  feedSettings.Market = main.Terms.Market;
  feedSettings.Code = main.Terms.Code;
  feedSettings.TickSize = symbols[0].TickSize;
  feedSettings.SpreadTicks = options.Spread;
  feedSettings.LotValue = lotValues[0];
  if (const auto given = inputs.Quotes.find(main.Terms.Code); given != inputs.Quotes.end()) {
    feedSettings.Constants.UpperLimit = given->second.UpperLimit;
    feedSettings.Constants.LowerLimit = given->second.LowerLimit;
    feedSettings.Constants.PreSettlePrice = given->second.PreSettlePrice;
    feedSettings.Constants.PreOpenInt = given->second.PreOpenInt;
  }
  QuoteFeed feed(feedSettings);
  BrokerAdapter brokerAdapter(broker, &feed);
  FileAdapter adapter(settings.Symbols, std::move(inputs.Quotes), inputs.UserDir);
  adapter.SetLive(&brokerAdapter);

  std::vector<QXDataSource> live = sources;
  HostInstance instance(live, settings, info.Name);
  instance.Data().BrokerID = std::to_string(kPaperBrokerNo) + "|paper";
  instance.Data().AccountID = options.Account;
  OrderDesk desk(broker, terminal.get(), session);
  BrokerMarket market(broker, desk, session, main.Terms.Market, main.Terms.Code);
  std::optional<SleepingPacer> pacer;
  if (options.Speed) pacer.emplace(*options.Speed);

  const auto replayStart = std::chrono::steady_clock::now();
  ReplayCounts counts;
  {
    const char* user = std::getenv("USER");
    ModuleSession module(
        centre, adapter, inputs.UserDir.string(), user != nullptr ? user : "qxrun",
        [&desk](Quill::ITradeOrder* order, int, int) { return desk.Submit(order); });
    instance.Start(info, inputs.Params);
    counts = RunReplay(plan, live[0].Bars, instance, feed, &market, pacer ? &*pacer : nullptr);
  }
  const double replaySeconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - replayStart).count();
  const Quill::ITickDeepLevel& quote = feed.Snapshot();
  broker.SetQuote(main.Terms.Market, main.Terms.Code, quote.LastPrice, feed.Bid(), feed.Ask(),
                  quote.TimeStamp, feed.TradingDay());

  std::vector<BrokerOrder> sessionOrders;
  for (const BrokerOrder& order : broker.AllOrders()) {
    if (order.Session == session) sessionOrders.push_back(order);
  }
  std::vector<BrokerFill> sessionFills;
  for (const BrokerFill& fill : broker.AllFills()) {
    const BrokerOrder& order = broker.AllOrders()[static_cast<size_t>(fill.OrderId - 1)];
    if (order.Session == session) sessionFills.push_back(fill);
  }

  const RunFigures figures = ComputeRunFigures(settings, live, instance.Account());
  const RunHeading heading = MakeHeading(info, inputs.Params, settings, live);
  if (!options.Run.Quiet) {
    PrintReport(out, heading, figures);
    out << "\nreplay: " << counts.Ticks << " ticks from bar " << plan.Start << " ("
        << counts.SkippedTicks << " taken in by an earlier run), " << counts.Evaluations
        << " evaluations of the newest bar\n";
    if (recovered > 0)
      out << "recovered " << recovered << " orders left sending by an earlier run\n";
    const std::optional<Quill::ITradeAcctSummary> summary = broker.Summary(options.Account);
    const Quill::ITradePosition position =
        broker.Position(options.Account, main.Terms.Market, main.Terms.Code);
    out << "paper account " << options.Account << ": " << sessionOrders.size() << " live orders, "
        << sessionFills.size() << " fills, " << desk.Refused() << " refused; long "
        << position.BuyPosition << ", short " << position.SellPosition << ", equity "
        << (summary ? summary->CurrentEquity : 0.0) << '\n';
  }
  if (folder) {
    std::vector<LiveOrderMarker> markers;
    for (const BrokerOrder& order : sessionOrders) {
      if (order.Status == kRejected) continue;
      markers.push_back({order.Time, order.BuyOrSell == 1, order.Price,
                         static_cast<double>(order.Lots),
                         std::string("live ") + (order.BuyOrSell == 1 ? "buy " : "sell ") +
                             std::to_string(order.Lots) + " " + order.ContractNo});
    }
    WriteRunFiles(*folder, heading, figures, instance.Data(), live, settings.Strategy.InitCapital,
                  options.Run.Page, markers);
    folder->Write("broker-orders.csv",
                  [&](std::ostream& file) { WriteBrokerOrdersCsv(file, sessionOrders); });
    folder->Write("fills.csv", [&](std::ostream& file) {
      WriteFillsCsv(file, sessionFills, broker.AllOrders());
    });
    if (!options.Run.Quiet) {
      out << "\nwrote " << folder->Written().size() << " files to " << folder->Path().string()
          << '\n';
    }
  }
  if (times != nullptr) {
    *times = ReplayTimes{replaySeconds, counts.Ticks, counts.Evaluations,
                         static_cast<int64_t>(sessionOrders.size())};
  }
  return 0;
}

Command AddReplayCommand(CLI::App& app) {
  auto options = std::make_shared<ReplayOptions>();
  Command command;
  command.App = app.add_subcommand(
      "replay",
      "a live session on recorded bars: the newest bar evaluated on every tick, live "
      "orders to a paper broker");
  CLI::App& sub = *command.App;
  AddRunOptions(sub, options->Run);
  sub.add_option("--from", options->From,
                 "first bar formed from ticks: YYYY-MM-DD[ HH:MM[:SS]] (default: the last "
                 "trading day)");
  sub.add_option("--last", options->Last, "form the last N bars from ticks");
  sub.add_option("--ticks", options->Ticks, "tick file: date,time,price,volume per line");
  sub.add_option("--path", options->Path,
                 "ticks made from a bar: nearer (open, nearer extreme, other, close) or ohlc");
  sub.add_option("--speed", options->Speed, "pace the ticks at X times real time");
  sub.add_flag(
      "--as-fast-as-possible", [options](int64_t) { options->Speed.reset(); },
      "no pacing (the default)");
  sub.add_option("--confirm", options->Confirm, "live orders: auto, or ask on the terminal");
  sub.add_option("--account", options->Account, "paper account to trade (default paper)");
  sub.add_option("--deposit", options->Deposit,
                 "open the account with this money if it is new, else pay it in as a session "
                 "begins");
  sub.add_option("--withdraw", options->Withdraw,
                 "take this money out of the account as a session begins");
  sub.add_option("--spread", options->Spread, "ask - bid in ticks (default 1)");
  sub.add_flag("--fresh", options->Fresh, "start a new session instead of going on with the last");
  command.Run = [options](std::ostream& out, std::ostream& err) {
    return ReplayCommand(*options, out, err);
  };
  return command;
}

}  // namespace qxrun
