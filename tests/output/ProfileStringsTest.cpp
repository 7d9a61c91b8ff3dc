#include "sysfuncs/SystemFuncs.h"

#include "support/FakeAdapter.h"
#include "support/HostBuilder.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <unistd.h>

namespace sysfuncs::testing {
namespace {

namespace fs = std::filesystem;

// The notice the retired file setter writes: "该函数功能已经取消".
#if defined(SYSFUNCS_CHARSET_GB18030)
const std::string kNotice =
    "\xB8\xC3\xBA\xAF\xCA\xFD\xB9\xA6\xC4\xDC\xD2\xD1\xBE\xAD\xC8\xA1\xCF\xFB";
#else
const std::string kNotice =
    "\xE8\xAF\xA5\xE5\x87\xBD\xE6\x95\xB0\xE5\x8A\x9F\xE8\x83\xBD\xE5\xB7\xB2\xE7\xBB\x8F\xE5\x8F"
    "\x96\xE6\xB6\x88";
#endif

// A configuration store kept in memory, recording the store names asked for.
class StoreAdapter : public CDataAdapter {
 public:
  bool GetConfigFileProperty(const std::string& store, const std::string& section,
                             const std::string& key, std::string& value) override {
    stores.insert(store);
    const auto found = values.find({store, section, key});
    if (found == values.end()) return false;
    value = found->second;
    return true;
  }
  void SetConfigFileProperty(const std::string& store, const std::string& section,
                             const std::string& key, const std::string& value) override {
    stores.insert(store);
    values[{store, section, key}] = value;
  }

  std::map<std::tuple<std::string, std::string, std::string>, std::string> values;
  std::set<std::string> stores;
};

class ProfileStrings : public ::testing::Test {
 protected:
  ProfileStrings() {
    host.AddSource("s", EvenBars(0, 60000, 2));
    funcs = std::make_unique<CSystemFuncs>(&host.data);
  }

  std::string Write(const std::string& name, const std::string& content) const {
    const std::string path = folder / name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }

  TestHost host;
  std::unique_ptr<CSystemFuncs> funcs;
  TempFolder folder{"sfprofile"};
};

TEST_F(ProfileStrings, ThePlatformStoreIsQxlprofileAndEmptyReadsAsNA) {
  StoreAdapter adapter;
  ScopedAdapter installed(&adapter);
  EXPECT_EQ(funcs->GetQXProfileString("strategy", "level"), "N/A");
  EXPECT_TRUE(funcs->SetQXProfileString("strategy", "level", "3"));
  EXPECT_EQ(funcs->GetQXProfileString("strategy", "level"), "3");
  EXPECT_EQ(funcs->GetQXProfileString("Strategy", "level"), "N/A") << "the store decides on case";
  EXPECT_TRUE(funcs->SetQXProfileString("strategy", "level", ""));
  EXPECT_EQ(funcs->GetQXProfileString("strategy", "level"), "N/A");
  EXPECT_TRUE(funcs->SetQXProfileString("策略", "名称", "均线"));
  EXPECT_EQ(funcs->GetQXProfileString("策略", "名称"), "均线");
  EXPECT_EQ(adapter.stores, std::set<std::string>{"qxlprofile"});
}

TEST_F(ProfileStrings, ThePlatformStoreNeedsAStartedModule) {
  ScopedAdapter none(nullptr);
  EXPECT_THROW(funcs->SetQXProfileString("s", "k", "v"), IceUtil::NullHandleException);
  EXPECT_THROW(funcs->GetQXProfileString("s", "k"), IceUtil::NullHandleException);
}

TEST_F(ProfileStrings, FileValuesFollowTheProfileFileRules) {
  const std::string file = Write("a.ini",
                                 "; settings\n"
                                 "[Main]\n"
                                 "level=3\n"
                                 "empty=\n"
                                 "padded =  spaced out  \n"
                                 "quoted=\" kept blanks \"\n"
                                 "twice=first\n"
                                 "twice=second\n"
                                 "long=" +
                                     std::string(300, 'v') +
                                     "\n"
                                     "名称=均线\n"
                                     "[Other]\n"
                                     "level=9\n");
  const struct {
    const char* section;
    const char* key;
    std::string expected;
  } rows[] = {
      {"Main", "level", "3"},
      {"main", "LEVEL", "3"},  // sections and keys ignore letter case
      {"Other", "level", "9"},
      {"Main", "empty", ""},  // an empty value is not missing
      {"Main", "padded", "spaced out"},
      {"Main", "quoted", " kept blanks "},
      {"Main", "twice", "first"},
      {"Main", "long", std::string(259, 'v')},  // a 260-byte buffer
      {"Main", "名称", "均线"},
      {"Main", "missing", "N/A"},
      {"Missing", "level", "N/A"},
      {"", "level", "N/A"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(funcs->GetQXProfileString2File(file, row.section, row.key), row.expected)
        << row.section << "/" << row.key;
  }
  EXPECT_EQ(funcs->GetQXProfileString2File(folder / "none.ini", "Main", "level"), "N/A");
  EXPECT_EQ(funcs->GetQXProfileString2File("", "Main", "level"), "N/A");
  EXPECT_EQ(funcs->GetQXProfileString2File(folder.path().string(), "Main", "level"), "N/A");
}

TEST_F(ProfileStrings, TheRetiredSetterWritesTheWithdrawalNoticeNotTheValue) {
  const std::string file = Write("b.ini",
                                 "[Main]\n"
                                 "level=3\n"
                                 "other=kept\n");
  EXPECT_TRUE(funcs->SetQXProfileString2File(file, "main", "Level", "42"));
  EXPECT_EQ(funcs->GetQXProfileString2File(file, "Main", "level"), kNotice);
  EXPECT_EQ(funcs->GetQXProfileString2File(file, "Main", "other"), "kept");
  EXPECT_EQ(ReadWholeFile(file).find("42"), std::string::npos);
  EXPECT_NE(ReadWholeFile(file).find("=" + kNotice + "\n"), std::string::npos)
      << ReadWholeFile(file);

  // A missing file and a missing section are created.
  const std::string created = folder / "new.ini";
  EXPECT_TRUE(funcs->SetQXProfileString2File(created, "Sec", "key", "value"));
  EXPECT_EQ(ReadWholeFile(created), "[Sec]\nkey=" + kNotice + "\n");
  EXPECT_TRUE(funcs->SetQXProfileString2File(created, "Two", "k2", "value"));
  EXPECT_EQ(funcs->GetQXProfileString2File(created, "Two", "k2"), kNotice);
  EXPECT_EQ(funcs->GetQXProfileString2File(created, "Sec", "key"), kNotice);
}

TEST_F(ProfileStrings, AFileThatCannotBeWrittenFailsAndKeepsItsContent) {
  EXPECT_FALSE(funcs->SetQXProfileString2File(folder / "no/such/dir.ini", "s", "k", "v"));
  EXPECT_FALSE(funcs->SetQXProfileString2File("", "s", "k", "v"));
  EXPECT_FALSE(funcs->SetQXProfileString2File(folder.path().string(), "s", "k", "v"));  // a folder
  EXPECT_TRUE(fs::is_directory(folder.path()));

  // A read-only file (permissions bind only a user other than root).
  const std::string locked = Write("locked.ini", "[s]\nk=old\n");
  EXPECT_FALSE(funcs->SetQXProfileString2File(locked + "/inner.ini", "s", "k", "v"));
  fs::permissions(locked, fs::perms::owner_read);
  if (::geteuid() != 0) {
    EXPECT_FALSE(funcs->SetQXProfileString2File(locked, "s", "k", "v"));
    EXPECT_EQ(ReadWholeFile(locked), "[s]\nk=old\n");
  }
  EXPECT_EQ(funcs->GetQXProfileString2File(locked, "s", "k"), "old");
}

}  // namespace
}  // namespace sysfuncs::testing
