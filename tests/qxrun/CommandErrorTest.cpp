// Bad input to `qxrun run`: each case stops with exit code 2 and one line on standard error that
// names the file, the line and the field (or the run file's key path, or the flag), and leaves
// nothing in the output folder.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qxrun_test {
namespace {

const char* const kGood =
    "Date,Open,High,Low,Close,Volume\n"
    "2006-01-02,10,11,9,10.5,100\n"
    "2006-01-03,10.5,12,10,11.5,100\n"
    "2006-01-04,11.5,12,11,11,100\n";

// A run of ma_cross on a.csv with `Args` added, `Bars` in a.csv and `RunFile` in run.json
// (passed with --config); no a.csv and no --data a.csv when `Bars` is empty.
struct BadInput {
  const char* Name;
  const char* Args;      // separated by blanks
  const char* Expected;  // texts the error line holds, separated by '|'
  std::string Bars = kGood;
  const char* RunFile = "";
  std::pair<const char*, const char*> OtherFile = {"", ""};
};

void PrintTo(const BadInput& input, std::ostream* out) { *out << input.Name; }

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const size_t end = text.find(separator);
    parts.emplace_back(text.substr(0, end));
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  }
  return parts;
}

// The bar-file faults each stand for a kind the loader's own tests pin to the byte.
std::vector<BadInput> Cases() {
  const std::string head = "Date,Open,High,Low,Close,Volume\n";
  return {
      {"MissingFile", "--data none.csv", "none.csv|cannot open", ""},
      {"NoDataFile", "", "--data|no bar file", ""},
      {"MalformedNumber", "", "a.csv:3|High|1x",
       head + "2006-01-02,10,11,9,10.5,100\n2006-01-03,10,1x,9,10,1\n"},
      {"MissingColumn", "", "a.csv:1|Low", "Date,Open,High,Close\n2006-01-02,10,11,10.5\n"},
      {"UnparseableDate", "", "a.csv:3|Date|2006-02-30",
       head + "2006-01-02,10,11,9,10.5,1\n2006-02-30,10,11,9,10.5,1\n"},
      // A CRLF file loads; its carriage returns must not hide the line of a fault.
      {"CrlfFileWithBadVolume", "", "a.csv:3|Volume|'z'",
       "Date,Open,High,Low,Close,Volume\r\n2006-01-02,10,11,9,10.5,1\r\n"
       "2006-01-03,10,11,9,10.5,z\r\n"},
      // A byte-order mark is skipped; the header after it still names its columns.
      {"Utf8BomWithMissingColumn", "", "a.csv:1|Close",
       "\xEF\xBB\xBF"
       "Date,Open,High,Low\n2006-01-02,10,11,9\n"},
      {"WrongDelimiter", "", "a.csv:", kGood, R"({"symbols": [{"columns": {"delimiter": ";"}}]})"},
      {"UnknownFormula", "--formula nope", "--formula nope|unknown formula"},
      {"MissingSharedObject", "--formula ./x.so", "./x.so|no such file"},
      {"UnknownParameter", "--param speed=3", "--param speed|no parameter speed"},
      {"MalformedParameter", "--param fast=3x", "--param fast|\"3x\" is not a number"},
      {"ParameterWithoutValue", "--param fast", "--param fast|name=value"},
      {"ParameterOutOfRange", "--param slow=1", "--param slow|[2, 10000]|not 1"},
      {"FractionalWholeParameter", "--param fast=2.5", "--param fast|whole numbers"},
      {"RunFileParameterOutOfRange", "", "/params/fast|[1, 1000]", kGood,
       R"({"params": {"fast": 0}})"},
      {"MalformedJson", "", "run.json:3|malformed JSON", kGood,
       "{\n  \"strategy\": {\n    \"initial_capital\": 5,,\n}"},
      {"WrongJsonType", "", "run.json|/strategy/initial_capital|must be a number", kGood,
       R"({"strategy": {"initial_capital": "lots"}})"},
      {"UnknownJsonKey", "", "run.json|/symbols/0/costs/comission|unknown key", kGood,
       R"({"symbols": [{"costs": {"comission": 5}}]})"},
      {"UnknownColumnMapKey", "", "run.json|/symbols/0/columns/clse", kGood,
       R"({"symbols": [{"columns": {"clse": 4}}]})"},
      {"BadCommissionKind", "", "/symbols/0/costs/commission_kind|money, ticks, turnover", kGood,
       R"({"symbols": [{"costs": {"commission_kind": "pct"}}]})"},
      {"MalformedSessions", "", "/symbols/0/sessions|9:30-11:30", kGood,
       R"({"symbols": [{"sessions": "9:30-11:30"}]})"},
      {"NegativeCapitalInRunFile", "", "/strategy/initial_capital|must be positive", kGood,
       R"({"strategy": {"initial_capital": -1000}})"},
      {"NegativeCapitalFlag", "--capital=-1000", "--capital|must be positive"},
      {"SpreadWithOneFile", "--formula spread", "--data|spread needs 2 bar files"},
      {"MalformedQuoteSnapshot",
       "",
       "q.json|/a/last|must be a number",
       kGood,
       R"({"quotes": "q.json"})",
       {"q.json", R"({"a": {"last": "high"}})"}},
  };
}

class CommandErrorTest : public testing::TestWithParam<BadInput> {};

TEST_P(CommandErrorTest, StopsWithOneLineNamingTheFaultAndWritesNothing) {
  const BadInput& input = GetParam();
  ScratchFolder folder;
  std::vector<std::string> args = {"run", "--out", "out"};
  if (!input.Bars.empty()) {
    folder.Write("a.csv", input.Bars);
    args.insert(args.end(), {"--data", "a.csv"});
  }
  if (*input.RunFile != '\0') {
    folder.Write("run.json", input.RunFile);
    args.insert(args.end(), {"--config", "run.json"});
  }
  if (*input.OtherFile.first != '\0') folder.Write(input.OtherFile.first, input.OtherFile.second);
  for (std::string& arg : Split(input.Args, ' ')) args.push_back(arg);
  if (std::find(args.begin(), args.end(), "--formula") == args.end()) {
    args.insert(args.end(), {"--formula", "ma_cross"});
  }
  const ProcessResult result = RunQxrun(folder.Path(), args);

  EXPECT_EQ(result.ExitCode, 2) << result.Err;
  ASSERT_FALSE(result.Err.empty());
  EXPECT_EQ(result.Err.find('\n'), result.Err.size() - 1) << "one line: " << result.Err;
  EXPECT_EQ(result.Err.find('\r'), std::string::npos) << result.Err;
  for (const std::string& text : Split(input.Expected, '|')) {
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

// Output folders that cannot be used: a file in the folder's place is left alone, and nobody, root
// included, makes files in a process's /proc folder.
TEST(OutputFolderErrorTest, UnusableFoldersAreRefusedAndLeftAlone) {
  const std::pair<const char*, const char*> rows[] = {
      {"out", "--out out: exists and is not a folder"},
      {"/proc/1/out", "--out /proc/1/out"},
      {"no/such/out", "does not exist"}};
  for (const auto& [out, says] : rows) {
    ScratchFolder folder;
    folder.Write("a.csv", kGood);
    folder.Write("out", "mine");
    const ProcessResult result =
        RunQxrun(folder.Path(), {"run", "--data", "a.csv", "--formula", "ma_cross", "--out", out});
    EXPECT_EQ(result.ExitCode, 2) << out;
    EXPECT_NE(result.Err.find(says), std::string::npos) << result.Err;
    EXPECT_EQ(ReadFile(folder.Path() / "out"), "mine");
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "no")) << out;
  }
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
