#include "sysfuncs/SystemFuncs.h"

#include "support/HostBuilder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace sysfuncs::testing {
namespace {

class GlobalVariables : public ::testing::Test {
 protected:
  GlobalVariables() {
    host.AddSource("s", EvenBars(0, 60000, 2));
    funcs = std::make_unique<CSystemFuncs>(&host.data);
  }

  TestHost host;
  std::unique_ptr<CSystemFuncs> funcs;
};

TEST_F(GlobalVariables, IndexedValuesOverwriteAndMissingOnesAreInvalid) {
  EXPECT_EQ(funcs->GetGlobalVar(7), kInvalidNumber);
  EXPECT_TRUE(funcs->SetGlobalVar(-3, 1.5));
  EXPECT_TRUE(funcs->SetGlobalVar(7, 2.0));
  EXPECT_TRUE(funcs->SetGlobalVar(7, 2.5));
  EXPECT_EQ(funcs->GetGlobalVar(-3), 1.5);
  EXPECT_EQ(funcs->GetGlobalVar(7), 2.5);
  EXPECT_EQ(funcs->GetGlobalVar(3), kInvalidNumber);
  EXPECT_EQ(host.data.GlobalVars.size(), 2u);
}

TEST_F(GlobalVariables, NamesAreStrippedOfBlanksOnReadingOnly) {
  funcs->SetGlobalVar2("Count", 1.0);
  funcs->SetGlobalVar2(" x", 2.0);
  funcs->SetGlobalVar2("", 3.0);
  funcs->SetGlobalVar2("tab\t", 4.0);
  funcs->SetGlobalVar2("\tlead", 6.0);
  funcs->SetGlobalVar2("a b", 5.0);
  const struct {
    const char* name;
    double expected;
    const char* why;
  } rows[] = {
      {"Count", 1.0, "as stored"},
      {"  Count ", 1.0, "blanks around are dropped"},
      {"count", kInvalidNumber, "letter case matters"},
      {" x", kInvalidNumber, "stored with its blank, read as x"},
      {"x", kInvalidNumber, "no x was stored"},
      {"   ", 3.0, "only blanks: the empty name"},
      {"tab\t", 4.0, "as stored"},
      {" tab\t ", 4.0, "a trailing tab is no blank"},
      {" \tlead", 6.0, "a leading tab is no blank"},
      {"tab", kInvalidNumber, "the tab stays"},
      {"lead", kInvalidNumber, "the tab stays"},
      {" a b ", 5.0, "inner blanks stay"},
      {"ab", kInvalidNumber, "inner blanks stay"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(funcs->GetGlobalVar2(row.name), row.expected) << '"' << row.name << "\": " << row.why;
  }
  // The stored names are exactly those given.
  EXPECT_EQ(host.data.NamedGlobalVars.count(" x"), 1u);
}

TEST_F(GlobalVariables, TablesAreSeparateAndSharedByInstancesOfOneHostObject) {
  funcs->SetGlobalVar(1, 5.0);
  EXPECT_EQ(funcs->GetGlobalVar2("1"), kInvalidNumber);
  funcs->SetGlobalVar2("均值", kInvalidNumber);  // storable, reads like a missing entry
  EXPECT_EQ(funcs->GetGlobalVar2("均值"), kInvalidNumber);
  EXPECT_EQ(host.data.NamedGlobalVars.size(), 1u);

  CSystemFuncs other(&host.data);
  EXPECT_EQ(other.GetGlobalVar(1), 5.0);
}

}  // namespace
}  // namespace sysfuncs::testing
