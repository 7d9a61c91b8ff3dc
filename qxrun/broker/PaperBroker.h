// The paper broker: named accounts with their money, positions, orders and fills, orders filled
// against the ticks of a replay. A pure core: it is told the time, the quote and the ticks, and
// hands every change to its journal (the store) before it takes the change on itself, so that a
// change the journal could not keep leaves the broker as it was.
//
// Rules:
// - Orders are limit orders in whole lots. A buy fills on a later tick whose ask is at or below
//   its price, at that ask; a sell on a tick whose bid is at or above its price, at that bid. An
//   order priced through the quote is therefore a market order: it fills on the next tick at the
//   quote.
// - A tick fills at most its own volume, shared by the working orders in the order they arrived;
//   what is left stays working (partly filled). A tick whose volume is 0 (bars without volume)
//   fills every order it reaches in full.
// - Acceptance: an entry needs free margin for its lots at its price; a close needs the position
//   it closes, less what working closes of the same side already claim ("close today" counts only
//   today's position; a close takes the earlier days' lots first). Anything else is rejected.
// - Money: margin is lots x last price x lot value x margin rate; an entry order freezes the margin
//   of its unfilled lots at its price; commission follows the symbol's cost setting (money per
//   lot, ticks per lot, or turnover); a close realises (exit - average) x lots x lot value.
// - Orders live for their trading day: the first tick of a new day cancels what is still working,
//   makes today's positions earlier positions, and takes the equity at the last price as the
//   previous equity.
#ifndef QXRUN_BROKER_PAPER_BROKER_H_
#define QXRUN_BROKER_PAPER_BROKER_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/HostData.h"

#include "qxrun/broker/BrokerRecords.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qxrun {

// A symbol the broker trades.
struct BrokerSymbol {
  uint32_t Market = 0;
  std::string Code;
  double LotValue = 1.0;  // money per point per lot
  double TickSize = 0.01;
  CostSetting Costs;  // margin rate and commission
};

// Keeps the broker's changes; Commit writes one change whole or throws, keeping nothing of it.
class BrokerJournal {
 public:
  virtual ~BrokerJournal() = default;
  virtual void Commit(const BrokerChange& change) = 0;
};

// Everything a broker holds, as a store reads it back.
struct BrokerState {
  std::vector<BrokerAccount> Accounts;
  std::vector<BrokerPosition> Positions;
  std::vector<BrokerOrder> Orders;  // by id
  std::vector<BrokerFill> Fills;    // by id
  std::vector<BrokerSession> Sessions;
};

class PaperBroker {
 public:
  // `journal` may be null (nothing kept); it must outlive the broker.
  PaperBroker(std::vector<BrokerSymbol> symbols, BrokerJournal* journal);

  // Takes over a stored state. REQUIRES: called before any event.
  void Load(BrokerState state);

  // The current time and quote of a symbol (not an event: nothing is written).
  void SetQuote(uint32_t market, const std::string& code, double last, double bid, double ask,
                int64_t time, int32_t tradingDay);

  // Events, each one change of the journal.
  void OpenAccount(const std::string& name, double deposit);
  // Money paid into and taken out of an account at the start of `session`, in one event that also
  // marks the session as begun (so a run that goes on with the session does not repeat it).
  // REQUIRES: the account exists; withdrawal <= FreeMoney(name) + deposit.
  void Transfer(const std::string& name, double deposit, double withdrawal,
                const std::string& session);
  // A new order as the front end hands it over, kept as "sending"; returns its id.
  int64_t Submit(const Quill::ITradeOrder& order, const std::string& session, int64_t sequence);
  // The broker takes a sent order in: reported, or rejected; returns the new status.
  int32_t Accept(int64_t id);
  // Cancels a working order of the account by its contract number; false when there is none.
  bool Cancel(const std::string& account, const std::string& contractNo);
  // A tick of a symbol: a new trading day first, then fills; the session moves to `sequence`.
  void OnTick(const std::string& session, int64_t sequence, uint32_t market,
              const std::string& code, int64_t time, double last, double volume, double bid,
              double ask, int32_t tradingDay);
  // Marks the session at `sequence` without a tick.
  void MarkSession(const std::string& session, int64_t sequence);
  // Orders left "sending" by a run that stopped: the broker takes each in now, once.
  int32_t AcceptPending();

  // Queries.
  bool HasAccount(const std::string& name) const { return accounts_.count(name) > 0; }
  std::vector<std::string> AccountNames() const;
  std::optional<Quill::ITradeAcctSummary> Summary(const std::string& account) const;
  // What may be withdrawn: the balance less the margin of the open positions at their average
  // prices and the money frozen by working orders. Before a session's first tick there is no
  // last price, so the positions are valued at what they cost and their open profit is left out.
  double FreeMoney(const std::string& account) const;
  Quill::ITradePosition Position(const std::string& account, uint32_t market,
                                 const std::string& code) const;
  // Orders of the account in a symbol: today's, or only the working ones.
  std::vector<Quill::ITradeOrder> Orders(const std::string& account, uint32_t market,
                                         const std::string& code, bool workingOnly) const;
  const std::vector<BrokerOrder>& AllOrders() const { return orders_; }
  const std::vector<BrokerFill>& AllFills() const { return fills_; }
  const std::map<std::pair<std::string, std::pair<uint32_t, std::string>>, BrokerPosition>&
  Positions() const {
    return positions_;
  }
  int64_t SessionSequence(const std::string& session) const;
  bool HasSession(const std::string& session) const { return sessions_.count(session) > 0; }
  int32_t TradingDay() const { return day_; }

 private:
  using PositionKey = std::pair<std::string, std::pair<uint32_t, std::string>>;
  struct Quote {
    double Last = 0.0;
    double Bid = 0.0;
    double Ask = 0.0;
  };
  const BrokerSymbol* SymbolOf(uint32_t market, const std::string& code) const;
  double Equity(const std::string& account) const;
  // The margin of the account's open positions at the last prices (a position without a quote
  // holds none), or at their average prices.
  double MarginInUse(const std::string& account, bool atAverages = false) const;
  double Frozen(const std::string& account) const;
  double Commission(const BrokerSymbol& symbol, int64_t lots, double price) const;
  // Hands the change to the journal, then takes it on.
  void Commit(BrokerChange change);
  std::string RejectionOf(const BrokerOrder& order) const;
  static Quill::ITradeOrder ToPlatform(const BrokerOrder& order);

  std::vector<BrokerSymbol> symbols_;
  BrokerJournal* journal_;
  std::map<std::string, BrokerAccount> accounts_;
  std::map<PositionKey, BrokerPosition> positions_;
  std::vector<BrokerOrder> orders_;  // id = index + 1
  std::vector<BrokerFill> fills_;
  std::map<std::string, int64_t> sessions_;
  std::map<std::pair<uint32_t, std::string>, Quote> quotes_;
  int64_t now_ = 0;
  int32_t day_ = 0;
};

}  // namespace qxrun

#endif  // QXRUN_BROKER_PAPER_BROKER_H_
