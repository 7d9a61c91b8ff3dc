// A platform adapter for tests: contract records and rollovers by symbol code, with call
// counters, and a scoped installation of an adapter in the module's environment.
#ifndef SYSFUNCS_TESTS_SUPPORT_FAKE_ADAPTER_H_
#define SYSFUNCS_TESTS_SUPPORT_FAKE_ADAPTER_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/Environment.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace sysfuncs::testing {

// A tradable contract record: a tick of minMove x priceScale, contractUnit units a lot, each point
// worth bigPointValue, and the margin kind.
inline Quill::ICodeProperty TradableContract(int32_t minMove, float priceScale,
                                             int32_t contractUnit, float bigPointValue,
                                             int32_t marginKind) {
  Quill::ICodeProperty contract;
  contract.Tradable = true;
  contract.MinMove = minMove;
  contract.PriceScale = priceScale;
  contract.ContractUnit = contractUnit;
  contract.BigPointValue = bigPointValue;
  contract.MarginKind = marginKind;
  return contract;
}

class FakeAdapter : public CDataAdapter {
 public:
  // Known symbols by code; a symbol without a record is unknown.
  std::map<std::string, Quill::ICodeProperty> properties;
  // Rollovers by code; a symbol without an entry has none to report.
  std::map<std::string, std::vector<Quill::IFutureRolloverValue>> rollovers;

  int propertyCalls = 0;
  int rolloverCalls = 0;
  tagSymbol lastKey;  // the key of the latest call of either kind
  int64_t lastBeginTime = 0;
  int64_t lastEndTime = 0;
  int32_t lastFlag = 0;

  // Quotes, positions and order lists by code; a code without an entry fails its query.
  std::map<std::string, Quill::ITickDeepLevel> quotes;
  std::map<std::string, Quill::ITradePosition> positions;
  std::map<std::string, std::vector<Quill::ITradeOrder>> orders;
  std::map<std::string, std::vector<Quill::ITradeOrder>> openOrders;
  // Instrument identities by code; an unknown code gets an identity holding only its code.
  std::map<std::string, Quill::ICodeID> codeIds;
  // The account summary; the query fails while `summaryAnswers` is false.
  Quill::ITradeAcctSummary summary;
  bool summaryAnswers = true;

  int quoteCalls = 0;
  int codeIdCalls = 0;
  int summaryCalls = 0;
  int positionCalls = 0;
  int orderCalls = 0;
  int openOrderCalls = 0;
  // The account arguments of the latest account, position, order or cancel call.
  int lastBrokerNo = 0;
  std::string lastAccountId;
  // The contract numbers cancelled, in call order, with the codes they were cancelled under.
  std::vector<std::pair<std::string, std::string>> cancelled;

  // Every call of an account, quote or order operation.
  int LiveCalls() const {
    return quoteCalls + codeIdCalls + summaryCalls + positionCalls + orderCalls + openOrderCalls +
           static_cast<int>(cancelled.size());
  }

  int GetMarketQuote(const tagSymbol& symbol, Quill::ITickDeepLevel& quote) override {
    ++quoteCalls;
    lastKey = symbol;
    const auto found = quotes.find(symbol.Code);
    if (found == quotes.end()) return 0;
    quote = found->second;
    return 1;
  }

  void GetICodeID(const tagSymbol& symbol, Quill::ICodeID& codeId) override {
    GetICodeID(symbol.MarketId, symbol.Code, codeId);
  }
  void GetICodeID(int marketId, const std::string& code, Quill::ICodeID& codeId) override {
    ++codeIdCalls;
    const auto found = codeIds.find(code);
    if (found != codeIds.end()) {
      codeId = found->second;
      if (codeId.Code.empty()) codeId.Code = code;
    } else {
      codeId.MarketId = marketId;
      codeId.Code = code;
    }
  }

  int GetAccountSummary(int brokerNo, const std::string& accountId,
                        Quill::ITradeAcctSummary& result) override {
    ++summaryCalls;
    Remember(brokerNo, accountId);
    if (!summaryAnswers) return 0;
    result = summary;
    return 1;
  }

  int GetPosition(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                  Quill::ITradePosition& position) override {
    ++positionCalls;
    Remember(brokerNo, accountId);
    return Answer(positions, codeId, position);
  }

  int GetOrders(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                std::vector<Quill::ITradeOrder>& list) override {
    ++orderCalls;
    Remember(brokerNo, accountId);
    return Answer(orders, codeId, list);
  }

  int GetOpenOrders(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                    std::vector<Quill::ITradeOrder>& list) override {
    ++openOrderCalls;
    Remember(brokerNo, accountId);
    return Answer(openOrders, codeId, list);
  }

  int CancelOrder(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                  const std::string& contractNo) override {
    Remember(brokerNo, accountId);
    cancelled.emplace_back(contractNo, codeId.Code);
    return 1;
  }

  bool GetSymbolProperty(const tagSymbol& symbol, Quill::ICodeProperty& property) override {
    ++propertyCalls;
    lastKey = symbol;
    const auto found = properties.find(symbol.Code);
    if (found == properties.end()) return false;
    property = found->second;
    return true;
  }

  bool GetFutureRollover(const tagSymbol& symbol, int64_t beginTime, int64_t endTime, int32_t flag,
                         std::vector<Quill::IFutureRolloverValue>& values) override {
    ++rolloverCalls;
    lastKey = symbol;
    lastBeginTime = beginTime;
    lastEndTime = endTime;
    lastFlag = flag;
    const auto found = rollovers.find(symbol.Code);
    if (found == rollovers.end()) return false;
    values = found->second;
    return true;
  }

 private:
  void Remember(int brokerNo, const std::string& accountId) {
    lastBrokerNo = brokerNo;
    lastAccountId = accountId;
  }
  // The entry of the identity's code, copied into `result`; 0 when there is none.
  template <typename Value>
  static int Answer(const std::map<std::string, Value>& table, const Quill::ICodeID& codeId,
                    Value& result) {
    const auto found = table.find(codeId.Code);
    if (found == table.end()) return 0;
    result = found->second;
    return 1;
  }
};

// Installs an adapter (null: none) in the module's environment for the scope and puts the
// previous one back afterwards.
class ScopedAdapter {
 public:
  explicit ScopedAdapter(CDataAdapter* adapter) : previous_(GetSFEnv()->m_pDataAdapter) {
    GetSFEnv()->m_pDataAdapter = adapter;
  }
  ~ScopedAdapter() { GetSFEnv()->m_pDataAdapter = previous_; }
  ScopedAdapter(const ScopedAdapter&) = delete;
  ScopedAdapter& operator=(const ScopedAdapter&) = delete;

 private:
  CDataAdapter* previous_;
};

}  // namespace sysfuncs::testing

#endif  // SYSFUNCS_TESTS_SUPPORT_FAKE_ADAPTER_H_
