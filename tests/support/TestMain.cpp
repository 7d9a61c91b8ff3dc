// Runs every suite in one fixed time zone, so calendar results do not depend on the machine.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <time.h>

int main(int argc, char** argv) {
  setenv("TZ", "Asia/Shanghai", 1);
  tzset();
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
