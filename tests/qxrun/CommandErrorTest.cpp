// Bad input to `qxrun run`: each case stops with exit code 2 and one line on standard error that
// names the file, the line and the field (or the run file's key path, or the flag), and leaves
// nothing in the output folder.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun_test {
namespace {

const char* const kGood =
    "Date,Open,High,Low,Close,Volume\n"
    "2006-01-02,10,11,9,10.5,100\n"
    "2006-01-03,10.5,12,10,11.5,100\n"
    "2006-01-04,11.5,12,11,11,100\n";

struct BadInput {
  const char* Name;
  std::map<std::string, std::string> Files;  // written into the scratch folder
  std::vector<std::string> Args;      // after "run --out out"; --formula ma_cross unless given
  std::vector<std::string> Expected;  // texts the error line holds
};

void PrintTo(const BadInput& input, std::ostream* out) { *out << input.Name; }

std::vector<BadInput> Cases() {
  const std::string head = "Date,Open,High,Low,Close,Volume\n";
  return {
      {"MissingFile", {}, {"--data", "none.csv"}, {"none.csv", "cannot open"}},
      {"EmptyFile", {{"a.csv", ""}}, {"--data", "a.csv"}, {"a.csv", "empty"}},
      {"HeaderOnly", {{"a.csv", head}}, {"--data", "a.csv"}, {"a.csv:1", "no bars"}},
      {"MalformedNumber",
       {{"a.csv", head + "2006-01-02,10,11,9,10.5,100\n2006-01-03,10,1x,9,10,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:3", "High", "1x"}},
      {"MissingColumn",
       {{"a.csv", "Date,Open,High,Close\n2006-01-02,10,11,10.5\n"}},
       {"--data", "a.csv"},
       {"a.csv:1", "Low"}},
      {"UnparseableDate",
       {{"a.csv", head + "2006-01-02,10,11,9,10.5,1\n2006-02-30,10,11,9,10.5,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:3", "Date", "2006-02-30"}},
      {"UnparseableTime",
       {{"a.csv", "Date,Time,Open,High,Low,Close\n2006-01-02,09:61,1,2,0.5,1.5\n"}},
       {"--data", "a.csv"},
       {"a.csv:2", "Time", "09:61"}},
      {"TimeGoingBackwards",
       {{"a.csv", head + "2006-01-03,10,11,9,10.5,1\n2006-01-02,10,11,9,10.5,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:3", "Date", "earlier"}},
      {"RepeatedTime",
       {{"a.csv", head + "2006-01-02,10,11,9,10.5,1\n2006-01-02,10,11,9,10.5,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:3", "Date", "repeats"}},
      {"LowAboveHigh",
       {{"a.csv", head + "2006-01-02,10,11,12,10.5,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:2", "Low", "above High"}},
      {"NegativePrice",
       {{"a.csv", head + "2006-01-02,10,11,9,-10.5,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:2", "Close", "negative"}},
      {"NotANumber",
       {{"a.csv", head + "2006-01-02,NaN,11,9,10.5,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:2", "Open", "NaN"}},
      {"Infinity",
       {{"a.csv", head + "2006-01-02,10,inf,9,10.5,1\n"}},
       {"--data", "a.csv"},
       {"a.csv:2", "High", "inf"}},
      // A CRLF file loads; its carriage returns must not hide the line of a fault.
      {"CrlfFileWithBadVolume",
       {{"a.csv",
         "Date,Open,High,Low,Close,Volume\r\n2006-01-02,10,11,9,10.5,1\r\n"
         "2006-01-03,10,11,9,10.5,z\r\n"}},
       {"--data", "a.csv"},
       {"a.csv:3", "Volume", "'z'"}},
      // A byte-order mark is skipped; the header after it still names its columns.
      {"Utf8BomWithMissingColumn",
       {{"a.csv",
         "\xEF\xBB\xBF"
         "Date,Open,High,Low\n2006-01-02,10,11,9\n"}},
       {"--data", "a.csv"},
       {"a.csv:1", "Close"}},
      {"WrongDelimiter",
       {{"a.csv", head + "2006-01-02,10,11,9,10.5,1\n"},
        {"run.json", R"({"symbols": [{"columns": {"delimiter": ";"}}]})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"a.csv:"}},
      {"UnknownFormula",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--formula", "nope"},
       {"--formula nope", "unknown formula"}},
      {"MissingSharedObject",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--formula", "./x.so"},
       {"./x.so", "no such file"}},
      {"UnknownParameter",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--param", "speed=3"},
       {"--param speed", "no parameter speed"}},
      {"MalformedParameter",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--param", "fast=3x"},
       {"--param fast", "\"3x\" is not a number"}},
      {"ParameterWithoutValue",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--param", "fast"},
       {"--param fast", "name=value"}},
      {"ParameterOutOfRange",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--param", "slow=1"},
       {"--param slow", "[2, 10000]", "not 1"}},
      {"FractionalWholeParameter",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--param", "fast=2.5"},
       {"--param fast", "whole numbers"}},
      {"RunFileParameterOutOfRange",
       {{"a.csv", kGood}, {"run.json", R"({"params": {"fast": 0}})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"/params/fast", "[1, 1000]"}},
      {"MalformedJson",
       {{"a.csv", kGood}, {"run.json", "{\n  \"strategy\": {\n    \"initial_capital\": 5,,\n}"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"run.json:3", "malformed JSON"}},
      {"WrongJsonType",
       {{"a.csv", kGood}, {"run.json", R"({"strategy": {"initial_capital": "lots"}})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"run.json", "/strategy/initial_capital", "must be a number"}},
      {"UnknownJsonKey",
       {{"a.csv", kGood}, {"run.json", R"({"symbols": [{"costs": {"comission": 5}}]})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"run.json", "/symbols/0/costs/comission", "unknown key"}},
      {"UnknownColumnMapKey",
       {{"a.csv", kGood}, {"run.json", R"({"symbols": [{"columns": {"clse": 4}}]})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"run.json", "/symbols/0/columns/clse"}},
      {"BadCommissionKind",
       {{"a.csv", kGood}, {"run.json", R"({"symbols": [{"costs": {"commission_kind": "pct"}}]})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"/symbols/0/costs/commission_kind", "money, ticks, turnover"}},
      {"MalformedSessions",
       {{"a.csv", kGood}, {"run.json", R"({"symbols": [{"sessions": "9:30-11:30"}]})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"/symbols/0/sessions", "9:30-11:30"}},
      {"NegativeCapitalInRunFile",
       {{"a.csv", kGood}, {"run.json", R"({"strategy": {"initial_capital": -1000}})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"/strategy/initial_capital", "must be positive"}},
      {"NegativeCapitalFlag",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--capital=-1000"},
       {"--capital", "must be positive"}},
      {"SpreadWithOneFile",
       {{"a.csv", kGood}},
       {"--data", "a.csv", "--formula", "spread"},
       {"--data", "spread needs 2 bar files"}},
      {"MalformedQuoteSnapshot",
       {{"a.csv", kGood},
        {"q.json", R"({"a": {"last": "high"}})"},
        {"run.json", R"({"quotes": "q.json"})"}},
       {"--data", "a.csv", "--config", "run.json"},
       {"q.json", "/a/last", "must be a number"}},
      {"NoDataFile", {}, {}, {"--data", "no bar file"}},
  };
}

class CommandErrorTest : public testing::TestWithParam<BadInput> {};

TEST_P(CommandErrorTest, StopsWithOneLineNamingTheFaultAndWritesNothing) {
  const BadInput& input = GetParam();
  ScratchFolder folder;
  for (const auto& [name, content] : input.Files) folder.Write(name, content);
  std::vector<std::string> args = {"run", "--out", "out"};
  args.insert(args.end(), input.Args.begin(), input.Args.end());
  if (std::find(args.begin(), args.end(), "--formula") == args.end()) {
    args.insert(args.end(), {"--formula", "ma_cross"});
  }
  const ProcessResult result = RunQxrun(folder.Path(), args);

  EXPECT_EQ(result.ExitCode, 2) << result.Err;
  ASSERT_FALSE(result.Err.empty());
  EXPECT_EQ(result.Err.find('\n'), result.Err.size() - 1) << "one line: " << result.Err;
  EXPECT_EQ(result.Err.find('\r'), std::string::npos) << result.Err;
  for (const std::string& text : input.Expected) {
    EXPECT_NE(result.Err.find(text), std::string::npos)
        << "missing '" << text << "' in " << result.Err;
  }
  EXPECT_TRUE(FilesIn(folder.Path() / "out").empty());
  EXPECT_TRUE(result.Out.empty()) << result.Out;
}

INSTANTIATE_TEST_SUITE_P(BadInputs, CommandErrorTest, testing::ValuesIn(Cases()),
                         [](const testing::TestParamInfo<BadInput>& row) {
                           return std::string(row.param.Name);
                         });

// Output folders that cannot be used.
TEST(OutputFolderErrorTest, ExistingFileWhereTheFolderShouldBeIsLeftAlone) {
  ScratchFolder folder;
  folder.Write("a.csv", kGood);
  folder.Write("out", "mine");
  const ProcessResult result =
      RunQxrun(folder.Path(), {"run", "--data", "a.csv", "--formula", "ma_cross", "--out", "out"});
  EXPECT_EQ(result.ExitCode, 2);
  EXPECT_NE(result.Err.find("--out out: exists and is not a folder"), std::string::npos)
      << result.Err;
  EXPECT_EQ(ReadFile(folder.Path() / "out"), "mine");
}

TEST(OutputFolderErrorTest, UnwritableOrMissingParentIsRefused) {
  ScratchFolder folder;
  folder.Write("a.csv", kGood);
  // Nobody, root included, makes files in a process's /proc folder.
  ProcessResult result = RunQxrun(
      folder.Path(), {"run", "--data", "a.csv", "--formula", "ma_cross", "--out", "/proc/1/out"});
  EXPECT_EQ(result.ExitCode, 2);
  EXPECT_NE(result.Err.find("--out /proc/1/out"), std::string::npos) << result.Err;
  result = RunQxrun(folder.Path(),
                    {"run", "--data", "a.csv", "--formula", "ma_cross", "--out", "no/such/out"});
  EXPECT_EQ(result.ExitCode, 2);
  EXPECT_NE(result.Err.find("does not exist"), std::string::npos) << result.Err;
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "no"));
}

TEST(UsageTest, UsageErrorsExitWithTwoAndHelpWithZero) {
  ScratchFolder folder;
  EXPECT_EQ(RunQxrun(folder.Path(), {"run"}).ExitCode, 2);  // --formula is required
  EXPECT_EQ(RunQxrun(folder.Path(), {"bogus"}).ExitCode, 2);
  const ProcessResult help = RunQxrun(folder.Path(), {"run", "--help"});
  EXPECT_EQ(help.ExitCode, 0);
  EXPECT_NE(help.Out.find("--param"), std::string::npos);
  const ProcessResult version = RunQxrun(folder.Path(), {"--version"});
  EXPECT_EQ(version.ExitCode, 0);
  EXPECT_NE(version.Out.find("qxrun "), std::string::npos);
  const ProcessResult list = RunQxrun(folder.Path(), {"formulas"});
  EXPECT_EQ(list.ExitCode, 0);
  EXPECT_NE(list.Out.find("ma_cross"), std::string::npos);
  EXPECT_NE(list.Out.find("slow"), std::string::npos);
}

}  // namespace
}  // namespace qxrun_test
