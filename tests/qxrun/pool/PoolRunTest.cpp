// A pool stepped through its instances: each formula reads the ranks of the sort values the
// pool gave on the same bar, a symbol without a bar takes no rank, and the holdings follow.
#include "qxrun/QxrunProcess.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"
#include "qxrun/pool/PoolBook.h"
#include "qxrun/pool/PoolRun.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace qxrun_test {
namespace {

constexpr int64_t kDay = 86400000;
constexpr int64_t kFirst = 1356969600000;  // 2013-01-01 00:00 in UTC+8

// symbol -> ranks read by the second run of each bar, in bar order.
std::map<std::string, std::vector<int32_t>>* g_ranks = nullptr;

// Holds the symbol with the largest close. Without a rank (the first run of a bar) it asks to
// hold, which the ranked second run must undo.
class ClosePicker : public qxrun::Formula {
 public:
  explicit ClosePicker(qxrun::FormulaContext& context) : data_(context.Data()) {}

  void OnBar(CSystemFuncs& f) override {
    f.SetSPSortValue(0, f.Close(), true);
    const int32_t rank = f.GetSPSortRanking(0);
    if (rank != sysfuncs::kInvalidInteger) {
      (*g_ranks)[(*data_->DataSources)[0].Symbol].push_back(rank);
    }
    EXPECT_EQ(f.StockPoolSize(), 3);
    f.StockPickingCheckPoint(rank == sysfuncs::kInvalidInteger || rank <= 1 ? 1 : 0, true);
  }

 private:
  CQXBaseData* data_;
};

qxrun::FormulaInfo ClosePickerInfo() {
  return {qxrun::kFormulaInterfaceVersion,
          "close_picker",
          "holds the largest close",
          {},
          1,
          [](qxrun::FormulaContext& context) -> std::unique_ptr<qxrun::Formula> {
            return std::make_unique<ClosePicker>(context);
          }};
}

qxrun::PoolMember Member(const std::string& symbol,
                         const std::vector<std::pair<int, double>>& bars) {
  qxrun::PoolMember member;
  member.Settings.Symbols.resize(1);
  member.Settings.Strategy.InitCapital = 1000;
  QXDataSource& source = member.Sources.emplace_back();
  source.Symbol = symbol;
  for (const auto& [day, close] : bars) {
    QXBar& bar = source.Bars.emplace_back();
    bar.Time = kFirst + day * kDay;
    bar.Open = bar.High = bar.Low = bar.Close = close;
  }
  return member;
}

TEST(PoolRunTest, EachBarIsRankedByItsOwnSortValuesBeforeTheDecision) {
  ScratchFolder folder;
  std::vector<qxrun::PoolMember> members;
  members.push_back(Member("A", {{0, 10}, {1, 30}, {2, 10}, {3, 10}}));
  members.push_back(Member("B", {{0, 20}, {2, 5}, {3, 20}}));  // no bar on day 1
  members.push_back(Member("C", {{0, 15}, {1, 25}, {2, 40}, {3, 20}}));
  std::map<std::string, std::vector<int32_t>> ranks;
  g_ranks = &ranks;
  qxrun::MessageCentre centre(folder.Path());
  CDataAdapter adapter;
  {
    qxrun::ModuleSession session(centre, adapter, folder.Path().string(), "test");
    qxrun::RunPool(members, ClosePickerInfo(), {});
  }
  g_ranks = nullptr;

  // Day 0: B 20, C 15, A 10. Day 1: A 30, C 25 (B has no bar). Day 2: C 40, A 10, B 5.
  // Day 3: B and C tie at 20 and share rank 1, A takes 3.
  EXPECT_EQ(ranks["A"], (std::vector<int32_t>{3, 1, 2, 3}));
  EXPECT_EQ(ranks["B"], (std::vector<int32_t>{1, 3, 1}));
  EXPECT_EQ(ranks["C"], (std::vector<int32_t>{2, 2, 1, 1}));
  const auto& bTable = members[1].Instance->Account().RankingTable;
  EXPECT_EQ(bTable.count(kFirst + kDay), 0u);
  EXPECT_EQ(bTable.size(), 3u);

  std::vector<qxrun::PoolSymbol> symbols;
  for (const qxrun::PoolMember& member : members) {
    const StrategyAccount& account = member.Instance->Account();
    symbols.push_back({member.Sources[0].Symbol, &member.Sources[0].Bars, &account.CheckPoints,
                       &account.RankingTable, 1.0});
  }
  const qxrun::PoolBook book = qxrun::BookPool(symbols, 1.0, 1000.0);
  // B is held through its missing day: it made no decision then.
  ASSERT_EQ(book.Held.size(), 4u);
  EXPECT_EQ(book.Held[0], (std::vector<int8_t>{0, 1, 0}));
  EXPECT_EQ(book.Held[1], (std::vector<int8_t>{1, 1, 0}));
  EXPECT_EQ(book.Held[2], (std::vector<int8_t>{0, 0, 1}));
  EXPECT_EQ(book.Held[3], (std::vector<int8_t>{0, 1, 1}));

  // On the last bar the library opens what the ranked run decided and nothing the unranked run
  // asked for: B and C buy one lot (which the end of the run sells), A buys none.
  const auto buysOnLastBar = [&](size_t member) {
    int count = 0;
    for (const OrderRecord& order : members[member].Instance->Data().Ledgers[0].Orders) {
      const int32_t last = static_cast<int32_t>(members[member].Sources[0].Bars.size()) - 1;
      count += order.Bar == last && (order.Kind & 0xFF) == kBuy;
    }
    return count;
  };
  EXPECT_EQ(buysOnLastBar(0), 0);
  EXPECT_EQ(buysOnLastBar(1), 1);
  EXPECT_EQ(buysOnLastBar(2), 1);
}

}  // namespace
}  // namespace qxrun_test
