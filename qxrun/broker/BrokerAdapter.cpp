#include "qxrun/broker/BrokerAdapter.h"

namespace qxrun {

int BrokerAdapter::GetMarketQuote(const tagSymbol& symbol, Quill::ITickDeepLevel& quote) {
  if (feed_ == nullptr || !feed_->Started() || symbol.MarketId != feed_->Settings().Market ||
      feed_->Settings().Code != symbol.Code) {
    return 0;
  }
  quote = feed_->Snapshot();
  return 1;
}

int BrokerAdapter::GetAccountSummary(int brokerNo, const std::string& accountId,
                                     Quill::ITradeAcctSummary& summary) {
  if (brokerNo != kPaperBrokerNo) return 0;
  const std::optional<Quill::ITradeAcctSummary> found = broker_.Summary(accountId);
  if (!found) return 0;
  summary = *found;
  return 1;
}

int BrokerAdapter::GetPosition(int brokerNo, const std::string& accountId,
                               const Quill::ICodeID& codeId, Quill::ITradePosition& position) {
  if (brokerNo != kPaperBrokerNo || !broker_.HasAccount(accountId)) return 0;
  position = broker_.Position(accountId, static_cast<uint32_t>(codeId.MarketId), codeId.Code);
  return 1;
}

int BrokerAdapter::GetOrders(int brokerNo, const std::string& accountId,
                             const Quill::ICodeID& codeId,
                             std::vector<Quill::ITradeOrder>& orders) {
  if (brokerNo != kPaperBrokerNo || !broker_.HasAccount(accountId)) return 0;
  orders = broker_.Orders(accountId, static_cast<uint32_t>(codeId.MarketId), codeId.Code, false);
  return 1;
}

int BrokerAdapter::GetOpenOrders(int brokerNo, const std::string& accountId,
                                 const Quill::ICodeID& codeId,
                                 std::vector<Quill::ITradeOrder>& orders) {
  if (brokerNo != kPaperBrokerNo || !broker_.HasAccount(accountId)) return 0;
  orders = broker_.Orders(accountId, static_cast<uint32_t>(codeId.MarketId), codeId.Code, true);
  return 1;
}

int BrokerAdapter::CancelOrder(int brokerNo, const std::string& accountId,
                               const Quill::ICodeID& codeId, const std::string& contractNo) {
  (void)codeId;
  if (brokerNo != kPaperBrokerNo) return 0;
  return broker_.Cancel(accountId, contractNo) ? 1 : 0;
}

}  // namespace qxrun
