#include "contract/MarketTable.h"

#include <IceUtil/RecMutex.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>

namespace sysfuncs {
namespace {

struct MarketRow {
  int32_t marketId;
  const char* code;
  const char* name;
  const char* shortName;
};

constexpr MarketRow kMarkets[] = {
    {0, "SHFE", "上海期货交易所", "上期"},
    {1, "DCE", "大连商品交易所", "大商"},
    {2, "ZCE", "郑州商品交易所", "郑商"},
    {3, "CFFE", "中国金融期货交易所", "中金"},
    {4, "SHFE2", "上海国际能源交易中心", "上期能源"},
    {39, "GFEX", "广州期货交易所", "广期"},
    {35, "QXFT", "星澜期货指数", "QXFT"},
    {5, "SSE", "上海证券交易所", "上证"},
    {6, "SZSE", "深圳证券交易所", "深证"},
    {38, "BSE", "北京证券交易所", "北证"},
    {36, "QXST", "星澜证券指数", "QXST"},
    {9, "CBOT", "芝加哥期货交易所", "CBOT"},
    {31, "ECBOT", "芝加哥电子商品交易所", "ECBOT"},
    {10, "CME", "芝加哥商业交易所", "CME"},
    {12, "NYMEX", "纽约商品交易所", "NYMEX"},
    {11, "NYBOT", "纽约期货交易所", "NYBOT"},
    {27, "COMEX", "纽约金属交易所", "COMEX"},
    {18, "ICE", "洲际交易所", "ICE"},
    {24, "NYSE", "纽约证券交易所", "NYSE"},
    {25, "NASDAQ", "纳斯达克", "NASDAQ"},
    {17, "LME", "伦敦金属交易所", "LME"},
    {32, "IPE", "伦敦国际石油交易所", "IPE"},
    {20, "LIFFE", "伦敦国际金融交易所", "LIFFE"},
    {19, "EUREX", "欧洲期货交易所", "EUREX"},
    {30, "JPE", "日本交易所", "JPE"},
    {15, "TOCOM", "东京商品交易所", "TOCOM"},
    {13, "HKFE", "香港交易所", "HKEX"},  // the short name is not the code
    {16, "KSE", "韩国证券交易所", "KSE"},
    {14, "SGX", "新加坡交易所", "SGX"},
    {28, "APEX", "新加坡亚太交易所", "APEX"},
    {33, "OSE", "大阪证券交易所", "OSE"},
    {21, "BMD", "马来西亚交易所", "BMD"},
    {22, "SFE", "悉尼期货交易所", "SFE"},
    {23, "TFEX", "泰国期货交易所", "TFEX"},
    {29, "DME", "迪拜商品交易所", "DME"},
    {7, "BOCE", "渤海商品交易所", "渤海"},
    {8, "SGE", "上海黄金交易所", "沪金"},
    {26, "FOREX", "外汇市场", "FOREX"},
    {34, "WORLDINDEX", "全球指数", "INDEX"},
};

constexpr const char* kCategoryNames[] = {
    "证券", "期货", "外汇", "债券", "基金", "期权", "现货", "外盘期货", "外盘证券",
};

struct PeriodRow {
  int32_t period;
  const char* code;
};

constexpr PeriodRow kPeriods[] = {
    {0, "tick"}, {1, "s10"}, {2, "m1"}, {3, "m5"},    {4, "m15"}, {5, "m30"}, {6, "h1"},
    {7, "h4"},   {8, "d1"},  {9, "w1"}, {10, "mon1"}, {11, "sn"}, {12, "mn"},
};

// The shared tables. Each `ready` flag is published after its table is filled, so a reader that
// sees it set reads a complete table without taking the mutex.
struct Tables {
  IceUtil::RecMutex mutex;
  std::atomic<bool> marketsReady{false};
  std::vector<MarketInfo> markets;
  std::atomic<bool> periodsReady{false};
  std::map<int32_t, std::string> periods;
};

Tables& GetTables() {
  static Tables tables;
  return tables;
}

const std::map<int32_t, std::string>& GetPeriodMap() {
  Tables& tables = GetTables();
  if (tables.periodsReady.load(std::memory_order_acquire)) return tables.periods;
  IceUtil::RecMutex::Lock lock(tables.mutex);
  if (tables.periods.empty()) {
    for (const PeriodRow& row : kPeriods) tables.periods.emplace(row.period, row.code);
    tables.periodsReady.store(true, std::memory_order_release);
  }
  return tables.periods;
}

const MarketInfo* FindMarket(int32_t marketId) {
  const std::vector<MarketInfo>& markets = GetMarketTable();
  const auto market = std::find_if(markets.begin(), markets.end(), [marketId](const MarketInfo& m) {
    return m.MarketId == marketId;
  });
  return market == markets.end() ? nullptr : &*market;
}

}  // namespace

const std::vector<MarketInfo>& GetMarketTable() {
  Tables& tables = GetTables();
  if (tables.marketsReady.load(std::memory_order_acquire)) return tables.markets;
  IceUtil::RecMutex::Lock lock(tables.mutex);
  if (tables.markets.empty()) {
    tables.markets.reserve(std::size(kMarkets));
    for (const MarketRow& row : kMarkets) {
      tables.markets.push_back({row.marketId, row.code, row.name, row.shortName});
    }
    tables.marketsReady.store(true, std::memory_order_release);
  }
  return tables.markets;
}

std::string GetMarketName(int32_t marketId) {
  const MarketInfo* market = FindMarket(marketId);
  return market != nullptr ? market->Name : "";
}

std::string GetMarketShortName(int32_t marketId) {
  const MarketInfo* market = FindMarket(marketId);
  return market != nullptr ? market->ShortName : "";
}

std::string GetMarketCode(int32_t marketId) {
  const MarketInfo* market = FindMarket(marketId);
  return market != nullptr ? market->Code : "";
}

std::string GetSymbolCategoryName(int32_t category) {
  const bool known = category >= 0 && category < static_cast<int32_t>(std::size(kCategoryNames));
  return known ? kCategoryNames[category] : "未知";
}

std::string GetPeriodCode(int32_t period) {
  const std::map<int32_t, std::string>& periods = GetPeriodMap();
  const auto found = periods.find(period);
  return found != periods.end() ? found->second : "";
}

}  // namespace sysfuncs
