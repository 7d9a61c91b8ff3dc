// What the contract subsystem hands to the platform adapter: the key of a data source's symbol,
// and the adapter itself.
#ifndef SYSFUNCS_CONTRACT_SYMBOL_KEY_H_
#define SYSFUNCS_CONTRACT_SYMBOL_KEY_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/Environment.h"
#include "sysfuncs/HostData.h"

namespace sysfuncs {

// Market number and code of a data source; a longer code is cut to 31 characters.
inline tagSymbol MakeSymbolKey(const QXDataSource& source) {
  tagSymbol key;
  key.MarketId = static_cast<uint16_t>(source.MarketId);
  source.Symbol.copy(key.Code, sizeof key.Code - 1);  // Code starts zeroed: stays terminated
  return key;
}

// The platform's adapter as it stands now; null before the module is started. Taken anew at
// every use, since the platform may start the module after an instance was built.
inline CDataAdapter* CurrentAdapter() { return CurrentSFEnv().m_pDataAdapter; }

}  // namespace sysfuncs

#endif  // SYSFUNCS_CONTRACT_SYMBOL_KEY_H_
