#include "sysfuncs/Environment.h"

#include "output/Logger.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <dlfcn.h>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace sysfuncs::testing {
namespace {

// Each test starts as if the module had just been loaded, and leaves no timer running.
class Module : public ::testing::Test {
 protected:
  void SetUp() override { ResetEnvironmentForTesting(); }
  void TearDown() override { ResetEnvironmentForTesting(); }
};

TEST_F(Module, EachInitStoresAdapterDirectoriesAndUser) {
  TestHost host;
  host.AddSource("s", EvenBars(0, 60000, 1));
  EXPECT_EQ(CSystemFuncs(&host.data).GetUserID(), "") << "before the first Init";
  CDataAdapter adapter, second;
  int ignored = 0;
  EXPECT_EQ(SysFuncs_Init(&ignored, &adapter, "D:\\Base", "u01"), 1);
  CSFEnvPtr env = GetSFEnv();
  EXPECT_EQ(env->m_pDataAdapter, &adapter);
  EXPECT_EQ(env->GetBaseDir(), "D:\\Base");
  EXPECT_EQ(env->GetUserDir(), "D:\\Base\\user\\u01");
  EXPECT_EQ(env->GetUserID(), "u01");
  EXPECT_EQ(env->m_nReserved, 1);
  EXPECT_EQ(CSystemFuncs(&host.data).GetUserID(), "u01");
  // A second Init leaves its own values; the user folder is cut at 259 characters: 250 + "\user\"
  // (6) + "user01" (6) = 262.
  const std::string base(250, 'b');
  SysFuncs_Init(nullptr, &second, base.c_str(), "user01");
  env = GetSFEnv();
  EXPECT_EQ(env->m_pDataAdapter, &second);
  EXPECT_EQ(env->GetUserDir(), base + "\\user\\use");
  EXPECT_EQ(env->GetUserID(), "user01");
  SysFuncs_Exit();
}

TEST_F(Module, ExitBeforeInitDoesNothing) {
  SysFuncs_Exit();
  CSFEnvPtr env = GetSFEnv();
  EXPECT_FALSE(env->m_timer);
  EXPECT_EQ(env->m_pDataAdapter, nullptr);
}

TEST_F(Module, InitSchedulesTheLoggerAndExitStopsTheTimer) {
  SysFuncs_Init(nullptr, nullptr, "", "");
  CSFEnvPtr env = GetSFEnv();
  ASSERT_TRUE(env->m_timer);
  ASSERT_TRUE(CTimerTask_LoggerPtr::dynamicCast(env->m_loggerTask));
  // Cancelling answers whether the task was scheduled; put it back for the rest of the test.
  EXPECT_TRUE(env->m_timer->cancel(env->m_loggerTask));
  env->m_timer->scheduleRepeated(env->m_loggerTask, IceUtil::Time::seconds(3));
  SysFuncs_Exit();
  // The environment and the handles stay after exit; the timer is destroyed and schedules no more.
  EXPECT_TRUE(env->m_timer);
  EXPECT_THROW(env->m_timer->schedule(env->m_loggerTask, IceUtil::Time::seconds(3)),
               IceUtil::IllegalArgumentException);
}

TEST_F(Module, EntryPointsAreExportedUnmangledAndInternalsAreHidden) {
  void* module = dlopen(SYSFUNCS_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(module, nullptr) << dlerror();
  EXPECT_NE(dlsym(module, "SysFuncs_Init"), nullptr);
  EXPECT_NE(dlsym(module, "SysFuncs_Exit"), nullptr);
  EXPECT_EQ(dlsym(module, "_ZN8sysfuncs8GetSFEnvEv"), nullptr);  // sysfuncs::GetSFEnv()
  dlclose(module);
}

// File output collected between two runs of the background writer.
class FileOutput : public Module {
 protected:
  void SetUp() override {
    Module::SetUp();
    SysFuncsPlatform services;
    services.SendToMsgCenter = [this](int kind, const Quill::MsgRecord* records, size_t count) {
      EXPECT_EQ(kind, 1);
      handOvers.emplace_back(records, records + count);
      return 1;
    };
    services.Now = [this] { return now; };
    platform = std::make_unique<ScopedPlatform>(services);
  }
  void TearDown() override {
    Module::TearDown();
    platform.reset();
  }

  std::vector<std::vector<Quill::MsgRecord>> handOvers;
  int64_t now = 1700000000500;
  std::unique_ptr<ScopedPlatform> platform;
};

TEST_F(FileOutput, LinesOfOneIntervalReachTheCentreInCallOrderWithOneTime) {
  CTimerTask_LoggerPtr logger = new CTimerTask_Logger();
  logger->runTimerTask();
  EXPECT_TRUE(handOvers.empty()) << "nothing pending makes no hand-over";

  logger->Append("b.txt", "first");
  logger->Append("a.txt", "other file");
  logger->Append("b.txt", "second");
  logger->Append("B.txt", "letter case makes another file");
  logger->runTimerTask();
  ASSERT_EQ(handOvers.size(), 1u);
  const std::vector<Quill::MsgRecord>& records = handOvers[0];
  ASSERT_EQ(records.size(), 4u);
  // Files in byte order ("B" < "a" < "b"), lines in call order.
  const char* keys[] = {"FA[B.txt]", "FA[a.txt]", "FA[b.txt]", "FA[b.txt]"};
  const char* texts[] = {"letter case makes another file", "other file", "first", "second"};
  for (size_t i = 0; i < records.size(); ++i) {
    EXPECT_EQ(records[i].Kind, 1) << i;
    EXPECT_EQ(records[i].Zero, 0) << i;
    EXPECT_STREQ(records[i].Key, keys[i]) << i;
    EXPECT_STREQ(records[i].Text, texts[i]) << i;
    EXPECT_EQ(records[i].Time, 1700000000) << i;
  }
  logger->runTimerTask();
  EXPECT_EQ(handOvers.size(), 1u) << "the table was emptied";

  // Long lines and file names are cut: 259 bytes of text, 31 characters of key.
  logger->Append(std::string(40, 'n'), std::string(300, 'x'));
  logger->runTimerTask();
  ASSERT_EQ(handOvers.size(), 2u);
  EXPECT_EQ(std::string(handOvers[1][0].Key), "FA[" + std::string(28, 'n'));
  EXPECT_EQ(std::string(handOvers[1][0].Text), std::string(259, 'x'));
}

TEST_F(FileOutput, FileAppendNeedsAStartedModule) {
  TestHost host;
  host.AddSource("s", EvenBars(0, 60000, 1));
  CSystemFuncs funcs(&host.data);
  EXPECT_THROW(funcs.FileAppend("a.txt", "x"), IceUtil::NullHandleException);

  SysFuncs_Init(nullptr, nullptr, "", "");
  EXPECT_TRUE(funcs.FileAppend("a.txt", "queued"));
  SysFuncs_Exit();
  ResetEnvironmentForTesting();  // the last handle goes: the logger hands over as it is destroyed
  ASSERT_EQ(handOvers.size(), 1u);
  EXPECT_STREQ(handOvers[0][0].Key, "FA[a.txt]");
  EXPECT_STREQ(handOvers[0][0].Text, "queued");
}

TEST(ModuleShutdown, LinesAppendedBeforeExitReachTheirFileWhenTheModuleUnloads) {
  const std::string file = "/tmp/sfexit" + std::to_string(getpid());
  std::remove(file.c_str());
  // The child appends, stops the module and ends at once, long before the writer's 3 seconds:
  // the stopped timer lets go of the logger, which hands the line over through the default
  // message centre when the environment goes at unload.
  EXPECT_EXIT(
      {
        SysFuncs_Init(nullptr, nullptr, "", "");
        TestHost host;
        host.AddSource("s", EvenBars(0, 60000, 1));
        CSystemFuncs funcs(&host.data);
        funcs.FileAppend(file, "written at exit");
        SysFuncs_Exit();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
  std::ifstream written(file);
  std::string line;
  EXPECT_TRUE(std::getline(written, line));
  EXPECT_EQ(line, "written at exit");
  std::remove(file.c_str());
}

}  // namespace
}  // namespace sysfuncs::testing
