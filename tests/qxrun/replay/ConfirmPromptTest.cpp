// `--confirm ask`: every live order is put to the person at the terminal, driven here through a
// pseudo-terminal; refused orders are not sent.
#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

TEST(ConfirmPromptTest, AnswersOnTheTerminalDecideWhichOrdersAreSent) {
  qxrun_test::ScratchFolder folder;
  const std::string data = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-min-005.txt";
  const auto config = folder.Write("if.json", R"({"symbols": [{"code": "IF888"}]})");
  const std::string home = (folder.Path() / "home").string();
  const std::string out = (folder.Path() / "out").string();
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  ASSERT_GE(child, 0);
  if (child == 0) {
    setenv("QXRUN_HOME", home.c_str(), 1);
    execl(QXRUN_BINARY, QXRUN_BINARY, "replay", "--data", data.c_str(), "--config", config.c_str(),
          "--formula", "live_quotes", "--param", "every=10", "--last", "20", "--confirm", "ask",
          "--no-page", "--out", out.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  // Yes to the first prompt, no to the second, and so on.
  std::string seen;
  size_t answered = 0;
  int yes = 0;
  int no = 0;
  char buffer[4096];
  while (true) {
    const ssize_t got = read(terminal, buffer, sizeof(buffer));
    if (got <= 0) break;  // the child has gone: the terminal reports an error
    seen.append(buffer, static_cast<size_t>(got));
    for (size_t at = seen.find("? [y/n] ", answered); at != std::string::npos;
         at = seen.find("? [y/n] ", answered)) {
      answered = at + 8;
      const bool confirm = (yes + no) % 2 == 0;
      (confirm ? yes : no) += 1;
      ASSERT_EQ(write(terminal, confirm ? "y\n" : "n\n", 2), 2);
    }
  }
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  ASSERT_TRUE(WIFEXITED(status));
  ASSERT_EQ(WEXITSTATUS(status), 0) << seen;
  ASSERT_GE(yes + no, 4) << seen;
  EXPECT_NE(seen.find("buy open 1 IF888 at "), std::string::npos) << seen;
  EXPECT_NE(seen.find(std::to_string(no) + " refused"), std::string::npos) << seen;
  // broker-orders.csv: a header and one row per confirmed order.
  const std::string orders = qxrun_test::ReadFile(folder.Path() / "out" / "broker-orders.csv");
  EXPECT_EQ(std::count(orders.begin(), orders.end(), '\n'), yes + 1) << orders;
}

TEST(ConfirmPromptTest, AskWithoutATerminalIsRefusedUpFront) {
  qxrun_test::ScratchFolder folder;
  const std::string data = std::string(QXRUN_SOURCE_DIR) + "/examples/data/2006-min-005.txt";
  // Run as a test runner runs it, without a controlling terminal.
  const qxrun_test::ProcessResult result =
      qxrun_test::RunQxrun(folder.Path(), {"replay", "--data", data, "--formula", "ma_cross",
                                           "--confirm", "ask", "--last", "3", "--quiet"});
  if (result.ExitCode == 0) GTEST_SKIP() << "the test runs on a terminal";
  EXPECT_EQ(result.ExitCode, 2);
  EXPECT_NE(result.Err.find("--confirm ask: no terminal"), std::string::npos) << result.Err;
}

}  // namespace
