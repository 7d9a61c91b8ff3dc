#include "output/WriteLog.h"
#include "support/HostBuilder.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace sysfuncs::testing {
namespace {

namespace fs = std::filesystem;

// Log lines at a fixed instant, 2024-03-05 09:07:02 in Shanghai, into a folder of their own.
class WriteLogTest : public ::testing::Test {
 protected:
  WriteLogTest() {
    SysFuncsPlatform services;
    services.Now = [] { return ShanghaiInstant(2024, 3, 5, 9, 7, 2, 999); };
    platform = std::make_unique<ScopedPlatform>(services);
  }

  std::unique_ptr<ScopedPlatform> platform;
  TempFolder folder{"sflog"};
};

TEST_F(WriteLogTest, StampedMessagesAreAppendedAndCopiedToStandardOutput) {
  const std::string file = folder / "run.log";
  std::ofstream(file) << "before\n";
  ::testing::internal::CaptureStdout();
  WriteLog(file, "orders %d of %s\n", 3, "IF2406");
  WriteLog(file, "%s", "no line end");
  const std::string printed = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(printed, "[20240305 090702] orders 3 of IF2406\n[20240305 090702] no line end");
  EXPECT_EQ(ReadWholeFile(file), "before\n" + printed);
}

TEST_F(WriteLogTest, WithoutAFileNameTheDaysLogInTheCurrentFolderIsUsed) {
  const fs::path previous = fs::current_path();
  fs::current_path(folder.path());
  ::testing::internal::CaptureStdout();
  WriteLog("", "%s %.2f\n", "均价", 12.5);
  ::testing::internal::GetCapturedStdout();
  fs::current_path(previous);
  EXPECT_EQ(ReadWholeFile(folder.path() / "20240305.log"), "[20240305 090702] 均价 12.50\n");
}

TEST_F(WriteLogTest, AFileThatCannotBeOpenedIsSkippedButTheLineIsPrinted) {
  ::testing::internal::CaptureStdout();
  WriteLog(folder / "missing/x.log", "kept %d\n", 1);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "[20240305 090702] kept 1\n");
  EXPECT_FALSE(fs::exists(folder.path() / "missing"));
}

}  // namespace
}  // namespace sysfuncs::testing
