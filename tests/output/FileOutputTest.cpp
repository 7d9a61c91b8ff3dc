#include "sysfuncs/Environment.h"

#include "output/FileOutput.h"
#include "output/Logger.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace sysfuncs::testing {
namespace {

// Hand-overs caught at the message centre, with a clock that moves one second per reading.
class FileOutputRules : public ::testing::Test {
 protected:
  FileOutputRules() {
    SysFuncsPlatform services;
    services.SendToMsgCenter = [this](int kind, const Quill::MsgRecord* records, size_t count) {
      EXPECT_EQ(kind, 1);
      handOvers.emplace_back(records, records + count);
      return 1;
    };
    services.Now = [this] { return 1700000000000 + 1000 * clockReadings++; };
    platform = std::make_unique<ScopedPlatform>(services);
  }

  std::vector<std::vector<Quill::MsgRecord>> handOvers;
  int64_t clockReadings = 0;
  std::unique_ptr<ScopedPlatform> platform;
};

TEST_F(FileOutputRules, FilesGoInByteOrderAndTheClockIsReadOncePerFile) {
  CTimerTask_LoggerPtr logger = new CTimerTask_Logger();
  const std::string gbkName = "\xB0\xA1.txt";  // a name starting with a GBK character
  logger->Append(gbkName, "gbk 1");
  logger->Append("z.txt", "z 1");
  logger->Append("A.txt", "a 1");
  logger->Append(gbkName, "gbk 2");
  logger->Append("z.txt", "z 2");
  logger->runTimerTask();
  ASSERT_EQ(handOvers.size(), 1u) << "one message-centre call per run";
  const std::vector<Quill::MsgRecord>& records = handOvers[0];
  ASSERT_EQ(records.size(), 5u);
  // Bytes compare unsigned: 'A' (0x41) < 'z' (0x7A) < 0xB0.
  const struct {
    std::string key, text;
    int64_t time;
  } expected[] = {
      {"FA[A.txt]", "a 1", 1700000000},
      {"FA[z.txt]", "z 1", 1700000001},
      {"FA[z.txt]", "z 2", 1700000001},
      {"FA[" + gbkName + "]", "gbk 1", 1700000002},
      {"FA[" + gbkName + "]", "gbk 2", 1700000002},
  };
  for (size_t i = 0; i < records.size(); ++i) {
    EXPECT_EQ(records[i].Kind, 1) << i;
    EXPECT_EQ(records[i].Zero, 0) << i;
    EXPECT_EQ(std::string(records[i].Key), expected[i].key) << i;
    EXPECT_EQ(std::string(records[i].Text), expected[i].text) << i;
    EXPECT_EQ(records[i].Time, expected[i].time) << i;
  }
  EXPECT_EQ(clockReadings, 3);
  logger->runTimerTask();
  EXPECT_EQ(handOvers.size(), 1u) << "none when idle";
  EXPECT_EQ(clockReadings, 3);
}

TEST_F(FileOutputRules, KeysHold27CharactersOfNameAndTextsHold259Bytes) {
  CTimerTask_LoggerPtr logger = new CTimerTask_Logger();
  const std::string name27(27, 'n'), name28(28, 'm');
  const std::string text259(259, '\xD6'), text260 = std::string(259, 'x') + "y";
  logger->Append(name27, text259);
  logger->Append(name28, text260);
  logger->Append("", "");
  logger->runTimerTask();
  ASSERT_EQ(handOvers.size(), 1u);
  ASSERT_EQ(handOvers[0].size(), 3u);
  const Quill::MsgRecord& empty = handOvers[0][0];
  EXPECT_STREQ(empty.Key, "FA[]");
  EXPECT_STREQ(empty.Text, "");
  const Quill::MsgRecord& cut = handOvers[0][1];  // "m..." sorts before "n..."
  EXPECT_EQ(std::string(cut.Key, strnlen(cut.Key, 32)), "FA[" + name28) << "the bracket is lost";
  EXPECT_EQ(std::string(cut.Text), std::string(259, 'x'));
  const Quill::MsgRecord& whole = handOvers[0][2];
  EXPECT_EQ(std::string(whole.Key), "FA[" + name27 + "]");
  EXPECT_EQ(std::string(whole.Text), text259);
}

TEST_F(FileOutputRules, DeletingAFileKeepsItsPendingLines) {
  ResetEnvironmentForTesting();
  SysFuncs_Init(nullptr, nullptr, "", "");
  CSFEnvPtr env = GetSFEnv();
  env->m_timer->cancel(env->m_loggerTask);  // this test runs the writer itself
  const std::string file = "/tmp/sfdelete" + std::to_string(::getpid());
  std::FILE* created = std::fopen(file.c_str(), "w");
  ASSERT_NE(created, nullptr);
  std::fclose(created);
  EXPECT_TRUE(FileAppend(file, "still handed over"));
  EXPECT_TRUE(FileDelete(file));
  EXPECT_FALSE(FileDelete(file)) << "nothing left to delete";
  env->m_loggerTask->runTimerTask();
  ASSERT_EQ(handOvers.size(), 1u);
  EXPECT_STREQ(handOvers[0][0].Text, "still handed over");
  SysFuncs_Exit();
  ResetEnvironmentForTesting();
}

// Eight formula threads append while the writer hands over as fast as it can: every line reaches
// the message centre exactly once and each thread's lines arrive in its order.
TEST(FileOutputStress, EightThreadsLoseNothingAndKeepTheirOrder) {
  constexpr int kThreads = 8;
  constexpr int kLines = 100000;
  std::vector<int> nextLine(kThreads, 0);
  int64_t records = 0;
  int64_t runsWithRecords = 0;
  bool misplaced = false;
  SysFuncsPlatform services;
  services.SendToMsgCenter = [&](int, const Quill::MsgRecord* batch, size_t count) {
    ++runsWithRecords;
    for (size_t i = 0; i < count; ++i) {
      int thread = -1, line = -1;
      char file = 0;
      // Key "FA[stress<f>]", text "<thread> <line>"; thread t writes to file t % 2.
      if (std::sscanf(batch[i].Key, "FA[stress%c]", &file) != 1 ||
          std::sscanf(batch[i].Text, "%d %d", &thread, &line) != 2 || thread < 0 ||
          thread >= kThreads || file != static_cast<char>('0' + thread % 2) ||
          line != nextLine[thread]) {
        misplaced = true;
        continue;
      }
      ++nextLine[thread];
      ++records;
    }
    return 1;
  };
  int64_t clock = 0;
  services.Now = [&clock] { return clock += 3000; };  // three seconds pass between readings
  ScopedPlatform platform(services);

  ResetEnvironmentForTesting();
  SysFuncs_Init(nullptr, nullptr, "", "");
  CSFEnvPtr env = GetSFEnv();
  ASSERT_TRUE(env->m_timer->cancel(env->m_loggerTask));  // runs are driven below
  IceUtil::TimerTaskPtr writer = env->m_loggerTask;

  std::atomic<int> finished{0};
  std::thread handOver([&] {
    while (finished.load() < kThreads) writer->runTimerTask();
  });
  std::vector<std::thread> formulas;
  for (int thread = 0; thread < kThreads; ++thread) {
    formulas.emplace_back([thread, &finished] {
      const std::string file = "stress" + std::to_string(thread % 2);
      char text[32];
      for (int line = 0; line < kLines; ++line) {
        std::snprintf(text, sizeof text, "%d %d", thread, line);
        FileAppend(file, text);
      }
      finished.fetch_add(1);
    });
  }
  for (std::thread& formula : formulas) formula.join();
  handOver.join();
  // What the last run missed is handed over when the module lets go of the writer.
  SysFuncs_Exit();
  writer = nullptr;
  env = nullptr;
  ResetEnvironmentForTesting();

  EXPECT_FALSE(misplaced);
  EXPECT_EQ(records, int64_t{kThreads} * kLines);
  for (int thread = 0; thread < kThreads; ++thread) EXPECT_EQ(nextLine[thread], kLines) << thread;
  EXPECT_GE(runsWithRecords, 1);
}

}  // namespace
}  // namespace sysfuncs::testing
