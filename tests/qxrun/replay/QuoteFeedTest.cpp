// The quote a replay hands to the adapter, and what the quote functions answer from it on the
// newest bar.
#include "qxrun/QxrunProcess.h"
#include "qxrun/broker/BrokerAdapter.h"
#include "qxrun/host/FileAdapter.h"
#include "qxrun/host/HostRun.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"
#include "qxrun/replay/QuoteFeed.h"
#include "qxrun/replay/ReplayLoop.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

namespace qxrun {
namespace {

using sysfuncs::testing::MakeBar;
using sysfuncs::testing::ShanghaiInstant;

FeedSettings Settings(int32_t spread) {
  FeedSettings settings;
  settings.Code = "IF";
  settings.TickSize = 0.2;
  settings.SpreadTicks = spread;
  settings.LotValue = 300;
  settings.Constants.UpperLimit = 4000;
  settings.Constants.LowerLimit = 3000;
  return settings;
}

TEST(QuoteFeedTest, SnapshotFollowsTheTicksOfTheDay) {
  QuoteFeed feed(Settings(2));
  // History bar of the same trading day (10:00), then three ticks.
  feed.AddBar(MakeBar(ShanghaiInstant(2006, 1, 4, 10, 0), 3500, 3510, 3490, 3505, 10, 100));
  feed.AddTick({ShanghaiInstant(2006, 1, 4, 10, 1), 3512, 2}, 101);
  feed.AddTick({ShanghaiInstant(2006, 1, 4, 10, 2), 3488, 3}, 101);
  feed.AddTick({ShanghaiInstant(2006, 1, 4, 10, 3), 3488, 1}, 99);
  const Quill::ITickDeepLevel& q = feed.Snapshot();
  EXPECT_EQ(q.OpenPrice, 3500);
  EXPECT_EQ(q.HighPrice, 3512);
  EXPECT_EQ(q.LowPrice, 3488);
  EXPECT_EQ(q.LastPrice, 3488);
  EXPECT_EQ(q.LastVolume, 1);
  EXPECT_EQ(q.TotalVolume, 16);
  EXPECT_EQ(q.UpperLimit, 4000);
  EXPECT_EQ(q.LowerLimit, 3000);
  EXPECT_EQ(q.OpenInt, 99);
  EXPECT_EQ(q.TickChange, 0);
  // The tick at 3512 went up (bought, 2), the one at 3488 down (sold, 3), the last unchanged
  // counts as the one before (sold, 1); the bar's 10 counts as its close went up from nothing.
  EXPECT_EQ(q.OutsideVolume, 12);
  EXPECT_EQ(q.InsideVolume, 4);
  // Volume-weighted: (3505 x 10 + 3512 x 2 + 3488 x 4) / 16 = 56026 / 16 = 3501.625.
  EXPECT_DOUBLE_EQ(q.AvgPrice, 3501.625);
  // Spread 2 ticks of 0.2: bid one tick under the last, ask one above.
  EXPECT_DOUBLE_EQ(feed.Bid(), 3487.8);
  EXPECT_DOUBLE_EQ(feed.Ask(), 3488.2);
  // Last unchanged (0), bid and ask unchanged (0), open interest down (2): 2 << 6.
  EXPECT_EQ(q.ChangeFlags, 128);
}

TEST(QuoteFeedTest, NewTradingDayStartsFromThePreviousClose) {
  QuoteFeed feed(Settings(1));
  feed.AddTick({ShanghaiInstant(2006, 1, 6, 14, 59), 3500, 1}, 50);  // a Friday
  // 21:00 on Friday belongs to Monday's session.
  feed.AddTick({ShanghaiInstant(2006, 1, 6, 21, 0), 3520, 2}, 60);
  const Quill::ITickDeepLevel& q = feed.Snapshot();
  EXPECT_EQ(feed.TradingDay(), 20060109);
  EXPECT_EQ(q.PreClosePrice, 3500);
  EXPECT_EQ(q.PreOpenInt, 50);
  EXPECT_EQ(q.OpenPrice, 3520);
  EXPECT_EQ(q.LowPrice, 3520);
  EXPECT_EQ(q.TotalVolume, 2);
  // Spread of one tick: the bid is the last price.
  EXPECT_EQ(feed.Bid(), 3520);
  EXPECT_DOUBLE_EQ(feed.Ask(), 3520.2);
  EXPECT_EQ(TradingDayOf(ShanghaiInstant(2006, 1, 6, 16, 59)), 20060106);
  EXPECT_EQ(TradingDayOf(ShanghaiInstant(2006, 1, 6, 17, 1)), 20060109);
}

// What a formula saw on each evaluation.
struct Seen {
  int32_t Bar = 0;
  double Last = 0.0;
  double Open = 0.0;
  double High = 0.0;
  double Bid = 0.0;
  double Ask = 0.0;
  bool Exists = false;
};
std::vector<Seen>* g_seen = nullptr;

class QuoteProbe : public Formula {
 public:
  void OnBar(CSystemFuncs& f) override {
    g_seen->push_back({f.BarStatus() == 2 ? 1 : 0, f.Q_Last(), f.Q_Open(), f.Q_High(),
                       f.Q_BidPrice(0), f.Q_AskPrice(0), f.QuoteDataExist()});
  }
};

TEST(QuoteFeedTest, QuoteFunctionsAnswerFromTheFeedOnTheNewestBarOnly) {
  const FormulaInfo info{
      kFormulaInterfaceVersion,
      "probe",
      "",
      {},
      1,
      [](FormulaContext&) -> std::unique_ptr<Formula> { return std::make_unique<QuoteProbe>(); }};
  std::vector<QXBar> bars = {
      MakeBar(ShanghaiInstant(2006, 1, 4, 10, 0), 3500, 3510, 3490, 3505),
      MakeBar(ShanghaiInstant(2006, 1, 4, 10, 5), 3505, 3507, 3500, 3506),
  };
  RunSettings settings = DefaultRunSettings();
  settings.Symbols.resize(1);
  settings.Symbols[0].Terms.Code = "IF";
  settings.Symbols[0].Terms.MinMove = 2;
  settings.Symbols[0].Terms.PriceScale = 0.1;
  std::vector<QXDataSource> sources(1);
  sources[0].Symbol = "IF";
  QuoteFeed feed(Settings(1));
  PaperBroker broker({}, nullptr);
  BrokerAdapter live(broker, &feed);
  qxrun_test::ScratchFolder folder;
  FileAdapter adapter(settings.Symbols, {}, folder.Path());
  adapter.SetLive(&live);
  MessageCentre centre(folder.Path());
  ModuleSession module(centre, adapter, folder.Path().string(), "u");
  HostInstance instance(sources, settings, "probe");
  std::vector<Seen> seen;
  g_seen = &seen;
  instance.Start(info, {});
  const ReplayPlan plan = MakePlan(bars, 1, nullptr, TickPathKind::kNearerExtremeFirst, "");
  RunReplay(plan, sources[0].Bars, instance, feed, nullptr, nullptr);
  g_seen = nullptr;
  // History bar 0 once, then bar 1's path 3505 -> 3507 (nearer) -> 3500 -> 3506.
  ASSERT_EQ(seen.size(), 5U);
  EXPECT_EQ(seen[0].Bar, 0);
  EXPECT_EQ(seen[0].Last, sysfuncs::kInvalidNumber);
  const double lasts[] = {3505, 3507, 3500, 3506};
  const double highs[] = {3510, 3510, 3510, 3510};
  for (size_t i = 1; i < seen.size(); ++i) {
    EXPECT_EQ(seen[i].Bar, 1) << i;
    EXPECT_TRUE(seen[i].Exists) << i;
    EXPECT_EQ(seen[i].Last, lasts[i - 1]) << i;
    EXPECT_EQ(seen[i].Open, 3500) << i;  // the day opened with bar 0
    EXPECT_EQ(seen[i].High, highs[i - 1]) << i;
    EXPECT_EQ(seen[i].Bid, lasts[i - 1]) << i;
    EXPECT_DOUBLE_EQ(seen[i].Ask, lasts[i - 1] + 0.2) << i;
  }
}

}  // namespace
}  // namespace qxrun
