#include "sysfuncs/SFImpl.h"

#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace sysfuncs::testing {
namespace {

TEST(Construction, RunStartEmptiesSavedOrdersOnlyAtBarZero) {
  struct Row {
    int32_t bar;
    size_t savedLeft;
  } rows[] = {{0, 0}, {2, 1}, {-1, 1}};
  for (const Row& row : rows) {
    TestHost host;
    host.AddSource("s", EvenBars(0, 60000, 3));
    host.At(0, row.bar);
    host.data.SavedOrders.push_back(OrderRecord{});
    CSystemFuncs funcs(&host.data);
    EXPECT_EQ(host.data.SavedOrders.size(), row.savedLeft) << "CurrentBar " << row.bar;
  }
}

TEST(Construction, TakesCountedReferencesToTheHostsSharedObjects) {
  {
    TestHost bare;  // a host that shares none is given fresh ones
    bare.AddSource("s", EvenBars(0, 60000, 3));
    CSystemFuncs funcs(&bare.data);
    ASSERT_TRUE(bare.data.Account && bare.data.Symbols);
    EXPECT_EQ(bare.data.Account->__getRef(), 2);
  }
  TestHost host;
  host.AddSource("s", EvenBars(0, 60000, 3));
  host.data.Account = new StrategyAccount();
  host.data.Symbols = new SymbolCache();
  StrategyAccount* account = host.data.Account.get();
  {
    CSystemFuncs funcs(&host.data);
    EXPECT_EQ(host.data.Account.get(), account);
    EXPECT_EQ(account->__getRef(), 2);
    EXPECT_EQ(host.data.Symbols->__getRef(), 2);
  }
  EXPECT_EQ(account->__getRef(), 1);
  EXPECT_EQ(host.data.Symbols->__getRef(), 1);
}

TEST(Construction, EveryConstructionReseedsTheRandomGeneratorFromTheClock) {
  TestHost host;
  host.AddSource("s", EvenBars(0, 60000, 3));
  int64_t now = 1700000000000;
  SysFuncsPlatform clock;
  clock.Now = [&now] { return now; };
  ScopedPlatform platform(clock);

  auto firstDrawAfterConstruction = [&host] {
    CSystemFuncs funcs(&host.data);
    return std::rand();
  };
  const int first = firstDrawAfterConstruction();
  std::rand();
  now += 999;  // the same second: the same seed
  EXPECT_EQ(firstDrawAfterConstruction(), first);
  std::srand(1);
  now = 1700000000000;
  EXPECT_EQ(firstDrawAfterConstruction(), first);
}

TEST(Construction, BrokerKeyIsSplitIntoNumberAndCode) {
  struct Row {
    const char* key;
    int32_t number;
    const char* code;
  } rows[] = {
      {"8|abc", 8, "abc"}, {"8", 0, ""}, {"8|a|b", 0, ""}, {"", 0, ""}, {"x|abc", 0, "abc"}};
  for (const Row& row : rows) {
    TestHost host;
    host.AddSource("s", EvenBars(0, 60000, 3));
    host.data.BrokerID = row.key;
    host.data.AccountID = "10001";
    SFImpl impl(&host.data);
    EXPECT_EQ(impl.m_nBrokerNo, row.number) << row.key;
    EXPECT_EQ(impl.m_strBrokerCode, row.code) << row.key;
    EXPECT_EQ(impl.m_strAccountID, "10001");
  }
}

}  // namespace
}  // namespace sysfuncs::testing
