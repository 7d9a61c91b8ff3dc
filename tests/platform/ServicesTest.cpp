#include "platform/Services.h"
#include "support/HostBuilder.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace sysfuncs::testing {
namespace {

Quill::MsgRecord Record(const std::string& key, const std::string& text) {
  Quill::MsgRecord record;
  record.Kind = 1;
  std::strncpy(record.Key, key.c_str(), sizeof record.Key - 1);
  std::strncpy(record.Text, text.c_str(), sizeof record.Text - 1);
  return record;
}

// A key holds 27 characters of file name: short names in the temporary directory.
std::string ShortName(const char* name) {
  return "/tmp/sfmc" + std::to_string(getpid() % 100000) + name;
}

// A key cut before its bracket names the rest.
TEST(DefaultMessageCentre, AppendsEachLineToTheFileNamedInItsKey) {
  const std::string a = ShortName("a"), b = ShortName("b"), cut = ShortName("cut");
  std::filesystem::remove(b);
  std::filesystem::remove(cut);
  std::ofstream(a) << "kept\n";
  const Quill::MsgRecord records[] = {
      Record("FA[" + a + "]", "one"), Record("FA[" + b + "]", "two"),
      Record("FA[" + a + "]", "three"), Record("FA[" + cut, "line")};
  DefaultSendToMsgCenter(1, records, 4);
  EXPECT_EQ(ReadWholeFile(a), "kept\none\nthree\n");
  EXPECT_EQ(ReadWholeFile(b), "two\n");
  EXPECT_EQ(ReadWholeFile(cut), "line\n");
  for (const std::string& name : {a, b, cut}) std::filesystem::remove(name);
}

TEST(DefaultServices, DeleteRefuseAndSoundAnswerWhatTheyDid) {
  const std::string name = ShortName("gone");
  std::ofstream(name) << "x";
  EXPECT_TRUE(DefaultDeleteFile(name));
  EXPECT_FALSE(std::filesystem::exists(name));
  EXPECT_FALSE(DefaultDeleteFile(name));

  EXPECT_FALSE(DefaultPlaySound(name));    // missing: never a default sound
  EXPECT_FALSE(DefaultPlaySound("/tmp"));  // a directory
  EXPECT_FALSE(DefaultPlaySound(""));

  Quill::ITradeOrder order;  // a library alone never sends a live order
  EXPECT_EQ(SysFuncs_DefaultPlatform().ShowConfirmOrder(&order, 0, 0), 0);
}

TEST(PlatformServices, ReplacingOneServiceKeepsTheOthers) {
  std::string shown;
  SysFuncsPlatform box;
  box.MessageBox = [&shown](const std::string& text) { shown = text; };
  ScopedPlatform first(box);
  SysFuncsPlatform clock;
  clock.Now = [] { return int64_t{42}; };
  SysFuncs_SetPlatform(clock);
  ShowMessage("still mine");
  EXPECT_EQ(shown, "still mine");
  EXPECT_EQ(NowMillis(), 42);
}

}  // namespace
}  // namespace sysfuncs::testing
