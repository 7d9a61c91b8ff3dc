#include "platform/Services.h"
#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace sysfuncs::testing {
namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

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

TEST(DefaultMessageCentre, AppendsEachLineToTheFileNamedInItsKey) {
  const std::string a = ShortName("a"), b = ShortName("b");
  std::filesystem::remove(b);
  std::ofstream(a) << "kept\n";
  const Quill::MsgRecord records[] = {Record("FA[" + a + "]", "one"),
                                      Record("FA[" + b + "]", "two"),
                                      Record("FA[" + a + "]", "three")};
  DefaultSendToMsgCenter(1, records, 3);
  EXPECT_EQ(ReadFile(a), "kept\none\nthree\n");
  EXPECT_EQ(ReadFile(b), "two\n");
  std::filesystem::remove(a);
  std::filesystem::remove(b);
}

TEST(DefaultMessageCentre, AKeyCutBeforeItsBracketNamesTheRest) {
  const std::string name = ShortName("cut");
  std::filesystem::remove(name);
  Quill::MsgRecord record = Record("FA[" + name, "line");
  DefaultSendToMsgCenter(1, &record, 1);
  EXPECT_EQ(ReadFile(name), "line\n");
  std::filesystem::remove(name);
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
