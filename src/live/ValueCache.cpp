#include "live/ValueCache.h"

#include <algorithm>

namespace sysfuncs {

void ValueCache::InsertReal(std::string_view key, double value) {
  if (entries_.find(key) != entries_.end()) return;
  CachedValue entry;
  entry.Kind = kCachedReal;
  entry.RealValue = value;
  entries_.emplace(std::string(key), std::move(entry));
}

void ValueCache::InsertInteger(std::string_view key, int32_t value) {
  if (entries_.find(key) != entries_.end()) return;
  CachedValue entry;
  entry.Kind = kCachedInteger;
  entry.IntValue = value;
  entries_.emplace(std::string(key), std::move(entry));
}

void ValueCache::RememberSlot(size_t slot, const CachedValue* entry) {
  if (slot == kNoSlot || entry == nullptr) return;
  if (slot >= slots_.size()) slots_.resize(slot + 1, nullptr);
  slots_[slot] = entry;
}

CacheKey& CacheKey::Append(std::string_view text) {
  const size_t count = std::min(text.size(), sizeof buffer_ - length_);
  text.copy(buffer_ + length_, count);
  length_ += count;
  return *this;
}

CacheKey& CacheKey::Append(int32_t number) {
  // Digits are written backwards from the end of a scratch buffer; the magnitude is taken in 64
  // bits so that the lowest 32-bit number has one.
  char digits[12];
  char* first = digits + sizeof digits;
  int64_t magnitude = number < 0 ? -static_cast<int64_t>(number) : number;
  do {
    *--first = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (number < 0) *--first = '-';
  return Append(std::string_view(first, static_cast<size_t>(digits + sizeof digits - first)));
}

CacheKey CacheKey::OfDataSource(int32_t dataIndex, std::string_view name) {
  CacheKey key;
  key.Append("Data").Append(dataIndex).Append(".").Append(name);
  return key;
}

}  // namespace sysfuncs
