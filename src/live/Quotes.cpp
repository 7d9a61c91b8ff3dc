// Real-time quotes of the current data source's symbol, memoised per instance.
#include "sysfuncs/SFImpl.h"

#include "contract/SymbolKey.h"
#include "live/QuoteFields.h"
#include "util/DateCodec.h"
#include "util/TradingDay.h"

namespace {

using sysfuncs::kInvalidInteger;
using sysfuncs::kInvalidNumber;

constexpr double kPriceFloor = 0.000001;  // a price below this is no price

// Prices read as the invalid number when the platform reports none; the cache keeps the raw value.
double ApplyZeroRule(const sysfuncs::QuoteField& row, double value) {
  return row.ZeroRule && value < kPriceFloor ? kInvalidNumber : value;
}

}  // namespace

const QXDataSource* SFImpl::FindDataSource(int32_t dataIndex) const {
  const std::vector<QXDataSource>* sources = m_pData->DataSources;
  if (sources == nullptr || dataIndex < 0 || static_cast<size_t>(dataIndex) >= sources->size()) {
    return nullptr;
  }
  return &(*sources)[dataIndex];
}

bool SFImpl::MakeSymbolKey(int32_t dataIndex, tagSymbol& key) const {
  const QXDataSource* source = FindDataSource(dataIndex);
  if (source == nullptr) return false;
  key = sysfuncs::MakeSymbolKey(*source);
  return true;
}

bool SFImpl::FetchQuote(int32_t dataIndex, Quill::ITickDeepLevel& quote) const {
  tagSymbol key;
  if (!MakeSymbolKey(dataIndex, key)) return false;
  CDataAdapter* adapter = sysfuncs::CurrentAdapter();
  return adapter != nullptr && adapter->GetMarketQuote(key, quote) != 0;
}

bool SFImpl::CurrentCodeID(Quill::ICodeID& codeId) const {
  tagSymbol key;
  CDataAdapter* adapter = sysfuncs::CurrentAdapter();
  if (adapter == nullptr || !MakeSymbolKey(m_pData->CurrentData, key)) return false;
  adapter->GetICodeID(key, codeId);
  return true;
}

bool SFImpl::QuoteDataExist() {
  Quill::ITickDeepLevel quote;
  return FetchQuote(m_pData->CurrentData, quote);
}

bool SFImpl::QuoteFieldValid(int32_t dataIndex, int32_t field) {
  const sysfuncs::QuoteField* row = sysfuncs::FindQuoteField(field);
  if (row == nullptr || !row->DayRule) return IsLastBar();
  const QXDataSource* source = FindDataSource(dataIndex);
  if (source == nullptr) return false;
  const std::vector<QXBar>& bars = source->Bars;
  const int32_t current = m_pData->CurrentBar;
  const int32_t last = m_pData->BarCount - 1;
  const auto count = static_cast<int64_t>(bars.size());
  if (current < 0 || last < 0 || current >= count || last >= count) return false;
  const int64_t currentTime = bars[current].Time;
  const int64_t lastTime = bars[last].Time;
  // A bar is on its own trading day; no calendar needed.
  if (currentTime == lastTime) return true;
  return sysfuncs::SameTradingDay(sysfuncs::InstantSeconds(currentTime),
                                  sysfuncs::InstantSeconds(lastTime));
}

double SFImpl::GetQuoteReal(int32_t field) {
  const sysfuncs::QuoteField* row = sysfuncs::FindQuoteField(field);
  if (row == nullptr) return kInvalidNumber;
  return QuoteReal(field, row->Name, sysfuncs::QuoteSlot(m_pData->CurrentData, field));
}

double SFImpl::GetQuoteReal(int32_t field, std::string_view name) {
  return QuoteReal(field, name, sysfuncs::kNoSlot);
}

double SFImpl::QuoteReal(int32_t field, std::string_view name, size_t slot) {
  const sysfuncs::QuoteField* row = sysfuncs::FindQuoteField(field);
  if (row == nullptr || row->Real == nullptr) return kInvalidNumber;
  if (!QuoteFieldValid(m_pData->CurrentData, field)) return kInvalidNumber;
  const CachedValue* entry = QuoteEntry(*row, name, slot);
  return ApplyZeroRule(*row, entry != nullptr ? entry->RealValue : kInvalidNumber);
}

const CachedValue* SFImpl::QuoteEntry(const sysfuncs::QuoteField& row, std::string_view name,
                                      size_t slot) {
  if (const CachedValue* hit = m_valueCache.FindSlot(slot)) return hit;
  const int32_t dataIndex = m_pData->CurrentData;
  const sysfuncs::CacheKey key = sysfuncs::CacheKey::OfDataSource(dataIndex, name);
  const CachedValue* entry = m_valueCache.Find(key.View());
  if (entry == nullptr) {
    if (row.Real != nullptr) {
      FetchQuoteReal(dataIndex, row.Number, key.View());
    } else {
      FetchQuoteInteger(dataIndex, row.Number, key.View());
    }
    entry = m_valueCache.Find(key.View());  // none when the fetch failed
  }
  m_valueCache.RememberSlot(slot, entry);
  return entry;
}

double SFImpl::FetchQuoteReal(int32_t dataIndex, int32_t field, std::string_view key) {
  const sysfuncs::QuoteField* row = sysfuncs::FindQuoteField(field);
  if (row == nullptr || row->Real == nullptr) return kInvalidNumber;
  Quill::ITickDeepLevel quote;
  if (!FetchQuote(dataIndex, quote)) return kInvalidNumber;  // asked again next time
  const double value = row->Real(quote);
  m_valueCache.InsertReal(key, value);
  return value;
}

int32_t SFImpl::GetQuoteInteger(int32_t field) {
  const sysfuncs::QuoteField* row = sysfuncs::FindQuoteField(field);
  if (row == nullptr) return kInvalidInteger;
  return QuoteInteger(field, row->Name, sysfuncs::QuoteSlot(m_pData->CurrentData, field));
}

int32_t SFImpl::GetQuoteInteger(int32_t field, std::string_view name) {
  return QuoteInteger(field, name, sysfuncs::kNoSlot);
}

int32_t SFImpl::QuoteInteger(int32_t field, std::string_view name, size_t slot) {
  const sysfuncs::QuoteField* row = sysfuncs::FindQuoteField(field);
  if (row == nullptr || row->Integer == nullptr) return kInvalidInteger;
  // The day rule is for real fields only.
  if (!IsLastBar()) return kInvalidInteger;
  const CachedValue* entry = QuoteEntry(*row, name, slot);
  return entry != nullptr ? entry->IntValue : kInvalidInteger;
}

int32_t SFImpl::FetchQuoteInteger(int32_t dataIndex, int32_t field, std::string_view key) {
  const sysfuncs::QuoteField* row = sysfuncs::FindQuoteField(field);
  if (row == nullptr || row->Integer == nullptr) return kInvalidInteger;
  Quill::ITickDeepLevel quote;
  if (!FetchQuote(dataIndex, quote)) return kInvalidInteger;  // asked again next time
  const int32_t value = row->Integer(quote);
  m_valueCache.InsertInteger(key, value);
  return value;
}

double SFImpl::GetDepthValue(int32_t level, int32_t side) {
  const int32_t dataIndex = m_pData->CurrentData;
  if (IsLastBar()) {
    sysfuncs::CacheKey key;
    key.Append("Data").Append(dataIndex).Append(".Q_BSType[").Append(level).Append(",");
    key.Append(side).Append("]");
    if (const CachedValue* cached = m_valueCache.Find(key.View())) return cached->RealValue;
    Quill::ITickDeepLevel quote;
    if (!FetchQuote(dataIndex, quote) || quote.DepthLevels.empty()) return kInvalidNumber;
    const auto levels = static_cast<int64_t>(quote.DepthLevels.size());
    const double value = level >= 0 && level < levels
                             ? sysfuncs::DepthValue(quote.DepthLevels[level], side)
                             : kInvalidNumber;
    m_valueCache.InsertReal(key.View(), value);
    return value;
  }
  // A historical bar of packed ticks carries the best bid and ask; the level does not matter.
  if (m_bTickPacked) {
    const QXDataSource* source = FindDataSource(dataIndex);
    const int32_t bar = m_pData->CurrentBar;
    if (source == nullptr) return kInvalidNumber;
    const std::vector<QXBar>& bars = source->Bars;
    if (bar < 0 || static_cast<size_t>(bar) >= bars.size()) return kInvalidNumber;
    return sysfuncs::PackedTickDepthValue(bars[bar].Low, bars[bar].High, side);
  }
  return kInvalidNumber;
}
