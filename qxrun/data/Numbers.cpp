#include "qxrun/data/Numbers.h"

#include <array>
#include <cstdint>
#include <fast_float/fast_float.h>

namespace qxrun {
namespace {

constexpr std::array<double, 16> kPowersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

}  // namespace

bool ParseNumber(std::string_view text, double* value) {
  // Digits and at most one point: an integer of at most 15 digits and a power of ten are both
  // exact doubles, and one division rounds their quotient correctly, as the full parser would.
  const char* at = text.data();
  const char* const end = at + text.size();
  const bool negative = at != end && *at == '-';
  if (negative) ++at;
  uint64_t mantissa = 0;
  int digits = 0;
  int fractionDigits = 0;
  bool point = false;
  for (; at != end; ++at) {
    const char c = *at;
    if (c >= '0' && c <= '9') {
      mantissa = mantissa * 10 + static_cast<uint64_t>(c - '0');
      ++digits;
      fractionDigits += point ? 1 : 0;
    } else if (c == '.' && !point) {
      point = true;
    } else {
      break;
    }
  }
  if (at == end && digits > 0 && digits <= 15) {
    const double magnitude =
        static_cast<double>(mantissa) / kPowersOfTen[static_cast<size_t>(fractionDigits)];
    *value = negative ? -magnitude : magnitude;
    return true;
  }
  const fast_float::from_chars_result result = fast_float::from_chars(text.data(), end, *value);
  return result.ec == std::errc() && result.ptr == end;
}

}  // namespace qxrun
