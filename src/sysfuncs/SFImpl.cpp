#include "sysfuncs/SFImpl.h"

#include "contract/PropertyNumbers.h"
#include "util/DisplayNames.h"

namespace {

// Quote fields of the day's price limits.
constexpr int32_t kUpperLimitField = 19;
constexpr int32_t kLowerLimitField = 20;

}  // namespace

SFImpl::SFImpl(CQXBaseData* data) : m_pData(data) {
  // A host that shares no account or symbol cache gets fresh ones in its data object.
  if (!data->Account) data->Account = new StrategyAccount();
  if (!data->Symbols) data->Symbols = new SymbolCache();
  m_spStrategyAccount = data->Account;
  m_spSymbolCache = data->Symbols;

  const bool hasMainSeries = data->DataSources != nullptr && !data->DataSources->empty();
  if (hasMainSeries) {
    const QXDataSource& main = DataSource(0);
    m_bTickPacked = main.BarType == 2 && main.BarInterval == 0;
    CachePrimarySymbol();
  }
  if (data->CurrentBar == 0) LoadRolloverLists();

  const sysfuncs::IdKey broker = sysfuncs::ParseIdKey(data->BrokerID);
  m_nBrokerNo = broker.id;
  m_strBrokerCode = broker.text;
  m_strAccountID = data->AccountID;
}

SFImpl::~SFImpl() = default;

void SFImpl::CachePrimarySymbol() {
  const int32_t savedData = m_pData->CurrentData;
  m_pData->CurrentData = 0;
  if (const SymbolPropertyList* list = ObtainSymbolPropertyList(0)) {
    const SymbolPropertyList& properties = *list;
    m_nProp24 = properties[sysfuncs::kPropMarginKind].IntValue;
    m_nContractUnit = properties[sysfuncs::kPropContractUnit].IntValue;
    m_dContractSize = properties[sysfuncs::kPropContractSize].DoubleValue;
    m_dBigPointValue = properties[sysfuncs::kPropBigPointValue].DoubleValue;
    m_nMinMove = properties[sysfuncs::kPropMinMove].IntValue;
    m_dPriceScale = properties[sysfuncs::kPropPriceScale].DoubleValue;
    m_dProp26 = properties[sysfuncs::kPropTickSize].DoubleValue;
    m_dPointValue = m_nContractUnit * m_dBigPointValue;
  }
  m_dUpperLimit = GetQuoteReal(kUpperLimitField, "Q_UpperLimit");
  m_dLowerLimit = GetQuoteReal(kLowerLimitField, "Q_LowerLimit");
  m_pData->CurrentData = savedData;
}
