// The exchanges the platform knows, the symbol categories and the period codes.
//
// The tables are process-wide, built on first use from any thread, and never change afterwards.
#ifndef SYSFUNCS_CONTRACT_MARKET_TABLE_H_
#define SYSFUNCS_CONTRACT_MARKET_TABLE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace sysfuncs {

struct MarketInfo {
  int32_t MarketId;
  std::string Code;       // "SHFE"
  std::string Name;       // "上海期货交易所"
  std::string ShortName;  // "上期"
};

// Every market in display order (not in MarketId order). Market 37 is unassigned.
const std::vector<MarketInfo>& GetMarketTable();

// Fields of the first market with the number; "" when none has it.
std::string GetMarketName(int32_t marketId);
std::string GetMarketShortName(int32_t marketId);
std::string GetMarketCode(int32_t marketId);

// "证券", "期货", ... for categories 0 to 8; "未知" for any other.
std::string GetSymbolCategoryName(int32_t category);

// The code of a period number ("tick", "m1", "d1", ...); "" for an unknown number.
std::string GetPeriodCode(int32_t period);

}  // namespace sysfuncs

#endif  // SYSFUNCS_CONTRACT_MARKET_TABLE_H_
