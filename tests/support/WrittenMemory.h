// Memory hints must never change what a program already wrote: a check shared by the hints of
// the library and of qxrun.
#ifndef SYSFUNCS_TESTS_SUPPORT_WRITTEN_MEMORY_H_
#define SYSFUNCS_TESTS_SUPPORT_WRITTEN_MEMORY_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sysfuncs::testing {

// Fills `count` 32-bit values with a pattern, hands the buffer to `hint`, and counts the values
// that no longer hold the pattern.
template <class Hint>
size_t ValuesChangedByHint(size_t count, Hint&& hint) {
  const auto pattern = [](size_t index) { return static_cast<uint32_t>(index * 2654435761u); };
  std::vector<uint32_t> values(count);
  for (size_t i = 0; i < count; ++i) values[i] = pattern(i);
  hint(values.data());
  size_t changed = 0;
  for (size_t i = 0; i < count; ++i) {
    if (values[i] != pattern(i)) ++changed;
  }
  return changed;
}

}  // namespace sysfuncs::testing

#endif  // SYSFUNCS_TESTS_SUPPORT_WRITTEN_MEMORY_H_
