// The records of the paper broker: accounts, positions, orders and fills, and the change one event
// makes to them (what the store writes in one transaction).
#ifndef QXRUN_BROKER_BROKER_RECORDS_H_
#define QXRUN_BROKER_BROKER_RECORDS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qxrun {

// Order states, numbered as the platform numbers them.
enum BrokerStatus : int32_t {
  kSending = 1,
  kReported = 2,
  kRejected = 3,
  kPartlyFilled = 4,
  kFilled = 5,
  kPartlyCancelled = 6,
  kCancelled = 7,
};

inline bool IsWorking(int32_t status) {
  return status == kSending || status == kReported || status == kPartlyFilled;
}

struct BrokerAccount {
  std::string Name;
  double Balance = 0.0;  // deposits less withdrawals, plus realised profit, less commission
  double PreviousEquity = 0.0;
  double TodayDeposit = 0.0;
  double TodayDrawing = 0.0;
  int32_t TradingDay = 0;  // YYYYMMDD of the day the "today" figures belong to
};

struct BrokerPosition {
  std::string Account;
  uint32_t Market = 0;
  std::string Code;
  int64_t Long = 0;
  int64_t LongToday = 0;  // part of Long opened today
  double LongAverage = 0.0;
  int64_t Short = 0;
  int64_t ShortToday = 0;
  double ShortAverage = 0.0;
};

struct BrokerOrder {
  int64_t Id = 0;  // 1, 2, ... in the order of arrival
  std::string ContractNo;
  std::string Session;   // the replay that sent it
  int64_t Sequence = 0;  // the tick it was sent on
  std::string Account;
  uint32_t Market = 0;
  std::string Code;
  int32_t BuyOrSell = 1;    // 1 buy, 2 sell
  int32_t EntryOrExit = 1;  // 1 open, 4 or 7 close, 5 close today
  int64_t Lots = 0;
  double Price = 0.0;
  int32_t Status = kSending;
  int64_t Filled = 0;
  double FilledPrice = 0.0;  // average
  int64_t Time = 0;          // milliseconds since 1970 UTC
  int32_t TradingDay = 0;
  std::string Source;
  std::string Comment;
  std::string Note;  // why it was rejected or cancelled
};

struct BrokerFill {
  int64_t Id = 0;
  int64_t OrderId = 0;
  std::string Account;
  uint32_t Market = 0;
  std::string Code;
  int32_t BuyOrSell = 1;
  int32_t EntryOrExit = 1;
  int64_t Lots = 0;
  double Price = 0.0;
  double Commission = 0.0;
  double Profit = 0.0;  // realised by a close, before commission
  int64_t Time = 0;
  int64_t Sequence = 0;
};

// Where a replay has got to.
struct BrokerSession {
  std::string Key;
  int64_t Sequence = 0;  // the last tick taken in
};

// What one event changes: records written whole (new or replaced), fills added.
struct BrokerChange {
  std::vector<BrokerAccount> Accounts;
  std::vector<BrokerPosition> Positions;
  std::vector<BrokerOrder> Orders;
  std::vector<BrokerFill> Fills;
  std::optional<BrokerSession> Session;
};

}  // namespace qxrun

#endif  // QXRUN_BROKER_BROKER_RECORDS_H_
