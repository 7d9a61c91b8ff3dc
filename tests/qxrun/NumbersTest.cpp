#include "qxrun/data/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qxrun {
namespace {

TEST(NumbersTest, DecimalsReadToTheNearestDouble) {
  // Each expectation is the compiler's own reading of the same decimal literal.
  const std::pair<const char*, double> cases[] = {
      {"3602", 3602.0},
      {"3602.00", 3602.0},
      {"0.1", 0.1},
      {"2.179012", 2.179012},
      {"44.970001", 44.970001},
      {"-0.25", -0.25},
      {".5", 0.5},
      {"5.", 5.0},
      {"123456789012345", 123456789012345.0},        // 15 digits: the short path
      {"1234567890.12345678", 1234567890.12345678},  // 18 digits: the full parser
      {"0.000000000000000000000001", 1e-24},         // more than 15 fraction digits
      {"1.5e7", 1.5e7},
      {"36301200", 36301200.0},
      {"9007199254740993", 9007199254740992.0},  // 2^53 + 1 rounds to even
  };
  for (const auto& [text, expected] : cases) {
    double value = -7.0;
    EXPECT_TRUE(ParseNumber(text, &value)) << text;
    EXPECT_EQ(value, expected) << text;
  }
}

TEST(NumbersTest, NonNumbersAreRefusedAndSpecialValuesReported) {
  for (const char* text : {"", "-", ".", "1.2.3", "36x3", "1,5", "+1", " 1", "1 ", "0x10", "e5"}) {
    double value = 0.0;
    EXPECT_FALSE(ParseNumber(text, &value)) << "'" << text << "'";
  }
  double value = 0.0;
  ASSERT_TRUE(ParseNumber("nan", &value));
  EXPECT_TRUE(std::isnan(value));
  ASSERT_TRUE(ParseNumber("-inf", &value));
  EXPECT_EQ(value, -std::numeric_limits<double>::infinity());
}

}  // namespace
}  // namespace qxrun
