#include "util/DisplayNames.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <span>

namespace sysfuncs {
namespace {

constexpr char kUnknown[] = "未知";
constexpr size_t kUnbounded = std::numeric_limits<size_t>::max();

struct CodeText {
  int64_t code;
  const char* text;
};

// The text of the first row with the code, or `missing`.
const char* Lookup(std::span<const CodeText> rows, int64_t code, const char* missing = kUnknown) {
  for (const CodeText& row : rows) {
    if (row.code == code) return row.text;
  }
  return missing;
}

// printf into a buffer of `capacity` bytes: longer output is cut to capacity - 1 bytes.
__attribute__((format(printf, 2, 3))) std::string Format(size_t capacity, const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list measure;
  va_copy(measure, args);
  const int length = std::vsnprintf(nullptr, 0, format, measure);
  va_end(measure);
  std::string text;
  if (length > 0) {
    text.resize(static_cast<size_t>(length));
    std::vsnprintf(text.data(), text.size() + 1, format, args);
    if (text.size() >= capacity) text.resize(capacity - 1);
  }
  va_end(args);
  return text;
}

// Drops trailing '0's, then trailing '.'s: "12.50" -> "12.5", "3.00" -> "3", "100.00" -> "100".
void TrimZeros(std::string& text) {
  while (!text.empty() && text.back() == '0') text.pop_back();
  while (!text.empty() && text.back() == '.') text.pop_back();
}

constexpr CodeText kCurrencies[] = {
    {0, "人民币"},   {1, "美元"}, {2, "港元"},  {3, "英镑"},
    {4, "日元"},     {5, "加元"}, {6, "澳元"},  {7, "欧元"},
    {8, "瑞士法郎"}, {9, "韩元"}, {10, "令吉"}, {12, "美分"},  // 11 is unassigned
};

constexpr CodeText kTradeKinds[] = {
    {1, "买入"},     {2, "卖出"},     {3, "融资买入"}, {4, "融券卖出"},
    {5, "买券还券"}, {6, "卖券还款"}, {7, "现金还款"}, {8, "现券还券"},
};

constexpr CodeText kOrderStatuses[] = {
    {1, "发送中"},   {2, "已报"},     {3, "已废除"}, {4, "部分成交"},
    {5, "全部成交"}, {6, "部成部撤"}, {7, "已撤单"},
};

constexpr CodeText kOffsets[] = {
    {1, "开仓"},   {2, "开仓自动"}, {3, "自动开平"}, {4, "平仓"},
    {5, "平今仓"}, {6, "平昨仓"},   {7, "平仓自动"},
};

constexpr CodeText kHedges[] = {{1, "投机"}, {2, "套保"}, {3, "套利"}, {4, "做市商"}};

constexpr CodeText kFunctionKinds[] = {{2, "用户函数"}, {3, "公式应用"}};

// Period format per bar type; whole-hour minute bars and tick series have their own texts.
constexpr CodeText kBarPeriods[] = {
    {0, "%d日线"}, {1, "%d分钟线"}, {2, "%d秒线"}, {3, "%d量线"}, {4, "%d周线"}, {5, "%d月线"},
};

constexpr CodeText kDirections[] = {{1, "多头"}, {2, "多头"}, {3, "空头"}, {4, "空头"}};
constexpr CodeText kPositionMarkers[] = {{1, "(换月)"}, {2, "(关闭)"}, {4, "(选股)"}};

constexpr CodeText kCommissionFormats[] = {
    {1, "每合约[%.2f]点"},
    // Four percent signs: formatting the piece leaves "%%", which "%s" then carries unchanged
    // into the cost text; hosts receive the rate with its percent sign doubled.
    {2, "成交金额[%.2f%%%%]"},
};
constexpr CodeText kSlippageFormats[] = {{1, "每合约[%.2f]跳"}};
constexpr char kMoneyPerLot[] = "每合约[%.2f]元";

enum class TypeClass { kOther, kBool, kNumeric, kString };

struct TypeRow {
  uint32_t id;
  const char* name;
  TypeClass typeClass;
};

constexpr TypeRow kTypes[] = {
    {1, "Bool", TypeClass::kBool},
    {2, "BoolRef", TypeClass::kBool},
    {3, "BoolSeries", TypeClass::kBool},
    {11, "BoolArray", TypeClass::kBool},
    {12, "BoolArrayRef", TypeClass::kBool},
    {4, "Numeric", TypeClass::kNumeric},
    {5, "NumericRef", TypeClass::kNumeric},
    {6, "NumericSeries", TypeClass::kNumeric},
    {14, "NumericArray", TypeClass::kNumeric},
    {15, "NumericArrayRef", TypeClass::kNumeric},
    {7, "String", TypeClass::kString},
    {8, "StringRef", TypeClass::kString},
    {9, "StringSeries", TypeClass::kString},
    {17, "StringArray", TypeClass::kString},
    {18, "StringArrayRef", TypeClass::kString},
    {0, "Void", TypeClass::kOther},
    {10, "Integer", TypeClass::kOther},
};

constexpr uint32_t kBoolId = 1;
constexpr uint32_t kNumericId = 4;
constexpr uint32_t kStringId = 7;
constexpr uint32_t kIntegerId = 10;

const TypeRow* FindType(uint32_t id) {
  const auto row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                [id](const TypeRow& type) { return type.id == id; });
  return row == std::end(kTypes) ? nullptr : row;
}

bool HasTypeClass(uint32_t id, TypeClass typeClass) {
  const TypeRow* row = FindType(id);
  return row != nullptr && row->typeClass == typeClass;
}

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string GetCurrencyText(uint32_t code) { return Lookup(kCurrencies, code); }
std::string GetTradeKindText(int32_t kind) { return Lookup(kTradeKinds, kind); }
std::string GetOrderStatusText(int32_t status) { return Lookup(kOrderStatuses, status); }
std::string GetOffsetText(int32_t offset) { return Lookup(kOffsets, offset); }
std::string GetHedgeText(uint32_t hedge) { return Lookup(kHedges, hedge); }

std::string GetTypeName(uint32_t id) {
  const TypeRow* row = FindType(id);
  return row != nullptr ? row->name : "无效类型";
}

bool IsBoolType(uint32_t id) { return HasTypeClass(id, TypeClass::kBool); }
bool IsNumericType(uint32_t id) { return HasTypeClass(id, TypeClass::kNumeric); }
bool IsStringType(uint32_t id) { return HasTypeClass(id, TypeClass::kString); }

std::string GetFunctionKindText(int32_t kind) { return Lookup(kFunctionKinds, kind, ""); }

std::string GetBarPeriodText(int32_t interval, uint32_t barType) {
  constexpr size_t kCapacity = 32;
  if (barType == 1 && interval >= 60 && interval % 60 == 0) {
    return Format(kCapacity, "%d小时线", interval / 60);
  }
  if (barType == 2 && interval == 0) return "Tick";
  const char* format = Lookup(kBarPeriods, barType, nullptr);
  return format != nullptr ? Format(kCapacity, format, interval) : "";
}

std::string GetBarPeriodText(uint64_t packed) {
  return GetBarPeriodText(static_cast<int32_t>(static_cast<uint32_t>(packed >> 32)),
                          static_cast<uint32_t>(packed));
}

std::string GetPositionText(uint32_t code) {
  return std::string(Lookup(kDirections, code & 0xFF, "N/A")) +
         Lookup(kPositionMarkers, (code >> 8) & 0xFF, "");
}

std::string GetDurationText(int64_t ms) {
  constexpr size_t kCapacity = 260;
  const long long total = ms;
  if (total < 1000) return Format(kCapacity, "%lld毫秒", total);
  const long long seconds = total / 1000;
  if (seconds < 60) return Format(kCapacity, "%lld秒", seconds);
  if (seconds < 3600) return Format(kCapacity, "%lld分%lld秒", seconds / 60, seconds % 60);
  return Format(kCapacity, "%lld小时%lld分%lld秒", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string FormatNumber(double value, bool trim) {
  if (std::fabs(value) < 1e-6) value = 0;  // a tiny negative would print as "-0.00"
  std::string text = Format(100, "%.2f", value);
  if (trim) TrimZeros(text);
  return text;
}

// The zero rule of FormatNumber does not change the answer: such values print as 0.00 anyway.
bool HasFraction(double value) { return FormatNumber(value, true).find('.') != std::string::npos; }

std::string ValueToText(const TypedValue& value) {
  switch (value.type) {
    case kBoolId:
      return value.boolValue ? "True" : "False";
    case kNumericId:
      return FormatNumber(value.number, true);
    case kStringId:
      return value.text;
    case kIntegerId:
      return Format(kUnbounded, "%d", value.integer);
    default:
      return "";
  }
}

// Parameters are taken by type class: a BoolSeries or NumericRef parameter counts like its
// scalar; Integer and Void parameters add nothing.
std::string GetParameterSuffix(const std::vector<TypedValue>& values) {
  std::string suffix;
  for (const TypedValue& value : values) {
    if (IsBoolType(value.type)) {
      suffix += value.boolValue ? "_true" : "_false";
    } else if (IsNumericType(value.type)) {
      suffix += Format(kUnbounded, "_%010.2f", value.number);
    } else if (IsStringType(value.type)) {
      suffix += "_" + value.text;
    }
  }
  return suffix;
}

std::string GetSystemText(const std::vector<std::string>& names) {
  if (names.empty()) return "未知系统";
  return names.front().substr(0, names.front().find('('));
}

std::string GetCostText(const CostSetting& cost) {
  const std::string commission =
      Format(kUnbounded, Lookup(kCommissionFormats, cost.CommissionKind, kMoneyPerLot),
             cost.CommissionRate);
  const std::string slippage =
      Format(kUnbounded, Lookup(kSlippageFormats, cost.SlippageKind, kMoneyPerLot), cost.Slippage);
  const std::string offset =
      cost.OrderOffsetEnabled ? Format(kUnbounded, "%d跳", cost.OrderOffsetTicks) : "不启用";
  return Format(kUnbounded, "手续费:%s,滑点:%s,委托偏移:%s", commission.c_str(), slippage.c_str(),
                offset.c_str());
}

std::string MakeIdKey(int32_t id, const std::string& text) {
  return Format(kUnbounded, "%d|%s", id, text.c_str());
}

IdKey ParseIdKey(const std::string& key) {
  const size_t bar = key.find('|');
  if (bar == std::string::npos || key.find('|', bar + 1) != std::string::npos) return {};
  // Read like atoi: leading decimal digits, 0 when there are none.
  const long long id = std::strtoll(key.c_str(), nullptr, 10);
  return {static_cast<int32_t>(std::clamp<long long>(id, std::numeric_limits<int32_t>::min(),
                                                     std::numeric_limits<int32_t>::max())),
          key.substr(bar + 1)};
}

std::vector<std::string> SplitText(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  for (size_t start = 0;;) {
    const size_t end = text.find(separator, start);
    pieces.push_back(text.substr(start, end - start));
    if (end == std::string::npos) return pieces;
    start = end + 1;
  }
}

double RoundToSixDecimals(double value) {
  return std::strtod(Format(kUnbounded, "%.6f", value).c_str(), nullptr);
}

std::string ToHex16(const uint8_t bytes[16]) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  hex.reserve(32);
  for (int i = 0; i < 16; ++i) {
    hex += kDigits[bytes[i] >> 4];
    hex += kDigits[bytes[i] & 0x0F];
  }
  return hex;
}

// Maps exactly the codes made of ASCII letters followed by ASCII digits to their letters:
// contract months ("rb2405", "SR405") and the continuous codes ("rb888", "rb999", "IF000")
// alike. Digit-only stock codes, codes without trailing digits, and codes of any other shape
// (options "m2405-C-3000", spot "Au99.99") come back unchanged.
std::string NormalizeSymbolCode(int32_t /*marketId*/, const std::string& code) {
  const auto digits = std::find_if_not(code.begin(), code.end(), IsAsciiLetter);
  const bool isFutures = digits != code.begin() && digits != code.end() &&
                         std::all_of(digits, code.end(), IsAsciiDigit);
  return isFutures ? std::string(code.begin(), digits) : code;
}

}  // namespace sysfuncs
