// The paper broker and the replay's quote as the platform adapter serves them to the library.
#ifndef QXRUN_BROKER_BROKER_ADAPTER_H_
#define QXRUN_BROKER_BROKER_ADAPTER_H_

#include "sysfuncs/DataAdapter.h"

#include "qxrun/broker/PaperBroker.h"
#include "qxrun/replay/QuoteFeed.h"

namespace qxrun {

// The broker number of the paper broker's accounts: an account is bound as BrokerID "1|paper".
inline constexpr int kPaperBrokerNo = 1;

class BrokerAdapter : public CDataAdapter {
 public:
  // `broker` and `feed` must outlive the adapter; `feed` may be null (no quote).
  BrokerAdapter(PaperBroker& broker, const QuoteFeed* feed) : broker_(broker), feed_(feed) {}

  // The feed's snapshot for its own symbol once it has a price; no quote otherwise.
  int GetMarketQuote(const tagSymbol& symbol, Quill::ITickDeepLevel& quote) override;
  int GetAccountSummary(int brokerNo, const std::string& accountId,
                        Quill::ITradeAcctSummary& summary) override;
  int GetPosition(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                  Quill::ITradePosition& position) override;
  int GetOrders(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                std::vector<Quill::ITradeOrder>& orders) override;
  int GetOpenOrders(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                    std::vector<Quill::ITradeOrder>& orders) override;
  int CancelOrder(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                  const std::string& contractNo) override;

 private:
  PaperBroker& broker_;
  const QuoteFeed* feed_;
};

}  // namespace qxrun

#endif  // QXRUN_BROKER_BROKER_ADAPTER_H_
