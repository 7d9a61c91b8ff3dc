// ParseDateTime on arbitrary texts: no crash, no undefined behaviour, and a refused text leaves
// the instant alone. A text it reads in the plain form with fields in range reads back the same.
#include "sysfuncs/Platform.h"

#include "util/DateCodec.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int64_t kUntouched = 0x5eed5eed5eedLL;

void Fail(const std::string& text, const char* problem) {
  std::fprintf(stderr, "fuzz_date_time: %s for text '%s'\n", problem, text.c_str());
  std::abort();
}

// Whether `text` is "YYYY/MM/DD hh:mm:ss" with a year from 1971 to 2037 and every field in its
// calendar range (days up to 28, so every month has them).
bool IsPlainInRange(const std::string& text) {
  int year, month, day, hour, minute, second;
  char tail;
  if (text.size() != 19 || std::sscanf(text.c_str(), "%4d/%2d/%2d %2d:%2d:%2d%c", &year, &month,
                                       &day, &hour, &minute, &second, &tail) != 6) {
    return false;
  }
  if (text[4] != '/' || text[7] != '/' || text[10] != ' ' || text[13] != ':' || text[16] != ':') {
    return false;
  }
  for (size_t i : {0, 1, 2, 3, 5, 6, 8, 9, 11, 12, 14, 15, 17, 18}) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return year > 1970 && year < 2038 && month >= 1 && month <= 12 && day >= 1 && day <= 28 &&
         hour < 24 && minute < 60 && second < 60;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("TZ", "Asia/Shanghai", 1);
  SysFuncsPlatform services;
  services.MessageBox = [](const std::string&) {};  // refusals are expected here
  SysFuncs_SetPlatform(services);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  int64_t instant = kUntouched;
  if (!sysfuncs::ParseDateTime(text, instant)) {
    if (instant != kUntouched) Fail(text, "a refused text changed the instant");
    return 0;
  }
  // Asia/Shanghai has kept UTC+8 since 1991 and had no gaps or repeated hours before, bar a few
  // summers; the plain form with fields in range from 1992 on must read back as written.
  if (IsPlainInRange(text) && text.compare(0, 4, "1992") >= 0 &&
      sysfuncs::FormatDateTime(instant, 0, false) != text) {
    Fail(text, "a plain date and time did not read back as written");
  }
  return 0;
}
