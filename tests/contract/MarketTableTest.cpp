#include "contract/MarketTable.h"

#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace sysfuncs {
namespace {

// Defined first so that it runs while the tables are still unbuilt.
TEST(MarketTableTest, ConcurrentFirstUseSharesOneTable) {
  constexpr int kThreads = 8;
  std::latch start(kThreads);
  std::vector<const std::vector<MarketInfo>*> tables(kThreads);
  std::vector<std::string> periodCodes(kThreads);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      if (i % 2 == 0) {
        tables[i] = &GetMarketTable();
        periodCodes[i] = GetPeriodCode(4);
      } else {
        periodCodes[i] = GetPeriodCode(4);
        tables[i] = &GetMarketTable();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < kThreads; ++i) {
    EXPECT_EQ(tables[i], &GetMarketTable()) << "thread " << i;
    EXPECT_EQ(periodCodes[i], "m15") << "thread " << i;
  }
  EXPECT_EQ(GetMarketTable().size(), 39u);
}

TEST(MarketTableTest, RowsComeInDisplayOrder) {
  const int32_t expectedIds[] = {0,  1,  2,  3,  4,  39, 35, 5,  6,  38, 36, 9,  31,
                                 10, 12, 11, 27, 18, 24, 25, 17, 32, 20, 19, 30, 15,
                                 13, 16, 14, 28, 33, 21, 22, 23, 29, 7,  8,  26, 34};
  const std::vector<MarketInfo>& markets = GetMarketTable();
  ASSERT_EQ(markets.size(), std::size(expectedIds));
  for (size_t i = 0; i < markets.size(); ++i) {
    EXPECT_EQ(markets[i].MarketId, expectedIds[i]) << "row " << i;
  }
  EXPECT_EQ(markets.front().Code, "SHFE");
  EXPECT_EQ(markets[5].Code, "GFEX");
  EXPECT_EQ(markets.back().Code, "WORLDINDEX");
}

TEST(MarketTableTest, LookupsByMarketNumber) {
  const struct {
    int32_t marketId;
    std::string code;
    std::string name;
    std::string shortName;
  } rows[] = {
      {0, "SHFE", "上海期货交易所", "上期"},
      {4, "SHFE2", "上海国际能源交易中心", "上期能源"},
      {39, "GFEX", "广州期货交易所", "广期"},
      {13, "HKFE", "香港交易所", "HKEX"},
      {25, "NASDAQ", "纳斯达克", "NASDAQ"},
      {8, "SGE", "上海黄金交易所", "沪金"},
      {34, "WORLDINDEX", "全球指数", "INDEX"},
      {37, "", "", ""},  // unassigned
      {-1, "", "", ""},
      {40, "", "", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetMarketCode(row.marketId), row.code) << row.marketId;
    EXPECT_EQ(GetMarketName(row.marketId), row.name) << row.marketId;
    EXPECT_EQ(GetMarketShortName(row.marketId), row.shortName) << row.marketId;
  }
}

TEST(MarketTableTest, NamesAreGbkBytes) {
  EXPECT_EQ(GetMarketName(13), "\xCF\xE3\xB8\xDB\xBD\xBB\xD2\xD7\xCB\xF9");  // 香港交易所
  EXPECT_EQ(GetMarketShortName(0), "\xC9\xCF\xC6\xDA");                      // 上期
}

TEST(MarketTableTest, SymbolCategoryNames) {
  const struct {
    int32_t category;
    std::string expected;
  } rows[] = {
      {0, "证券"},     {1, "期货"}, {5, "期权"},  {7, "外盘期货"},
      {8, "外盘证券"}, {9, "未知"}, {-1, "未知"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetSymbolCategoryName(row.category), row.expected) << row.category;
  }
}

TEST(MarketTableTest, PeriodCodes) {
  const struct {
    int32_t period;
    std::string expected;
  } rows[] = {
      {0, "tick"}, {1, "s10"}, {5, "m30"}, {6, "h1"}, {10, "mon1"},
      {11, "sn"},  {12, "mn"}, {13, ""},   {-1, ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(GetPeriodCode(row.period), row.expected) << row.period;
  }
}

}  // namespace
}  // namespace sysfuncs
