#include "qxrun/broker/PaperBroker.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace qxrun {
namespace {

constexpr double kPriceTolerance = 1e-9;

bool IsClose(int32_t entryOrExit) {
  return entryOrExit == 4 || entryOrExit == 5 || entryOrExit == 7;
}

// The records one event touches, copied on first touch; the broker's own stay as they were until
// the journal has kept the change.
template <typename Key, typename Record>
class Touched {
 public:
  explicit Touched(const std::map<Key, Record>& committed) : committed_(committed) {}
  Record& operator()(const Key& key) {
    auto found = copies_.find(key);
    if (found != copies_.end()) return found->second;
    const auto original = committed_.find(key);
    return copies_.emplace(key, original != committed_.end() ? original->second : Record{})
        .first->second;
  }
  void MoveInto(std::vector<Record>& records) {
    for (auto& [key, record] : copies_) records.push_back(std::move(record));
  }

 private:
  const std::map<Key, Record>& committed_;
  std::map<Key, Record> copies_;
};

// Books a fill on the position and the account; returns the profit a close realises.
double BookFill(BrokerPosition& position, BrokerAccount& account, const BrokerFill& fill,
                double lotValue) {
  const auto lots = fill.Lots;
  const bool buy = fill.BuyOrSell == 1;
  double profit = 0.0;
  if (!IsClose(fill.EntryOrExit)) {
    int64_t& held = buy ? position.Long : position.Short;
    double& average = buy ? position.LongAverage : position.ShortAverage;
    average = (average * static_cast<double>(held) + fill.Price * static_cast<double>(lots)) /
              static_cast<double>(held + lots);
    held += lots;
    (buy ? position.LongToday : position.ShortToday) += lots;
  } else {
    // A buy closes the short side, a sell the long side.
    int64_t& held = buy ? position.Short : position.Long;
    int64_t& today = buy ? position.ShortToday : position.LongToday;
    double& average = buy ? position.ShortAverage : position.LongAverage;
    const int64_t earlier = held - today;
    const int64_t fromToday =
        fill.EntryOrExit == 5 ? lots : std::max<int64_t>(0, lots - std::min(lots, earlier));
    profit =
        (buy ? average - fill.Price : fill.Price - average) * static_cast<double>(lots) * lotValue;
    held -= lots;
    today -= fromToday;
    if (held == 0) average = 0.0;
  }
  account.Balance += profit - fill.Commission;
  return profit;
}

}  // namespace

PaperBroker::PaperBroker(std::vector<BrokerSymbol> symbols, BrokerJournal* journal)
    : symbols_(std::move(symbols)), journal_(journal) {}

void PaperBroker::Load(BrokerState state) {
  for (BrokerAccount& account : state.Accounts) {
    accounts_[account.Name] = std::move(account);
  }
  for (BrokerPosition& position : state.Positions) {
    positions_[{position.Account, {position.Market, position.Code}}] = std::move(position);
  }
  orders_ = std::move(state.Orders);
  fills_ = std::move(state.Fills);
  for (const BrokerSession& session : state.Sessions) sessions_[session.Key] = session.Sequence;
  for (const BrokerAccount& account : state.Accounts) day_ = std::max(day_, account.TradingDay);
  for (const auto& [name, account] : accounts_) day_ = std::max(day_, account.TradingDay);
}

void PaperBroker::SetQuote(uint32_t market, const std::string& code, double last, double bid,
                           double ask, int64_t time, int32_t tradingDay) {
  quotes_[{market, code}] = Quote{last, bid, ask};
  now_ = time;
  day_ = std::max(day_, tradingDay);
}

const BrokerSymbol* PaperBroker::SymbolOf(uint32_t market, const std::string& code) const {
  for (const BrokerSymbol& symbol : symbols_) {
    if (symbol.Market == market && symbol.Code == code) return &symbol;
  }
  return nullptr;
}

double PaperBroker::Commission(const BrokerSymbol& symbol, int64_t lots, double price) const {
  const CostSetting& costs = symbol.Costs;
  const auto count = static_cast<double>(lots);
  switch (costs.CommissionKind) {
    case 1:  // ticks per lot
      return symbol.TickSize * costs.CommissionRate * count * symbol.LotValue;
    case 2:  // turnover, in 1/10000
      return symbol.LotValue * count * price * costs.CommissionRate / 10000.0;
    default:  // money per lot
      return costs.CommissionRate * count;
  }
}

double PaperBroker::Equity(const std::string& account) const {
  const auto found = accounts_.find(account);
  if (found == accounts_.end()) return 0.0;
  double equity = found->second.Balance;
  for (const auto& [key, position] : positions_) {
    if (key.first != account) continue;
    const BrokerSymbol* symbol = SymbolOf(position.Market, position.Code);
    const auto quote = quotes_.find(key.second);
    if (symbol == nullptr || quote == quotes_.end()) continue;
    const double last = quote->second.Last;
    equity += ((last - position.LongAverage) * static_cast<double>(position.Long) +
               (position.ShortAverage - last) * static_cast<double>(position.Short)) *
              symbol->LotValue;
  }
  return equity;
}

double PaperBroker::MarginInUse(const std::string& account, bool atAverages) const {
  double margin = 0.0;
  for (const auto& [key, position] : positions_) {
    if (key.first != account) continue;
    const BrokerSymbol* symbol = SymbolOf(position.Market, position.Code);
    if (symbol == nullptr) continue;
    double value = 0.0;  // the lots times their price
    if (atAverages) {
      value = position.LongAverage * static_cast<double>(position.Long) +
              position.ShortAverage * static_cast<double>(position.Short);
    } else {
      const auto quote = quotes_.find(key.second);
      if (quote == quotes_.end()) continue;
      value = static_cast<double>(position.Long + position.Short) * quote->second.Last;
    }
    margin += value * symbol->LotValue * symbol->Costs.MarginRate;
  }
  return margin;
}

double PaperBroker::Frozen(const std::string& account) const {
  double frozen = 0.0;
  for (const BrokerOrder& order : orders_) {
    // An order still being sent freezes nothing yet: the broker has not taken it in.
    if (order.Account != account || !IsWorking(order.Status) || order.Status == kSending ||
        IsClose(order.EntryOrExit)) {
      continue;
    }
    const BrokerSymbol* symbol = SymbolOf(order.Market, order.Code);
    if (symbol == nullptr) continue;
    frozen += static_cast<double>(order.Lots - order.Filled) * order.Price * symbol->LotValue *
              symbol->Costs.MarginRate;
  }
  return frozen;
}

void PaperBroker::Commit(BrokerChange change) {
  if (journal_ != nullptr) journal_->Commit(change);
  for (BrokerAccount& account : change.Accounts) accounts_[account.Name] = std::move(account);
  for (BrokerPosition& position : change.Positions) {
    positions_[{position.Account, {position.Market, position.Code}}] = std::move(position);
  }
  for (BrokerOrder& order : change.Orders) {
    const auto index = static_cast<size_t>(order.Id - 1);
    if (index < orders_.size()) {
      orders_[index] = std::move(order);
    } else {
      orders_.push_back(std::move(order));
    }
  }
  for (BrokerFill& fill : change.Fills) fills_.push_back(std::move(fill));
  if (change.Session) sessions_[change.Session->Key] = change.Session->Sequence;
}

void PaperBroker::OpenAccount(const std::string& name, double deposit) {
  BrokerChange change;
  BrokerAccount& account = change.Accounts.emplace_back();
  account.Name = name;
  account.Balance = deposit;
  account.TodayDeposit = deposit;
  account.TradingDay = day_;
  Commit(std::move(change));
}

void PaperBroker::Transfer(const std::string& name, double deposit, double withdrawal,
                           const std::string& session) {
  BrokerChange change;
  BrokerAccount& account = change.Accounts.emplace_back(accounts_.at(name));
  account.Balance += deposit - withdrawal;
  account.TodayDeposit += deposit;
  account.TodayDrawing += withdrawal;
  change.Session = BrokerSession{session, SessionSequence(session)};
  Commit(std::move(change));
}

double PaperBroker::FreeMoney(const std::string& account) const {
  const auto found = accounts_.find(account);
  if (found == accounts_.end()) return 0.0;
  return found->second.Balance - MarginInUse(account, true) - Frozen(account);
}

int64_t PaperBroker::Submit(const Quill::ITradeOrder& platform, const std::string& session,
                            int64_t sequence) {
  BrokerOrder order;
  order.Id = static_cast<int64_t>(orders_.size()) + 1;
  char number[24];
  std::snprintf(number, sizeof(number), "P%08lld", static_cast<long long>(order.Id));
  order.ContractNo = number;
  order.Session = session;
  order.Sequence = sequence;
  order.Account = platform.AccountID;
  order.Market = static_cast<uint32_t>(platform.CodeID.MarketId);
  order.Code = platform.CodeID.Code;
  order.BuyOrSell = platform.BuyOrSell;
  order.EntryOrExit = platform.EntryOrExit;
  const double lots = std::round(platform.Lot);
  // A fractional lot count is kept as 0 lots, which acceptance rejects.
  order.Lots = std::fabs(platform.Lot - lots) < 1e-6 ? static_cast<int64_t>(lots) : 0;
  order.Price = platform.Price;
  order.Status = kSending;
  order.Time = now_;
  order.TradingDay = day_;
  order.Source = platform.Source;
  order.Comment = platform.Comment;
  BrokerChange change;
  change.Orders.push_back(order);
  Commit(std::move(change));
  return order.Id;
}

std::string PaperBroker::RejectionOf(const BrokerOrder& order) const {
  if (accounts_.count(order.Account) == 0) return "unknown account";
  const BrokerSymbol* symbol = SymbolOf(order.Market, order.Code);
  if (symbol == nullptr) return "unknown symbol";
  if (order.Lots < 1) return "whole lots only";
  if (order.BuyOrSell != 1 && order.BuyOrSell != 2) return "neither buy nor sell";
  if (!(order.Price > 0.0)) return "no price";
  if (!IsClose(order.EntryOrExit)) {
    if (order.EntryOrExit != 1) return "neither open nor close";
    const double needed =
        static_cast<double>(order.Lots) * order.Price * symbol->LotValue * symbol->Costs.MarginRate;
    const double free = Equity(order.Account) - MarginInUse(order.Account) - Frozen(order.Account);
    return needed > free + kPriceTolerance ? "not enough free margin" : "";
  }
  // A buy closes the short side, a sell the long side.
  const bool buy = order.BuyOrSell == 1;
  const auto found = positions_.find({order.Account, {order.Market, order.Code}});
  int64_t held = 0;
  int64_t today = 0;
  if (found != positions_.end()) {
    held = buy ? found->second.Short : found->second.Long;
    today = buy ? found->second.ShortToday : found->second.LongToday;
  }
  int64_t claimed = 0;
  int64_t claimedToday = 0;
  for (const BrokerOrder& other : orders_) {
    if (other.Id == order.Id || other.Account != order.Account || other.Market != order.Market ||
        other.Code != order.Code || other.BuyOrSell != order.BuyOrSell ||
        !IsClose(other.EntryOrExit) || !IsWorking(other.Status)) {
      continue;
    }
    claimed += other.Lots - other.Filled;
    if (other.EntryOrExit == 5) claimedToday += other.Lots - other.Filled;
  }
  int64_t available = held - claimed;
  if (order.EntryOrExit == 5) available = std::min(available, today - claimedToday);
  return order.Lots > available ? "closes more than is held" : "";
}

int32_t PaperBroker::Accept(int64_t id) {
  BrokerOrder order = orders_.at(static_cast<size_t>(id - 1));
  if (order.Status != kSending) return order.Status;
  const std::string rejection = RejectionOf(order);
  order.Status = rejection.empty() ? kReported : kRejected;
  order.Note = rejection;
  BrokerChange change;
  change.Orders.push_back(order);
  Commit(std::move(change));
  return order.Status;
}

int32_t PaperBroker::AcceptPending() {
  int32_t count = 0;
  for (size_t i = 0; i < orders_.size(); ++i) {
    if (orders_[i].Status != kSending) continue;
    Accept(orders_[i].Id);
    ++count;
  }
  return count;
}

bool PaperBroker::Cancel(const std::string& account, const std::string& contractNo) {
  for (const BrokerOrder& found : orders_) {
    if (found.Account != account || found.ContractNo != contractNo) continue;
    if (!IsWorking(found.Status)) return false;
    BrokerOrder order = found;
    order.Status = order.Filled > 0 ? kPartlyCancelled : kCancelled;
    order.Note = "cancelled";
    BrokerChange change;
    change.Orders.push_back(std::move(order));
    Commit(std::move(change));
    return true;
  }
  return false;
}

void PaperBroker::MarkSession(const std::string& session, int64_t sequence) {
  BrokerChange change;
  change.Session = BrokerSession{session, sequence};
  Commit(std::move(change));
}

void PaperBroker::OnTick(const std::string& session, int64_t sequence, uint32_t market,
                         const std::string& code, int64_t time, double last, double volume,
                         double bid, double ask, int32_t tradingDay) {
  BrokerChange change;
  Touched<std::string, BrokerAccount> accounts(accounts_);
  Touched<PositionKey, BrokerPosition> positions(positions_);
  std::map<int64_t, BrokerOrder> orders;
  auto orderCopy = [&](const BrokerOrder& order) -> BrokerOrder& {
    return orders.emplace(order.Id, order).first->second;
  };
  // A new trading day: the day before is closed at the last prices.
  for (const auto& [name, account] : accounts_) {
    if (account.TradingDay >= tradingDay) continue;
    BrokerAccount& rolled = accounts(name);
    rolled.PreviousEquity = Equity(name);
    rolled.TodayDeposit = 0.0;
    rolled.TodayDrawing = 0.0;
    rolled.TradingDay = tradingDay;
    for (const auto& [key, position] : positions_) {
      if (key.first != name || (position.LongToday == 0 && position.ShortToday == 0)) continue;
      BrokerPosition& moved = positions(key);
      moved.LongToday = 0;
      moved.ShortToday = 0;
    }
  }
  for (const BrokerOrder& order : orders_) {
    if (!IsWorking(order.Status) || order.TradingDay >= tradingDay) continue;
    BrokerOrder& expired = orderCopy(order);
    expired.Status = expired.Filled > 0 ? kPartlyCancelled : kCancelled;
    expired.Note = "expired at the end of its day";
  }
  // Fills, in the order the orders arrived, out of the tick's volume.
  const BrokerSymbol* symbol = SymbolOf(market, code);
  double left = volume;
  const bool unlimited = volume <= 0.0;
  for (const BrokerOrder& committed : orders_) {
    if (symbol == nullptr || (!unlimited && left < 1.0)) break;
    if (committed.Market != market || committed.Code != code ||
        (committed.Status != kReported && committed.Status != kPartlyFilled) ||
        committed.TradingDay < tradingDay) {
      continue;
    }
    const bool buy = committed.BuyOrSell == 1;
    if (buy ? ask > committed.Price + kPriceTolerance : bid < committed.Price - kPriceTolerance) {
      continue;
    }
    int64_t lots = committed.Lots - committed.Filled;
    if (!unlimited) lots = std::min(lots, static_cast<int64_t>(std::floor(left)));
    if (lots <= 0) continue;
    left -= static_cast<double>(lots);
    BrokerOrder& order = orderCopy(committed);
    BrokerFill& fill = change.Fills.emplace_back();
    fill.Id = static_cast<int64_t>(fills_.size() + change.Fills.size());
    fill.OrderId = order.Id;
    fill.Account = order.Account;
    fill.Market = market;
    fill.Code = code;
    fill.BuyOrSell = order.BuyOrSell;
    fill.EntryOrExit = order.EntryOrExit;
    fill.Lots = lots;
    fill.Price = buy ? ask : bid;
    fill.Commission = Commission(*symbol, lots, fill.Price);
    fill.Time = time;
    fill.Sequence = sequence;
    BrokerPosition& position = positions({order.Account, {market, code}});
    position.Account = order.Account;
    position.Market = market;
    position.Code = code;
    fill.Profit = BookFill(position, accounts(order.Account), fill, symbol->LotValue);
    order.FilledPrice = (order.FilledPrice * static_cast<double>(order.Filled) +
                         fill.Price * static_cast<double>(lots)) /
                        static_cast<double>(order.Filled + lots);
    order.Filled += lots;
    order.Status = order.Filled == order.Lots ? kFilled : kPartlyFilled;
  }
  accounts.MoveInto(change.Accounts);
  positions.MoveInto(change.Positions);
  for (auto& [id, order] : orders) change.Orders.push_back(std::move(order));
  change.Session = BrokerSession{session, sequence};
  Commit(std::move(change));
  SetQuote(market, code, last, bid, ask, time, tradingDay);
}

std::vector<std::string> PaperBroker::AccountNames() const {
  std::vector<std::string> names;
  for (const auto& [name, account] : accounts_) names.push_back(name);
  return names;
}

std::optional<Quill::ITradeAcctSummary> PaperBroker::Summary(const std::string& account) const {
  const auto found = accounts_.find(account);
  if (found == accounts_.end()) return std::nullopt;
  const BrokerAccount& record = found->second;
  Quill::ITradeAcctSummary summary;
  summary.PreviousEquity = record.PreviousEquity;
  summary.CurrentEquity = Equity(account);
  summary.TotalMargin = MarginInUse(account);
  summary.TotalFreeze = Frozen(account);
  summary.FreeMargin = summary.CurrentEquity - summary.TotalMargin - summary.TotalFreeze;
  summary.TodayDeposit = record.TodayDeposit;
  summary.TodayDrawing = record.TodayDrawing;
  summary.ProfitLoss =
      summary.CurrentEquity - record.PreviousEquity - record.TodayDeposit + record.TodayDrawing;
  return summary;
}

Quill::ITradePosition PaperBroker::Position(const std::string& account, uint32_t market,
                                            const std::string& code) const {
  Quill::ITradePosition result;
  const auto found = positions_.find({account, {market, code}});
  if (found == positions_.end()) return result;
  const BrokerPosition& position = found->second;
  const BrokerSymbol* symbol = SymbolOf(market, code);
  const auto quote = quotes_.find({market, code});
  const double last = quote != quotes_.end() ? quote->second.Last : 0.0;
  const double lotValue = symbol != nullptr ? symbol->LotValue : 1.0;
  result.BuyPosition = position.Long;
  result.TodayBuyPosition = position.LongToday;
  result.BuyAvgPrice = position.LongAverage;
  result.SellPosition = position.Short;
  result.TodaySellPosition = position.ShortToday;
  result.SellAvgPrice = position.ShortAverage;
  if (last > 0.0) {
    result.BuyProfitLoss =
        (last - position.LongAverage) * static_cast<double>(position.Long) * lotValue;
    result.SellProfitLoss =
        (position.ShortAverage - last) * static_cast<double>(position.Short) * lotValue;
  }
  // The total is the net position; its average is the average of the side that is larger.
  result.TotalPosition = position.Long - position.Short;
  result.TotalAvgPrice = result.TotalPosition > 0   ? position.LongAverage
                         : result.TotalPosition < 0 ? position.ShortAverage
                                                    : 0.0;
  return result;
}

Quill::ITradeOrder PaperBroker::ToPlatform(const BrokerOrder& order) {
  Quill::ITradeOrder platform;
  platform.BrokerNo = 1;
  platform.AccountID = order.Account;
  platform.CodeID.MarketId = static_cast<int32_t>(order.Market);
  platform.CodeID.Code = order.Code;
  platform.Source = order.Source;
  platform.Comment = order.Comment;
  platform.ContractNo = order.ContractNo;
  platform.Status = order.Status;
  platform.TimeStamp = order.Time;
  platform.Lot = static_cast<double>(order.Lots);
  platform.FilledLot = order.Filled;
  platform.FilledPrice = order.FilledPrice;
  platform.Price = order.Price;
  platform.BuyOrSell = order.BuyOrSell;
  platform.EntryOrExit = order.EntryOrExit;
  return platform;
}

std::vector<Quill::ITradeOrder> PaperBroker::Orders(const std::string& account, uint32_t market,
                                                    const std::string& code,
                                                    bool workingOnly) const {
  std::vector<Quill::ITradeOrder> list;
  for (const BrokerOrder& order : orders_) {
    if (order.Account != account || order.Market != market || order.Code != code) continue;
    if (workingOnly ? !IsWorking(order.Status) : order.TradingDay != day_) continue;
    list.push_back(ToPlatform(order));
  }
  return list;
}

int64_t PaperBroker::SessionSequence(const std::string& session) const {
  const auto found = sessions_.find(session);
  return found == sessions_.end() ? 0 : found->second;
}

}  // namespace qxrun
