#include "qxrun/host/FileAdapter.h"

#include "qxrun/InputError.h"
#include "qxrun/config/JsonFile.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

namespace qxrun {
namespace {

// The quote fields of a snapshot, by their key.
struct QuoteField {
  const char* Key;
  double Quill::ITickDeepLevel::*Member;
};
constexpr QuoteField kQuoteFields[] = {
    {"pre_settle", &Quill::ITickDeepLevel::PreSettlePrice},
    {"pre_close", &Quill::ITickDeepLevel::PreClosePrice},
    {"open", &Quill::ITickDeepLevel::OpenPrice},
    {"last", &Quill::ITickDeepLevel::LastPrice},
    {"high", &Quill::ITickDeepLevel::HighPrice},
    {"low", &Quill::ITickDeepLevel::LowPrice},
    {"volume", &Quill::ITickDeepLevel::TotalVolume},
    {"turnover", &Quill::ITickDeepLevel::TurnOver},
    {"pre_open_int", &Quill::ITickDeepLevel::PreOpenInt},
    {"open_int", &Quill::ITickDeepLevel::OpenInt},
    {"avg_price", &Quill::ITickDeepLevel::AvgPrice},
    {"last_volume", &Quill::ITickDeepLevel::LastVolume},
    {"close", &Quill::ITickDeepLevel::ClosePrice},
    {"upper_limit", &Quill::ITickDeepLevel::UpperLimit},
    {"lower_limit", &Quill::ITickDeepLevel::LowerLimit},
};

[[noreturn]] void Fail(const std::string& file, const std::string& path, const std::string& what) {
  throw InputError(file + ": " + path + ": " + what);
}

double NumberAt(const nlohmann::json& value, const std::string& file, const std::string& path) {
  if (!value.is_number()) Fail(file, path, "must be a number");
  const double number = value.get<double>();
  if (!std::isfinite(number)) Fail(file, path, "must be finite");
  return number;
}

Quill::ITickDeepLevel ReadQuote(const nlohmann::json& value, const std::string& file,
                                const std::string& path) {
  if (!value.is_object()) Fail(file, path, "must be an object");
  Quill::ITickDeepLevel quote;
  for (const auto& [key, member] : value.items()) {
    const std::string memberPath = path + "/" + key;
    bool known = false;
    for (const QuoteField& field : kQuoteFields) {
      if (key == field.Key) {
        quote.*field.Member = NumberAt(member, file, memberPath);
        known = true;
      }
    }
    if (known) continue;
    if (key == "time") {
      if (!member.is_number_integer()) Fail(file, memberPath, "must be a whole number");
      quote.TimeStamp = member.get<int64_t>();
    } else if (key == "bids" || key == "asks") {
      if (!member.is_array()) Fail(file, memberPath, "must be an array");
      if (quote.DepthLevels.size() < member.size()) quote.DepthLevels.resize(member.size());
      for (size_t level = 0; level < member.size(); ++level) {
        const std::string levelPath = memberPath + "/" + std::to_string(level);
        const nlohmann::json& pair = member[level];
        if (!pair.is_array() || pair.size() != 2) Fail(file, levelPath, "must be [price, volume]");
        Quill::DepthLevel& depth = quote.DepthLevels[level];
        (key == "bids" ? depth.BidPrice : depth.AskPrice) =
            NumberAt(pair[0], file, levelPath + "/0");
        (key == "bids" ? depth.BidVolume : depth.AskVolume) =
            NumberAt(pair[1], file, levelPath + "/1");
      }
    } else {
      Fail(file, memberPath, "unknown key");
    }
  }
  return quote;
}

}  // namespace

Quill::ICodeProperty PropertyOf(const SymbolTerms& terms) {
  Quill::ICodeProperty property;
  property.MarketId = static_cast<int32_t>(terms.Market);
  property.OrderFlags = (terms.MarketOrders ? 0x1U : 0U) | (terms.StopOrders ? 0x2U : 0U);
  property.TradeFlags = terms.ShortSelling ? 0x4U : 0U;
  property.Tradable = terms.Tradable;
  property.CurrencyName = terms.Currency;
  property.CurrencySymbol = terms.CurrencySymbol;
  property.ExpiryDate = terms.Expiry;
  property.MaxSingleTradeSize = terms.MaxSingleTradeSize;
  property.MinMove = terms.MinMove;
  property.PriceScale = static_cast<float>(terms.PriceScale);
  property.SymbolName = terms.Name.empty() ? terms.Code : terms.Name;
  property.ContractUnit = terms.ContractUnit;
  property.BigPointValue = static_cast<float>(terms.BigPointValue);
  property.MarginKind = terms.MarginKind;
  property.Sessions = terms.Sessions;
  return property;
}

std::map<std::string, Quill::ITickDeepLevel> LoadQuoteSnapshot(const std::filesystem::path& path) {
  const std::string file = path.string();
  const nlohmann::json root = ReadJsonFile(path, "quote snapshot");
  if (!root.is_object()) Fail(file, "/", "must be an object of symbol codes");
  std::map<std::string, Quill::ITickDeepLevel> quotes;
  for (const auto& [code, value] : root.items()) quotes[code] = ReadQuote(value, file, "/" + code);
  return quotes;
}

FileAdapter::FileAdapter(const std::vector<SymbolSettings>& symbols,
                         std::map<std::string, Quill::ITickDeepLevel> quotes,
                         std::filesystem::path userDir)
    : quotes_(std::move(quotes)), profiles_(std::move(userDir)) {
  for (const SymbolSettings& symbol : symbols) {
    Quill::ICodeProperty property = PropertyOf(symbol.Terms);
    properties_.emplace(std::make_pair(symbol.Terms.Market, symbol.Terms.Code), property);
  }
}

bool FileAdapter::GetSymbolProperty(const tagSymbol& symbol, Quill::ICodeProperty& property) {
  const auto found = properties_.find({symbol.MarketId, std::string(symbol.Code)});
  if (found == properties_.end()) return false;
  property = found->second;
  return true;
}

int FileAdapter::GetMarketQuote(const tagSymbol& symbol, Quill::ITickDeepLevel& quote) {
  if (live_ != nullptr && live_->GetMarketQuote(symbol, quote) != 0) return 1;
  const auto found = quotes_.find(symbol.Code);
  if (found == quotes_.end()) return 0;
  quote = found->second;
  return 1;
}

void FileAdapter::GetICodeID(const tagSymbol& symbol, Quill::ICodeID& codeId) {
  GetICodeID(symbol.MarketId, symbol.Code, codeId);
}

void FileAdapter::GetICodeID(int marketId, const std::string& code, Quill::ICodeID& codeId) {
  codeId = Quill::ICodeID{};
  codeId.MarketId = marketId;
  codeId.Code = code;
}

int FileAdapter::GetAccountSummary(int brokerNo, const std::string& accountId,
                                   Quill::ITradeAcctSummary& summary) {
  return live_ != nullptr ? live_->GetAccountSummary(brokerNo, accountId, summary) : 0;
}

int FileAdapter::GetPosition(int brokerNo, const std::string& accountId,
                             const Quill::ICodeID& codeId, Quill::ITradePosition& position) {
  return live_ != nullptr ? live_->GetPosition(brokerNo, accountId, codeId, position) : 0;
}

int FileAdapter::GetOrders(int brokerNo, const std::string& accountId, const Quill::ICodeID& codeId,
                           std::vector<Quill::ITradeOrder>& orders) {
  return live_ != nullptr ? live_->GetOrders(brokerNo, accountId, codeId, orders) : 0;
}

int FileAdapter::GetOpenOrders(int brokerNo, const std::string& accountId,
                               const Quill::ICodeID& codeId,
                               std::vector<Quill::ITradeOrder>& orders) {
  return live_ != nullptr ? live_->GetOpenOrders(brokerNo, accountId, codeId, orders) : 0;
}

int FileAdapter::CancelOrder(int brokerNo, const std::string& accountId,
                             const Quill::ICodeID& codeId, const std::string& contractNo) {
  return live_ != nullptr ? live_->CancelOrder(brokerNo, accountId, codeId, contractNo) : 0;
}

bool FileAdapter::GetConfigFileProperty(const std::string& store, const std::string& section,
                                        const std::string& key, std::string& value) {
  std::optional<std::string> found = profiles_.Get(store, section, key);
  if (!found) return false;
  value = std::move(*found);
  return true;
}

void FileAdapter::SetConfigFileProperty(const std::string& store, const std::string& section,
                                        const std::string& key, const std::string& value) {
  profiles_.Set(store, section, key, value);
}

}  // namespace qxrun
