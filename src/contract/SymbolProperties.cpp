// Symbol property lists of the data sources: built from the platform's contract record, cached
// in the host-shared symbol cache and read by number.
#include "sysfuncs/SFImpl.h"

#include "contract/MarketTable.h"
#include "contract/PropertyNumbers.h"
#include "contract/Sessions.h"
#include "contract/SymbolKey.h"
#include "util/DisplayNames.h"

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

using namespace sysfuncs;

namespace {

enum PropertyKind : uint32_t { kBoolKind = 1, kDoubleKind = 4, kStringKind = 7, kIntKind = 10 };

// Appends entries in property-number order.
class ListWriter {
 public:
  explicit ListWriter(SymbolPropertyList& list) : list_(list) {}
  void Bool(bool value) { Add(kBoolKind).BoolValue = value; }
  void Double(double value) { Add(kDoubleKind).DoubleValue = value; }
  void String(std::string value) { Add(kStringKind).StringValue = std::move(value); }
  void Int(int32_t value) { Add(kIntKind).IntValue = value; }

 private:
  SymbolPropertyItem& Add(uint32_t kind) {
    SymbolPropertyItem& item = list_.emplace_back();
    item.Kind = kind;
    return item;
  }
  SymbolPropertyList& list_;
};

// Option type (0 put, 1 call), style (1 American, 0 European) and strike of an option
// descriptor "OT:C|OS:A|SP:3500|..."; a descriptor of fewer than four fields is no option.
struct OptionTerms {
  int32_t type = 0;
  int32_t style = 0;
  double strike = 0.0;
};

OptionTerms ReadOptionTerms(const std::string& descriptor) {
  OptionTerms terms;
  const std::vector<std::string> fields = SplitText(descriptor, '|');
  if (fields.size() < 4) return terms;
  if (fields[0] == "OT:C") terms.type = 1;
  if (fields[1] == "OS:A") terms.style = 1;
  if (fields[2].size() > 3) terms.strike = std::strtod(fields[2].c_str() + 3, nullptr);
  return terms;
}

// The list of the data source, loaded from the adapter and stored in the shared cache in place
// of the one there; null when the adapter does not know the symbol (nothing is stored).
const SymbolPropertyList* LoadIntoCache(SFImpl& impl, int32_t dataIndex) {
  SymbolPropertyList fresh;
  if (!impl.GetSymbolPropertyList(dataIndex, fresh)) return nullptr;
  std::vector<SymbolPropertyList>& lists = impl.m_spSymbolCache->Properties;
  if (lists.size() <= static_cast<size_t>(dataIndex)) lists.resize(dataIndex + 1);
  lists[dataIndex] = std::move(fresh);
  return &lists[dataIndex];
}

// Entry `id` of the current data source's list; null when the list cannot be obtained. The
// cached path allocates nothing.
const SymbolPropertyItem* FindProperty(SFImpl& impl, int32_t id) {
  if (id < 0 || id >= kPropertyCount) return nullptr;
  const int32_t dataIndex = impl.m_pData->CurrentData;
  const std::vector<SymbolPropertyList>& lists = impl.m_spSymbolCache->Properties;
  const SymbolPropertyList* list = nullptr;
  if (static_cast<size_t>(dataIndex) < lists.size() &&
      static_cast<size_t>(id) < lists[dataIndex].size()) {
    list = &lists[dataIndex];
  } else {
    list = LoadIntoCache(impl, dataIndex);
  }
  return list != nullptr && static_cast<size_t>(id) < list->size() ? &(*list)[id] : nullptr;
}

}  // namespace

bool SFImpl::GetSymbolPropertyList(int32_t dataIndex, SymbolPropertyList& list) {
  const QXDataSource& source = DataSource(dataIndex);
  CDataAdapter* adapter = CurrentAdapter();  // none before the module starts: nothing is known
  if (adapter == nullptr) return false;
  Quill::ICodeProperty property;
  if (!adapter->GetSymbolProperty(sysfuncs::MakeSymbolKey(source), property)) return false;
  const std::vector<SourceInfo>& infos = m_pData->SourceInfos;
  const double marginRatio =
      static_cast<size_t>(dataIndex) < infos.size() ? infos[dataIndex].MarginRatio : 0.0;
  // The tick size carries exactly six decimals: 1 x 0.01f reads 0.01, not 0.0099999998.
  const float tickSize = static_cast<float>(property.MinMove) * property.PriceScale;
  const OptionTerms option = ReadOptionTerms(property.OptionDescriptor);

  list.clear();
  list.reserve(kPropertyCount);
  ListWriter add(list);
  add.Int(static_cast<int32_t>(source.BarInterval));      // 0
  add.Int(static_cast<int32_t>(source.BarType));          // 1
  add.Bool((property.OrderFlags & 0x1) != 0);             // 2 market orders
  add.Bool((property.TradeFlags & 0xC) != 0);             // 3 short selling: bit 2 or 3
  add.Bool((property.OrderFlags & 0x2) != 0);             // 4 stop orders
  add.Bool(property.Tradable);                            // 5
  add.Double(0.0);                                        // 6 contract size: not given
  add.String(property.CurrencyName);                      // 7
  add.String(property.CurrencySymbol);                    // 8
  add.String(GetMarketName(property.MarketId));           // 9
  add.String(property.ExpiryDate);                        // 10
  add.Double(0.0);                                        // 11 margins are not taken from
  add.Double(0.0);                                        // 12 the symbol record
  add.Int(property.MaxSingleTradeSize);                   // 13
  add.Int(property.MinMove);                              // 14
  add.Double(property.PriceScale);                        // 15
  add.String(property.SymbolName);                        // 16
  add.String(property.SecondName);                        // 17
  add.String(NormalizeSymbolCode(0, source.Symbol));      // 18
  add.Int(property.Category);                             // 19
  add.Int(property.BidAskSize);                           // 20
  add.Int(property.ContractUnit);                         // 21
  add.Double(property.BigPointValue);                     // 22
  add.Double(marginRatio);                                // 23
  add.Int(property.MarginKind);                           // 24
  add.String(property.RelativeSymbol);                    // 25
  add.Double(RoundToSixDecimals(tickSize));               // 26
  add.Double(static_cast<float>(property.ContractUnit));  // 27
  add.Int(CountSessions(property.Sessions));              // 28
  add.String(property.Sessions);                          // 29
  add.Int(option.type);                                   // 30
  add.Int(option.style);                                  // 31
  add.Double(option.strike);                              // 32
  return true;
}

const SymbolPropertyList* SFImpl::ObtainSymbolPropertyList(int32_t dataIndex) {
  const std::vector<SymbolPropertyList>& lists = m_spSymbolCache->Properties;
  if (static_cast<size_t>(dataIndex) < lists.size() && !lists[dataIndex].empty()) {
    return &lists[dataIndex];
  }
  return LoadIntoCache(*this, dataIndex);
}

int32_t SFImpl::GetIntProperty(int32_t id) {
  const SymbolPropertyItem* item = FindProperty(*this, id);
  return item != nullptr ? item->IntValue : kInvalidInteger;
}

double SFImpl::GetDoubleProperty(int32_t id) {
  const SymbolPropertyItem* item = FindProperty(*this, id);
  return item != nullptr ? item->DoubleValue : kInvalidNumber;
}

bool SFImpl::GetBoolProperty(int32_t id) {
  const SymbolPropertyItem* item = FindProperty(*this, id);
  return item != nullptr && item->BoolValue;
}

std::string SFImpl::GetStringProperty(int32_t id) {
  const SymbolPropertyItem* item = FindProperty(*this, id);
  return item != nullptr ? item->StringValue : std::string();
}
