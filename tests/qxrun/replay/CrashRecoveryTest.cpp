// A replay killed at random moments and started again with the same arguments goes on from its
// store: no order lost, none sent twice, positions equal to the fills.
#include "qxrun/QxrunProcess.h"
#include "qxrun/broker/BrokerStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <map>
#include <random>
#include <set>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace qxrun {
namespace {

constexpr double kDeposit = 1000000;

// Starts qxrun with `args`, its user directory `home`, its output thrown away.
pid_t Start(const std::filesystem::path& home, const std::vector<std::string>& args) {
  const pid_t child = fork();
  if (child != 0) return child;
  setenv("QXRUN_HOME", home.c_str(), 1);
  const int null = open("/dev/null", O_WRONLY);
  dup2(null, 1);
  dup2(null, 2);
  std::vector<char*> argv = {const_cast<char*>(QXRUN_BINARY)};
  for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  execv(QXRUN_BINARY, argv.data());
  _exit(127);
}

// The store's records agree with each other. Returns the session's last tick.
int64_t ExpectConsistent(const std::filesystem::path& file, bool finished,
                         const std::string& when) {
  BrokerStore store(file);
  const BrokerState state = store.Load();
  // Positions from the fills.
  std::map<std::string, std::pair<int64_t, int64_t>> held;  // code -> long, short
  std::map<int64_t, int64_t> filledOf;
  double money = kDeposit;
  for (const BrokerFill& fill : state.Fills) {
    const bool close = fill.EntryOrExit != 1;
    auto& [longLots, shortLots] = held[fill.Code];
    if (fill.BuyOrSell == 1) {
      (close ? shortLots : longLots) += close ? -fill.Lots : fill.Lots;
    } else {
      (close ? longLots : shortLots) += close ? -fill.Lots : fill.Lots;
    }
    filledOf[fill.OrderId] += fill.Lots;
    money += fill.Profit - fill.Commission;
  }
  for (const BrokerPosition& position : state.Positions) {
    EXPECT_EQ(position.Long, held[position.Code].first) << when << ": " << position.Code;
    EXPECT_EQ(position.Short, held[position.Code].second) << when << ": " << position.Code;
    EXPECT_GE(position.Long, 0) << when;
    EXPECT_GE(position.Short, 0) << when;
  }
  if (state.Positions.empty()) {
    for (const auto& [code, lots] : held) {
      EXPECT_EQ(lots, (std::pair<int64_t, int64_t>{0, 0})) << when << ": " << code;
    }
  }
  EXPECT_EQ(state.Accounts.size(), 1U) << when;
  if (state.Accounts.empty()) return 0;
  EXPECT_NEAR(state.Accounts[0].Balance, money, 1e-6) << when;
  // Each order: its fills, a status that fits them, and one order per tick at most (the formula
  // sends one per evaluation: a tick evaluated twice would show twice).
  std::set<int64_t> sequences;
  int sending = 0;
  for (const BrokerOrder& order : state.Orders) {
    EXPECT_EQ(order.Filled, filledOf[order.Id]) << when << ": " << order.ContractNo;
    EXPECT_TRUE(sequences.insert(order.Sequence).second)
        << when << ": two orders sent on tick " << order.Sequence;
    if (order.Status == kFilled) {
      EXPECT_EQ(order.Filled, order.Lots) << when;
    }
    if (order.Status == kReported || order.Status == kRejected || order.Status == kCancelled) {
      EXPECT_EQ(order.Filled, 0) << when << ": " << order.ContractNo;
    }
    if (order.Status == kSending) ++sending;
  }
  // A run killed between keeping an order and taking it in leaves that one order sending; the
  // next start takes it in.
  EXPECT_LE(sending, finished ? 0 : 1) << when;
  if (state.Sessions.empty()) return 0;
  return state.Sessions.back().Sequence;
}

TEST(CrashRecoveryTest, KilledReplayGoesOnFromItsStore) {
  qxrun_test::ScratchFolder folder;
  const std::string data = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-min-005.txt";
  const auto config = folder.Write(
      "if.json",
      R"({"symbols": [{"code": "IF888", "min_move": 2, "price_scale": 0.1, "big_point_value": 300,
      "costs": {"margin_rate": 0.12, "commission_kind": "turnover", "commission": 0.25}}]})");
  const std::vector<std::string> args = {
      "replay",  "--data",  data,     "--config", config.string(), "--formula", "live_quotes",
      "--param", "every=2", "--last", "900",      "--quiet",       "--no-page"};
  const std::filesystem::path home = folder.Path() / "home";
  const std::filesystem::path store = home / "broker.sqlite";

  // The kills fall at random moments within the first quarter of an uninterrupted run's time,
  // measured here first, so that most of them land while the replay runs however fast the
  // machine is.
  const auto start = std::chrono::steady_clock::now();
  int status = 0;
  waitpid(Start(folder.Path() / "timing", args), &status, 0);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  const auto uninterrupted = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  std::mt19937 random(20061);  // fixed: a failure can be run again
  std::uniform_int_distribution<int64_t> delay(uninterrupted.count() / 20,
                                               uninterrupted.count() / 4);
  int killedRunning = 0;
  int64_t before = 0;
  for (int round = 0; round < 6; ++round) {
    const pid_t child = Start(home, args);
    std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
    if (waitpid(child, &status, WNOHANG) == 0) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      ++killedRunning;
    }
    if (!std::filesystem::exists(store)) continue;
    const int64_t after = ExpectConsistent(store, false, "after kill " + std::to_string(round));
    EXPECT_GE(after, before) << "round " << round;
    before = after;
  }
  EXPECT_GE(killedRunning, 3) << "the replay ended before most kills: make it longer";
  const qxrun_test::ProcessResult last = qxrun_test::RunQxrun(folder.Path(), [&] {
    std::vector<std::string> again = args;
    again.erase(std::find(again.begin(), again.end(), "--quiet"));
    return again;
  }());
  ASSERT_EQ(last.ExitCode, 0) << last.Err;
  EXPECT_NE(last.Out.find("taken in by an earlier run"), std::string::npos);
  const int64_t end = ExpectConsistent(store, true, "at the end");
  // Every tick was taken in exactly once over all the runs: the same count as one whole run.
  qxrun_test::ScratchFolder whole;
  const qxrun_test::ProcessResult once = qxrun_test::RunQxrun(whole.Path(), [&] {
    std::vector<std::string> again = args;
    again.erase(std::find(again.begin(), again.end(), "--quiet"));
    return again;
  }());
  ASSERT_EQ(once.ExitCode, 0) << once.Err;
  const size_t at = once.Out.find("replay: ");
  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(std::stoll(once.Out.substr(at + 8)), end);
}

}  // namespace
}  // namespace qxrun
