// The host's platform services: the message centre's files, the profile store, and the adapter's
// symbol terms and quotes.
#include "sysfuncs/sysfuncs.h"

#include "qxrun/QxrunProcess.h"
#include "qxrun/host/FileAdapter.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"
#include "qxrun/host/ProfileStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <unistd.h>
#include <vector>

namespace qxrun_test {
namespace {

Quill::MsgRecord Record(const char* key, const char* text, int32_t kind = 1) {
  Quill::MsgRecord record;
  record.Kind = kind;
  std::strncpy(record.Key, key, sizeof(record.Key) - 1);
  std::strncpy(record.Text, text, sizeof(record.Text) - 1);
  return record;
}

TEST(MessageCentreTest, AppendsEachLineWithALineEndUnderTheBaseFolder) {
  ScratchFolder folder;
  folder.Write("a.txt", "earlier\n");
  qxrun::MessageCentre centre(folder.Path());
  // An absolute name short enough for a key.
  const std::string absolute = "/tmp/qxrun-mc-" + std::to_string(getpid()) + ".txt";
  const std::string absoluteKey = "FA[" + absolute + "]";
  const std::vector<Quill::MsgRecord> records = {
      Record("FA[a.txt]", "one"),           Record("FA[a.txt]", "two"),
      Record("FA[sub/b.txt]", "lost"),  // its folder does not exist
      Record("FA[c.txt]", "", 1),       // an empty line is still a line
      Record(absoluteKey.c_str(), "there"), Record("XX[d.txt]", "not a file key"),
      Record("FA[c.txt]", "skipped", 2),  // not a file-output record
  };
  EXPECT_EQ(centre.Receive(1, records.data(), records.size()), 4);
  EXPECT_EQ(ReadFile(folder.Path() / "a.txt"), "earlier\none\ntwo\n");
  EXPECT_EQ(ReadFile(folder.Path() / "c.txt"), "\n");
  EXPECT_EQ(ReadFile(absolute), "there\n");
  std::filesystem::remove(absolute);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "d.txt"));
  EXPECT_EQ(centre.FailedLines(), 2u);  // the lost line and the record without a file
  EXPECT_EQ(centre.Receive(2, records.data(), records.size()), 0);
}

TEST(MessageCentreTest, AKeyCutBeforeItsBracketStillNamesTheFile) {
  qxrun::MessageCentre centre("/base");
  EXPECT_EQ(centre.FileOfKey("FA[x.log]"), std::filesystem::path("/base/x.log"));
  // 31 characters: "FA[" + 28 characters of the name, the bracket cut off.
  EXPECT_EQ(centre.FileOfKey("FA[abcdefghijklmnopqrstuvwxyz12"),
            std::filesystem::path("/base/abcdefghijklmnopqrstuvwxyz12"));
  EXPECT_TRUE(centre.FileOfKey("FA[]").empty());
}

// FileAppend from a formula reaches its file under --out when the run ends.
TEST(MessageCentreTest, FileAppendOfARunLandsInTheOutputFolder) {
  ScratchFolder folder;
  folder.Write("a.csv",
               "Date,Open,High,Low,Close\n2006-01-02,1,2,0.5,1.5\n2006-01-03,1,2,0.5,1.5\n");
  std::filesystem::create_directories(folder.Path() / "out");
  qxrun::MessageCentre centre(folder.Path() / "out");
  CDataAdapter adapter;
  std::optional<qxrun::ModuleSession> module;
  module.emplace(centre, adapter, folder.Path().string(), "test");
  std::vector<QXDataSource> sources(1);
  sources[0].Bars.resize(2);
  CQXBaseData data;
  data.DataSources = &sources;
  data.DataCount = 1;
  data.BarCount = 2;
  data.Ledgers.resize(1);
  data.CostSettings.resize(1);
  data.SourceInfos.resize(1);
  {
    CSystemFuncs funcs(&data);
    funcs.FileAppend("log.txt", "bar 0");
    funcs.FileAppend("log.txt", "bar 1");
  }
  module.reset();  // the lines are in their file when the session ends
  EXPECT_EQ(ReadFile(folder.Path() / "out/log.txt"), "bar 0\nbar 1\n");
}

TEST(ProfileStoreTest, CreatedOnFirstUseAndKeepsValuesAcrossOpenings) {
  ScratchFolder folder;
  const std::filesystem::path user = folder.Path() / "user";
  {
    qxrun::ProfileStore store(user);
    EXPECT_FALSE(std::filesystem::exists(user));  // nothing before the first call
    EXPECT_FALSE(store.Get("qxlprofile", "s", "k").has_value());
    EXPECT_TRUE(std::filesystem::exists(store.File()));
    EXPECT_TRUE(store.Set("qxlprofile", "s", "k", "v1"));
    EXPECT_TRUE(store.Set("qxlprofile", "s", "k", "v2"));  // replaces
    EXPECT_TRUE(store.Set("qxlprofile", "s", "other", ""));
    EXPECT_TRUE(store.Set("another", "s", "k", "elsewhere"));
  }
  qxrun::ProfileStore again(user);
  EXPECT_EQ(again.Get("qxlprofile", "s", "k"), "v2");
  EXPECT_EQ(again.Get("qxlprofile", "s", "other"), "");
  EXPECT_EQ(again.Get("another", "s", "k"), "elsewhere");
  EXPECT_FALSE(again.Get("qxlprofile", "S", "k").has_value());  // sections are case-sensitive
}

TEST(FileAdapterTest, ReportsTheRunFileTermsAndTheSnapshotQuotes) {
  ScratchFolder folder;
  qxrun::SymbolSettings symbol;
  symbol.Terms.Market = 7;
  symbol.Terms.Code = "IF888";
  symbol.Terms.MinMove = 2;
  symbol.Terms.PriceScale = 0.1;
  symbol.Terms.BigPointValue = 300;
  symbol.Terms.ShortSelling = false;
  symbol.Terms.MarketOrders = true;
  symbol.Terms.StopOrders = false;
  const auto quotes = qxrun::LoadQuoteSnapshot(
      folder.Write("q.json", R"({"IF888": {"last": 3601.2, "upper_limit": 3900, "bids": [[3601, 5]],
                   "asks": [[3601.4, 2], [3601.6, 9]], "time": 1136163600000}})"));
  qxrun::FileAdapter adapter({symbol}, quotes, folder.Path());
  tagSymbol key;
  key.MarketId = 7;
  std::strcpy(key.Code, "IF888");
  Quill::ICodeProperty property;
  ASSERT_TRUE(adapter.GetSymbolProperty(key, property));
  EXPECT_EQ(property.MinMove, 2);
  EXPECT_FLOAT_EQ(property.PriceScale, 0.1f);
  EXPECT_FLOAT_EQ(property.BigPointValue, 300.0f);
  EXPECT_EQ(property.OrderFlags, 0x1u);     // market orders only
  EXPECT_EQ(property.TradeFlags, 0u);       // no short selling
  EXPECT_EQ(property.SymbolName, "IF888");  // no name given: the code
  key.MarketId = 8;
  EXPECT_FALSE(adapter.GetSymbolProperty(key, property));  // another market

  key.MarketId = 7;
  Quill::ITickDeepLevel quote;
  ASSERT_EQ(adapter.GetMarketQuote(key, quote), 1);
  EXPECT_DOUBLE_EQ(quote.LastPrice, 3601.2);
  EXPECT_DOUBLE_EQ(quote.UpperLimit, 3900);
  EXPECT_EQ(quote.TimeStamp, 1136163600000);
  ASSERT_EQ(quote.DepthLevels.size(), 2u);
  EXPECT_DOUBLE_EQ(quote.DepthLevels[0].BidPrice, 3601);
  EXPECT_DOUBLE_EQ(quote.DepthLevels[1].AskVolume, 9);
  EXPECT_DOUBLE_EQ(quote.DepthLevels[1].BidPrice, 0);  // no second bid level

  std::string value = "untouched";
  EXPECT_FALSE(adapter.GetConfigFileProperty("qxlprofile", "s", "k", value));
  EXPECT_EQ(value, "untouched");
  adapter.SetConfigFileProperty("qxlprofile", "s", "k", "kept");
  EXPECT_TRUE(adapter.GetConfigFileProperty("qxlprofile", "s", "k", value));
  EXPECT_EQ(value, "kept");
}

}  // namespace
}  // namespace qxrun_test
