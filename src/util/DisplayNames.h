// Display texts of platform codes, and the small formatting helpers the system functions share.
//
// Every function is stateless. Texts are in the run-time code page (GBK bytes in the GB18030
// build). A code without a text of its own reads as "未知" unless a function says otherwise.
#ifndef SYSFUNCS_UTIL_DISPLAY_NAMES_H_
#define SYSFUNCS_UTIL_DISPLAY_NAMES_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sysfuncs {

// A value of the formula language. `type` is a type id of GetTypeName; the member that carries
// the value follows the type: boolValue (Bool), number (Numeric), text (String), integer
// (Integer).
struct TypedValue {
  uint32_t type = 0;
  bool boolValue = false;
  double number = 0;
  std::string text{};  // braces keep designated initializers that skip it warning-free
  int32_t integer = 0;
};

std::string GetCurrencyText(uint32_t code);  // code 11 is unassigned
std::string GetTradeKindText(int32_t kind);  // stock and margin trading kinds
std::string GetOrderStatusText(int32_t status);
std::string GetOffsetText(int32_t offset);  // open/close flag of a futures order
std::string GetHedgeText(uint32_t hedge);

// The name of a type id, or "无效类型" for an id that names no type.
std::string GetTypeName(uint32_t id);
// Type classes: scalar, reference, series and array forms of one base type.
bool IsBoolType(uint32_t id);
bool IsNumericType(uint32_t id);
bool IsStringType(uint32_t id);

// "用户函数" (2) or "公式应用" (3); every other kind gives "".
std::string GetFunctionKindText(int32_t kind);

// The period of a bar series, e.g. "5分钟线", "1小时线", "Tick"; "" for bar types above 5.
std::string GetBarPeriodText(int32_t interval, uint32_t barType);
// The same with the bar type in the low 32 bits and the interval in the high 32 bits.
std::string GetBarPeriodText(uint64_t packed);

// A position state: direction in the low byte, a marker in the second byte.
std::string GetPositionText(uint32_t code);

// A duration in milliseconds as whole hours, minutes, seconds or milliseconds, truncated.
std::string GetDurationText(int64_t ms);

// "%.2f", with anything below 1e-6 in magnitude printed as zero; `trim` drops trailing zeros and
// then a trailing point.
std::string FormatNumber(double value, bool trim);
// Whether the value shows a non-zero fraction at two decimals.
bool HasFraction(double value);

// Bool (1), Numeric (4), String (7) and Integer (10) values as text; "" for every other type.
std::string ValueToText(const TypedValue& value);
// The parameter part of an instance key: "_" and the value of each boolean, numeric or string
// parameter (taken by type class), in order.
std::string GetParameterSuffix(const std::vector<TypedValue>& values);

// The first system name cut before its first "("; "未知系统" when there is none.
std::string GetSystemText(const std::vector<std::string>& names);

// Commission, slippage and order offset of a cost setting in one line.
std::string GetCostText(const CostSetting& cost);

// "id|text" keys, e.g. the bound broker "8|abc".
struct IdKey {
  int32_t id = 0;
  std::string text;
};
std::string MakeIdKey(int32_t id, const std::string& text);
// A key of exactly two parts gives (leading decimal number of the first, the second); any other
// key gives (0, "").
IdKey ParseIdKey(const std::string& key);

// The value as printed with six decimals.
double RoundToSixDecimals(double value);

// The pieces of `text` between the separators, empty pieces included: "a||b" gives a, "", b.
std::vector<std::string> SplitText(const std::string& text, char separator);

// 32 lowercase hex digits.
std::string ToHex16(const uint8_t bytes[16]);

// The product code of a futures contract code ("rb2405" -> "rb"); other codes unchanged.
// marketId is reserved for per-market rules.
std::string NormalizeSymbolCode(int32_t marketId, const std::string& code);

}  // namespace sysfuncs

#endif  // SYSFUNCS_UTIL_DISPLAY_NAMES_H_
