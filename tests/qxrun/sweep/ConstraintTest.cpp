#include "qxrun/InputError.h"
#include "qxrun/sweep/Constraint.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qxrun {
namespace {

const std::vector<std::string> kNames = {"fast", "slow", "stop"};

struct Case {
  const char* Text;
  std::vector<double> Values;  // fast, slow, stop
  bool Holds;
};

TEST(ConstraintTest, ComparesArithmeticOfParametersAndNumbers) {
  const Case cases[] = {
      {"fast<slow", {5, 20, 0}, true},
      {"fast<slow", {20, 20, 0}, false},
      {"fast <= slow", {20, 20, 0}, true},
      {"slow>fast", {30, 20, 0}, false},
      {"fast==slow", {7, 7, 0}, true},
      {"fast!=slow", {7, 7, 0}, false},
      // Products bind tighter than sums: 2*5+10 = 20 <= 20, 2*6+10 = 22 > 20.
      {"slow >= 2*fast + 10", {5, 20, 0}, true},
      {"slow >= 2*fast + 10", {6, 20, 0}, false},
      // Parentheses: (5+10)*2 = 30 > 20.
      {"(fast + 10) * 2 > slow", {5, 20, 0}, true},
      {"slow - fast - 5 > 0", {5, 20, 0}, true},   // (20-5)-5 = 10, not 20-(5-5)
      {"slow / fast / 2 == 2", {5, 20, 0}, true},  // (20/5)/2 = 2
      {"-stop < 0.5", {0, 0, 0.25}, true},
      {"-stop < -0.5", {0, 0, 0.25}, false},
      {"fast<slow && stop>1", {5, 20, 2}, true},
      {"fast<slow && stop>1", {5, 20, 1}, false},
      {"fast<slow&&stop>1&&slow<10", {5, 20, 2}, false},
  };
  for (const Case& row : cases) {
    const Constraint constraint(row.Text, kNames);
    EXPECT_EQ(constraint.Holds(row.Values), row.Holds) << row.Text;
  }
}

TEST(ConstraintTest, TextThatDoesNotParseIsRefusedNamingIt) {
  const char* bad[] = {"fast",       "fast<",       "fast<slow)",   "fast < width",
                       "fast<<slow", "(fast<slow",  "fast<slow &&", "",
                       "fast < 1e",  "fast $ slow", "2 + ",         "fast<slow||stop>1"};
  for (const char* text : bad) {
    try {
      const Constraint constraint(text, kNames);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const InputError& error) {
      const std::string message = error.what();
      EXPECT_EQ(message.find("--constraint \"" + std::string(text) + "\": "), 0u) << message;
      EXPECT_EQ(message.find('\n'), std::string::npos) << message;
    }
  }
}

}  // namespace
}  // namespace qxrun
