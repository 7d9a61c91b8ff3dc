// The platform adapter of qxrun: symbol properties from the run file, quotes from an optional
// snapshot file, and the "qxlprofile" store in SQLite.
#ifndef QXRUN_HOST_FILE_ADAPTER_H_
#define QXRUN_HOST_FILE_ADAPTER_H_

#include "sysfuncs/DataAdapter.h"

#include "qxrun/config/RunFile.h"
#include "qxrun/host/ProfileStore.h"

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qxrun {

// The properties the adapter reports for a symbol's terms.
Quill::ICodeProperty PropertyOf(const SymbolTerms& terms);

// Reads a quote snapshot: a JSON object from symbol code to an object of quote fields
// ("last", "open", "high", "low", "close", "pre_close", "pre_settle", "upper_limit",
// "lower_limit", "volume", "turnover", "open_int", "pre_open_int", "avg_price", "last_volume",
// "time" (milliseconds), "bids" and "asks" ([[price, volume], ...], best first)). Throws
// InputError naming the file and the key path.
std::map<std::string, Quill::ITickDeepLevel> LoadQuoteSnapshot(const std::filesystem::path& file);

class FileAdapter : public CDataAdapter {
 public:
  FileAdapter(const std::vector<SymbolSettings>& symbols,
              std::map<std::string, Quill::ITickDeepLevel> quotes, std::filesystem::path userDir);

  bool GetSymbolProperty(const tagSymbol& symbol, Quill::ICodeProperty& property) override;
  int GetMarketQuote(const tagSymbol& symbol, Quill::ITickDeepLevel& quote) override;
  bool GetConfigFileProperty(const std::string& store, const std::string& section,
                             const std::string& key, std::string& value) override;
  void SetConfigFileProperty(const std::string& store, const std::string& section,
                             const std::string& key, const std::string& value) override;

  // The instrument identity: the symbol's market and code.
  void GetICodeID(const tagSymbol& symbol, Quill::ICodeID& codeId) override;
  void GetICodeID(int marketId, const std::string& code, Quill::ICodeID& codeId) override;

  // Live quotes, the account and its orders come from `live` when one is given (a paper broker):
  // its quote answers before the snapshot file's. `live` must outlive the adapter's use.
  void SetLive(CDataAdapter* live) { live_ = live; }
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

  ProfileStore& Profiles() { return profiles_; }

 private:
  std::map<std::pair<uint32_t, std::string>, Quill::ICodeProperty> properties_;
  std::map<std::string, Quill::ITickDeepLevel> quotes_;
  ProfileStore profiles_;
  CDataAdapter* live_ = nullptr;
};

}  // namespace qxrun

#endif  // QXRUN_HOST_FILE_ADAPTER_H_
