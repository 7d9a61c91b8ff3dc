// qxrun pool run as a person runs it, on the bundled pool and on bad pools.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace qxrun_test {
namespace {

const std::string kPool = std::string(QXRUN_SOURCE_DIR) + "/examples/data/pool";

// The rows of a CSV file without its header.
std::vector<std::vector<std::string>> Rows(const std::string& text) {
  std::vector<std::vector<std::string>> rows = CsvRows(text);
  if (!rows.empty()) rows.erase(rows.begin());
  return rows;
}

TEST(PoolCommandTest, BundledPickerHoldsTheTopRankedSymbolsOfEachDay) {
  ScratchFolder folder;
  const ProcessResult result =
      RunQxrun(folder.Path(), {"pool", "--data", kPool, "--formula", "momentum_pick", "--param",
                               "top=2", "--param", "length=20", "--quiet", "--out", "out"});
  ASSERT_EQ(result.ExitCode, 0) << result.Err;
  // From the decisions file alone: on each day, the symbols whose rank is 1 or 2 hold, the
  // others do not; a symbol without a bar keeps what it held.
  std::map<std::string, std::map<std::string, int>> decided;  // time -> symbol -> 0/1
  for (const auto& row : Rows(ReadFile(folder.Path() / "out/decisions.csv"))) {
    ASSERT_EQ(row.size(), 7u);
    const int rank = std::stoi(row[6].substr(row[6].find(':') + 1));
    EXPECT_EQ(row[3], rank <= 2 ? "1" : "0") << row[0] << ' ' << row[1];
    decided[row[0]][row[1]] = rank <= 2;
  }
  ASSERT_GT(decided.size(), 700u);
  std::istringstream lines(ReadFile(folder.Path() / "out/holdings.csv"));
  std::string header;
  std::getline(lines, header);
  std::vector<std::string> codes;
  std::istringstream names(header);
  for (std::string name; std::getline(names, name, ',');) codes.push_back(name);
  ASSERT_EQ(codes.size(), 8u);  // time, held, six symbols
  std::map<std::string, int> held;
  int days = 0;
  for (const auto& row : Rows(ReadFile(folder.Path() / "out/holdings.csv"))) {
    for (const auto& [symbol, hold] : decided[row[0]]) held[symbol] = hold;
    int count = 0;
    for (size_t c = 2; c < codes.size(); ++c) {
      EXPECT_EQ(std::stoi(row[c]), held[codes[c]]) << row[0] << ' ' << codes[c];
      count += held[codes[c]];
    }
    EXPECT_EQ(std::stoi(row[1]), count) << row[0];
    days += count == 2;
  }
  EXPECT_GT(days, 600);
}

TEST(PoolCommandTest, BadPoolsStopWithOneLineAndWriteNothing) {
  const std::string header = "Date,Open,High,Low,Close,Volume\n";
  const struct {
    std::vector<std::pair<std::string, std::string>> Files;
    std::vector<std::string> Data;
    const char* Says;
  } cases[] = {
      {{{"empty/readme.md", "no bars"}}, {"empty"}, "--data empty: no bar files (.txt, .csv)"},
      {{{"p/a.txt", header + "2014-01-02,1,1,1,1,1\n2014-01-03,1,1,1,1,1\n"},
        {"p/b.txt", header + "2015-01-02,1,1,1,1,1\n"}},
       {"p"},
       "no bar on a date of another symbol of the pool"},
      {{{"a.txt", header + "2014-01-02,1,1,1,1,1\n"}}, {"a.txt", "missing.txt"}, "missing.txt"},
  };
  for (const auto& row : cases) {
    ScratchFolder folder;
    for (const auto& [name, content] : row.Files) folder.Write(name, content);
    std::vector<std::string> args = {"pool", "--formula", "momentum_pick", "--out", "out"};
    for (const std::string& data : row.Data) args.insert(args.end(), {"--data", data});
    const ProcessResult result = RunQxrun(folder.Path(), args);
    ExpectRefused(result, row.Says, folder.Path() / "out");
  }
}

}  // namespace
}  // namespace qxrun_test
