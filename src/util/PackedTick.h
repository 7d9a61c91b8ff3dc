// Packed tick bars: a bar field that carries a single-precision price in its upper 32 bits and a
// signed 32-bit volume in its lower 32 bits.
#ifndef SYSFUNCS_UTIL_PACKED_TICK_H_
#define SYSFUNCS_UTIL_PACKED_TICK_H_

#include <bit>
#include <cstdint>

namespace sysfuncs {

// The single-precision price of the upper half, widened.
inline double PackedPrice(double field) {
  const uint64_t bits = std::bit_cast<uint64_t>(field);
  return static_cast<double>(std::bit_cast<float>(static_cast<uint32_t>(bits >> 32)));
}

// The signed 32-bit volume of the lower half, widened.
inline double PackedVolume(double field) {
  const uint64_t bits = std::bit_cast<uint64_t>(field);
  return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(bits)));
}

}  // namespace sysfuncs

#endif  // SYSFUNCS_UTIL_PACKED_TICK_H_
