// Default answers of the platform adapter: no data, nothing done.
#include "sysfuncs/DataAdapter.h"

CDataAdapter::~CDataAdapter() = default;

bool CDataAdapter::GetSymbolProperty(const tagSymbol&, Quill::ICodeProperty&) { return false; }

bool CDataAdapter::GetFutureRollover(const tagSymbol&, int64_t, int64_t, int32_t,
                                     std::vector<Quill::IFutureRolloverValue>&) {
  return false;
}

int CDataAdapter::GetMarketQuote(const tagSymbol&, Quill::ITickDeepLevel&) { return 0; }

void CDataAdapter::GetICodeID(const tagSymbol&, Quill::ICodeID&) {}

void CDataAdapter::GetICodeID(int, const std::string&, Quill::ICodeID&) {}

int CDataAdapter::GetAccountSummary(int, const std::string&, Quill::ITradeAcctSummary&) {
  return 0;
}

int CDataAdapter::GetPosition(int, const std::string&, const Quill::ICodeID&,
                              Quill::ITradePosition&) {
  return 0;
}

int CDataAdapter::GetOrders(int, const std::string&, const Quill::ICodeID&,
                            std::vector<Quill::ITradeOrder>&) {
  return 0;
}

int CDataAdapter::GetOpenOrders(int, const std::string&, const Quill::ICodeID&,
                                std::vector<Quill::ITradeOrder>&) {
  return 0;
}

int CDataAdapter::CancelOrder(int, const std::string&, const Quill::ICodeID&, const std::string&) {
  return 0;
}

bool CDataAdapter::GetConfigFileProperty(const std::string&, const std::string&, const std::string&,
                                         std::string&) {
  return false;
}

void CDataAdapter::SetConfigFileProperty(const std::string&, const std::string&, const std::string&,
                                         const std::string&) {}
