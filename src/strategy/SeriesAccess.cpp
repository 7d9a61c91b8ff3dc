// How the order engine reaches the series of the instance: contract terms, bars, ledgers and the
// per-series records of the host.
#include "strategy/SeriesAccess.h"

#include "sysfuncs/SFImpl.h"

#include "contract/PropertyNumbers.h"

#include <algorithm>

using sysfuncs::ContractTerms;

ContractTerms SFImpl::ListedTerms(int32_t dataIndex) {
  // A series whose properties cannot be obtained trades under the initial values of the main
  // series' cache; its invalid values would wreck the price and money rules.
  const SymbolPropertyList* list = ObtainSymbolPropertyList(dataIndex);
  if (list == nullptr || list->size() < static_cast<size_t>(sysfuncs::kPropertyCount)) {
    return ContractTerms{};
  }
  const SymbolPropertyList& properties = *list;
  ContractTerms terms;
  terms.MarginKind = properties[sysfuncs::kPropMarginKind].IntValue;
  terms.ContractSize = properties[sysfuncs::kPropContractSize].DoubleValue;
  terms.LotValue = properties[sysfuncs::kPropContractUnit].IntValue *
                   properties[sysfuncs::kPropBigPointValue].DoubleValue;
  terms.TickSize = properties[sysfuncs::kPropTickSize].DoubleValue;
  return terms;
}

sysfuncs::SeriesView SFImpl::SeriesOf(int32_t dataIndex) {
  return sysfuncs::SeriesView{m_pData->Ledgers[dataIndex], DataSource(dataIndex).Bars,
                              SeriesBar(dataIndex),        m_pData->CurrentBar,
                              TermsOf(dataIndex),          SinglePriceBars()};
}

sysfuncs::PriceLimits SFImpl::DayPriceLimits(int32_t dataIndex) {
  if (dataIndex == 0) return {m_dUpperLimit, m_dLowerLimit};
  return {GetQuoteReal(19, "Q_UpperLimit"), GetQuoteReal(20, "Q_LowerLimit")};
}

void SFImpl::CoverEverySeries() {
  const size_t count = static_cast<size_t>(std::max(m_pData->DataCount, 0));
  if (m_pData->Ledgers.size() < count) m_pData->Ledgers.resize(count);
  if (m_pData->CostSettings.size() < count) m_pData->CostSettings.resize(count);
}
