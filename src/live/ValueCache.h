// The per-instance memo of quote and account values, and the fixed buffer its keys are built in.
#ifndef SYSFUNCS_LIVE_VALUE_CACHE_H_
#define SYSFUNCS_LIVE_VALUE_CACHE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// A memoised quote or account value.
struct CachedValue {
  int32_t Kind = 0;  // 4 real, 10 integer
  double RealValue = 0.0;
  int32_t IntValue = 0;
  std::string Text;  // left empty
};

namespace sysfuncs {

inline constexpr int32_t kCachedReal = 4;
inline constexpr int32_t kCachedInteger = 10;

// Values by key text. An entry is inserted once and never replaced or removed: the first answer
// of a key stands for the life of the instance. Looking a key up allocates nothing.
class ValueCache {
 public:
  // The entry of `key`; null when there is none.
  const CachedValue* Find(std::string_view key) const {
    const auto found = entries_.find(key);
    return found != entries_.end() ? &found->second : nullptr;
  }
  // Stores a value under `key` unless the key already has one.
  void InsertReal(std::string_view key, double value);
  void InsertInteger(std::string_view key, int32_t value);

  size_t Size() const { return entries_.size(); }

  // Hits by slot. A slot stands for one key for the cache's whole life (one figure of one data
  // source), so a repeated read neither builds nor searches the key's text. Entries are never
  // removed, so a remembered entry stays valid.
  const CachedValue* FindSlot(size_t slot) const {
    return slot < slots_.size() ? slots_[slot] : nullptr;
  }
  // Remembers `entry` (null: nothing) for `slot`; kNoSlot is ignored.
  void RememberSlot(size_t slot, const CachedValue* entry);

 private:
  std::map<std::string, CachedValue, std::less<>> entries_;
  std::vector<const CachedValue*> slots_;
};

// Slot numbers: the account summary figures first, then per data source its 30 quote fields and
// 11 position figures. Data sources beyond the first 64 have none.
inline constexpr size_t kNoSlot = static_cast<size_t>(-1);
inline constexpr int32_t kAccountSlots = 8;
inline constexpr int32_t kQuoteSlots = 30;
inline constexpr int32_t kPositionSlots = 11;
inline constexpr int32_t kSlotDataSources = 64;

inline constexpr size_t DataSourceSlot(int32_t dataIndex, int32_t offset, int32_t number,
                                       int32_t count) {
  if (dataIndex < 0 || dataIndex >= kSlotDataSources || number < 0 || number >= count) {
    return kNoSlot;
  }
  // Every term is small and not negative here.
  const auto index = static_cast<size_t>(dataIndex);
  return kAccountSlots + index * (kQuoteSlots + kPositionSlots) +
         static_cast<size_t>(offset + number);
}
inline constexpr size_t AccountSlot(int32_t number) {
  return number >= 0 && number < kAccountSlots ? static_cast<size_t>(number) : kNoSlot;
}
inline constexpr size_t QuoteSlot(int32_t dataIndex, int32_t field) {
  return DataSourceSlot(dataIndex, 0, field, kQuoteSlots);
}
inline constexpr size_t PositionSlot(int32_t dataIndex, int32_t number) {
  return DataSourceSlot(dataIndex, kQuoteSlots, number, kPositionSlots);
}

// A key text built in place: "Data%d.%s" and "Data%d.Q_BSType[%d,%d]" without touching the heap.
// Text that would not fit is cut off.
class CacheKey {
 public:
  CacheKey& Append(std::string_view text);
  CacheKey& Append(int32_t number);
  std::string_view View() const { return {buffer_, length_}; }

  // "Data<dataIndex>.<name>".
  static CacheKey OfDataSource(int32_t dataIndex, std::string_view name);

 private:
  char buffer_[96];
  size_t length_ = 0;
};

}  // namespace sysfuncs

#endif  // SYSFUNCS_LIVE_VALUE_CACHE_H_
