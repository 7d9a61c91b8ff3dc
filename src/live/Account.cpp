// The bound account: summary figures (a failed query is asked again) and the position in the
// current data source's symbol (a failed query reads 0 for the life of the instance).
#include "live/Account.h"

#include "sysfuncs/SFImpl.h"

#include "contract/SymbolKey.h"

namespace sysfuncs {
namespace {

using Summary = Quill::ITradeAcctSummary;
using Position = Quill::ITradePosition;

// Lot counts are whole numbers in the platform's record.
double Lots(int64_t lots) { return static_cast<double>(lots); }

}  // namespace

const std::array<AccountField, 8> kAccountFields = {{
    {kAccountPreviousEquity, "A_PreviousEquity", &Summary::PreviousEquity},
    {kAccountProfitLoss, "A_ProfitLoss", &Summary::ProfitLoss},
    {kAccountCurrentEquity, "A_CurrentEquity", &Summary::CurrentEquity},
    {kAccountFreeMargin, "A_FreeMargin", &Summary::FreeMargin},
    {kAccountTotalFreeze, "A_TotalFreeze", &Summary::TotalFreeze},
    {kAccountTotalMargin, "A_TotalMargin", &Summary::TotalMargin},
    {kAccountTodayDeposit, "A_TodayDeposit", &Summary::TodayDeposit},
    {kAccountTodayDrawing, "A_TodayDrawing", &Summary::TodayDrawing},
}};

// clang-format off
const std::array<PositionField, 11> kPositionFields = {{
    {kPositionBuyPosition, "A_BuyPosition", [](const Position& p) { return Lots(p.BuyPosition); }},
    {kPositionBuyAvgPrice, "A_BuyAvgPrice", [](const Position& p) { return p.BuyAvgPrice; }},
    {kPositionBuyProfitLoss, "A_BuyProfitLoss", [](const Position& p) { return p.BuyProfitLoss; }},
    {kPositionTodayBuyPosition, "A_TodayBuyPosition",
     [](const Position& p) { return Lots(p.TodayBuyPosition); }},
    {kPositionSellPosition, "A_SellPosition",
     [](const Position& p) { return Lots(p.SellPosition); }},
    {kPositionSellAvgPrice, "A_SellAvgPrice", [](const Position& p) { return p.SellAvgPrice; }},
    {kPositionSellProfitLoss, "A_SellProfitLoss",
     [](const Position& p) { return p.SellProfitLoss; }},
    {kPositionTodaySellPosition, "A_TodaySellPosition",
     [](const Position& p) { return Lots(p.TodaySellPosition); }},
    {kPositionTotalPosition, "A_TotalPosition",
     [](const Position& p) { return Lots(p.TotalPosition); }},
    {kPositionTotalAvgPrice, "A_TotalAvgPrice", [](const Position& p) { return p.TotalAvgPrice; }},
    {kPositionProfitLoss, "A_PositionProfitLoss",
     [](const Position& p) { return p.BuyProfitLoss + p.SellProfitLoss; }},
}};
// clang-format on

}  // namespace sysfuncs

double SFImpl::GetAccountValue(int32_t number) {
  if (number < 0 || number >= static_cast<int32_t>(sysfuncs::kAccountFields.size())) {
    return sysfuncs::kInvalidNumber;
  }
  if (!AccountDataExist()) return sysfuncs::kInvalidNumber;
  const sysfuncs::AccountField& row = sysfuncs::kAccountFields[number];
  const size_t slot = sysfuncs::AccountSlot(number);
  if (const CachedValue* hit = m_valueCache.FindSlot(slot)) return hit->RealValue;
  // The account does not depend on the data source: the name alone is the key.
  if (const CachedValue* cached = m_valueCache.Find(row.Name)) {
    m_valueCache.RememberSlot(slot, cached);
    return cached->RealValue;
  }
  CDataAdapter* adapter = sysfuncs::CurrentAdapter();
  Quill::ITradeAcctSummary summary;
  if (adapter == nullptr || adapter->GetAccountSummary(m_nBrokerNo, m_strAccountID, summary) == 0) {
    return sysfuncs::kInvalidNumber;  // asked again next time
  }
  const double value = summary.*row.Value;
  m_valueCache.InsertReal(row.Name, value);
  m_valueCache.RememberSlot(slot, m_valueCache.Find(row.Name));
  return value;
}

double SFImpl::GetPositionValue(int32_t number) {
  if (number < 0 || number >= static_cast<int32_t>(sysfuncs::kPositionFields.size())) {
    return sysfuncs::kInvalidNumber;
  }
  if (!AccountDataExist()) return sysfuncs::kInvalidNumber;
  const sysfuncs::PositionField& row = sysfuncs::kPositionFields[number];
  const size_t slot = sysfuncs::PositionSlot(m_pData->CurrentData, number);
  if (const CachedValue* hit = m_valueCache.FindSlot(slot)) return hit->RealValue;
  const sysfuncs::CacheKey key = sysfuncs::CacheKey::OfDataSource(m_pData->CurrentData, row.Name);
  if (const CachedValue* cached = m_valueCache.Find(key.View())) {
    m_valueCache.RememberSlot(slot, cached);
    return cached->RealValue;
  }
  Quill::ICodeID codeId;
  Quill::ITradePosition position;
  const bool fetched =
      CurrentCodeID(codeId) &&
      sysfuncs::CurrentAdapter()->GetPosition(m_nBrokerNo, m_strAccountID, codeId, position) != 0;
  // A failed position query reads as no position and is not asked again.
  const double value = fetched ? row.Read(position) : 0.0;
  m_valueCache.InsertReal(key.View(), value);
  m_valueCache.RememberSlot(slot, m_valueCache.Find(key.View()));
  return value;
}
