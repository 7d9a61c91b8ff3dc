#include "contract/MarketTable.h"

#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace sysfuncs {
namespace {

// Defined first so that it runs while the tables are still unbuilt.
TEST(MarketTable, ConcurrentFirstUseSharesOneTable) {
  constexpr int kThreads = 8;
  std::latch start(kThreads);
  std::vector<const std::vector<MarketInfo>*> tables(kThreads);
  std::vector<std::string> periodCodes(kThreads);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      if (i % 2 == 0) tables[i] = &GetMarketTable();  // half build the period map first
      periodCodes[i] = GetPeriodCode(4);
      if (i % 2 == 1) tables[i] = &GetMarketTable();
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < kThreads; ++i) {
    EXPECT_EQ(tables[i], &GetMarketTable()) << "thread " << i;
    EXPECT_EQ(periodCodes[i], "m15") << "thread " << i;
  }
}

TEST(MarketTable, RowsComeInDisplayOrder) {
  const int32_t ids[] = {0,  1,  2,  3,  4,  39, 35, 5,  6,  38, 36, 9,  31,
                         10, 12, 11, 27, 18, 24, 25, 17, 32, 20, 19, 30, 15,
                         13, 16, 14, 28, 33, 21, 22, 23, 29, 7,  8,  26, 34};
  const std::vector<MarketInfo>& markets = GetMarketTable();
  ASSERT_EQ(markets.size(), 39u);
  for (size_t i = 0; i < markets.size(); ++i) EXPECT_EQ(markets[i].MarketId, ids[i]) << "row " << i;
}

TEST(MarketTable, LookupsByMarketNumber) {
  const struct {
    int32_t marketId;
    std::string code, name, shortName;
  } rows[] = {
      {0, "SHFE", "上海期货交易所", "上期"},
      {4, "SHFE2", "上海国际能源交易中心", "上期能源"},
      {13, "HKFE", "香港交易所", "HKEX"},  // the short name is not the code
      {34, "WORLDINDEX", "全球指数", "INDEX"},
      {37, "", "", ""},  // unassigned
      {40, "", "", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetMarketCode(row.marketId), row.code) << row.marketId;
    EXPECT_EQ(GetMarketName(row.marketId), row.name) << row.marketId;
    EXPECT_EQ(GetMarketShortName(row.marketId), row.shortName) << row.marketId;
  }
}

#if defined(SYSFUNCS_CHARSET_GB18030)
TEST(MarketTable, NamesAreGbkBytes) {
  EXPECT_EQ(GetMarketName(13), "\xCF\xE3\xB8\xDB\xBD\xBB\xD2\xD7\xCB\xF9");  // 香港交易所
}
#endif

TEST(MarketTable, CategoryNamesAndPeriodCodes) {
  const struct {
    int32_t number;
    std::string category, period;
  } rows[] = {
      {0, "证券", "tick"},   {1, "期货", "s10"}, {5, "期权", "m30"},   {6, "现货", "h1"},
      {8, "外盘证券", "d1"}, {9, "未知", "w1"},  {10, "未知", "mon1"}, {12, "未知", "mn"},
      {13, "未知", ""},      {-1, "未知", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetSymbolCategoryName(row.number), row.category) << row.number;
    EXPECT_EQ(GetPeriodCode(row.number), row.period) << row.number;
  }
}

}  // namespace
}  // namespace sysfuncs
