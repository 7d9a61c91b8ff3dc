// Bad input to a replay: one line naming the problem, exit code 2, the store as it was and no
// output folder.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

using qxrun_test::ReadFile;

TEST(ReplayBadInputTest, EachProblemIsOneLineAndLeavesTheStoreAlone) {
  const std::string data = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-min-005.txt";
  struct Row {
    const char* Name;
    std::string Store;  // written to home/broker.sqlite first; "" for none, "v2" a newer store
    std::string Ticks;  // written to ticks.csv and given with --ticks when not empty
    std::vector<std::string> Args;
    std::string Message;
  };
  // The last bar of the file is stamped 2006-01-30 17:30 and the one before it 17:25.
  const Row rows[] = {
      {"unknown account", "", "", {"--account", "bob"}, "--account: unknown account 'bob'"},
      {"store is text", "orders\n", "", {}, "broker.sqlite: is not a database"},
      {"newer store", "v2", "", {}, "broker.sqlite: belongs to a newer version of qxrun"},
      {"ticks out of order",
       "",
       "2006-01-30,17:29:00,3677.0,1\n2006-01-30,17:28:00,3677.2,1\n",
       {},
       "ticks.csv:2: time: 2006-01-30 17:28:00 is before the tick above it"},
      {"tick outside its bar",
       "",
       "2006-01-30,17:24:00,3677.0,1\n2006-01-30,17:29:00,3677.2,1\n2006-01-30,17:31:00,3677,1\n",
       {},
       "lies after the last bar"},
      {"from after the end", "", "", {"--from", "2007-01-01"}, "--from: 2007-01-01 is after"},
      {"negative spread", "", "", {"--spread", "-1"}, "--spread: must not be negative"},
  };
  for (const Row& row : rows) {
    qxrun_test::ScratchFolder folder;
    const auto store = folder.Path() / "home" / "broker.sqlite";
    if (row.Store == "v2") {
      std::filesystem::create_directories(store.parent_path());
      sqlite3* db = nullptr;
      sqlite3_open(store.c_str(), &db);
      sqlite3_exec(db, "PRAGMA user_version=2", nullptr, nullptr, nullptr);
      sqlite3_close(db);
    } else if (!row.Store.empty()) {
      folder.Write("home/broker.sqlite", row.Store);
    }
    const std::string before = ReadFile(store);
    std::vector<std::string> args = {"replay", "--data", data,    "--formula", "ma_cross",
                                     "--last", "2",      "--out", "out"};
    if (std::find(row.Args.begin(), row.Args.end(), "--from") != row.Args.end()) {
      args.erase(args.begin() + 5, args.begin() + 7);  // --from instead of --last
    }
    args.insert(args.end(), row.Args.begin(), row.Args.end());
    if (!row.Ticks.empty()) {
      args.push_back("--ticks");
      args.push_back(folder.Write("ticks.csv", row.Ticks).string());
    }
    const qxrun_test::ProcessResult result = qxrun_test::RunQxrun(folder.Path(), args);
    EXPECT_EQ(result.ExitCode, 2) << row.Name << ": " << result.Err;
    EXPECT_NE(result.Err.find(row.Message), std::string::npos) << row.Name << ": " << result.Err;
    EXPECT_EQ(std::count(result.Err.begin(), result.Err.end(), '\n'), 1) << row.Name;
    EXPECT_EQ(ReadFile(store), before) << row.Name << ": the store was changed";
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "out")) << row.Name;
  }
}

}  // namespace
