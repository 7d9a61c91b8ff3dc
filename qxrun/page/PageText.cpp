#include "page/PageText.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace qxrun {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD in UTF-8

// Length of the well-formed UTF-8 sequence at `text[at]`, or 0 when it is not one.
size_t Utf8Length(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  if (lead < 0x80) {
    return 1;
  }
  size_t length = 0;
  unsigned char low = 0x80;   // bounds of the second byte, which exclude overlong forms,
  unsigned char high = 0xBF;  // surrogates and code points above U+10FFFF
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    low = lead == 0xE0 ? 0xA0 : 0x80;
    high = lead == 0xED ? 0x9F : 0xBF;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    low = lead == 0xF0 ? 0x90 : 0x80;
    high = lead == 0xF4 ? 0x8F : 0xBF;
  } else {
    return 0;
  }
  if (at + length > text.size() || byte(at + 1) < low || byte(at + 1) > high) {
    return 0;
  }
  for (size_t i = 2; i < length; ++i) {
    if (byte(at + i) < 0x80 || byte(at + i) > 0xBF) {
      return 0;
    }
  }
  return length;
}

}  // namespace

std::string EscapeHtml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const size_t length = Utf8Length(text, at);
    if (length == 0) {
      escaped += kReplacement;
      ++at;
      continue;
    }
    if (length > 1) {
      escaped.append(text.substr(at, length));
      at += length;
      continue;
    }
    switch (text[at]) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += text[at];
    }
    ++at;
  }
  return escaped;
}

std::string ScriptSafeJson(std::string_view json) {
  std::string safe;
  safe.reserve(json.size());
  for (const char c : json) {
    if (c == '<') {
      safe += "\\u003c";
    } else {
      safe += c;
    }
  }
  return safe;
}

std::string ScriptSafeCode(std::string_view code) {
  constexpr std::string_view kEnd = "</script";
  std::string safe;
  safe.reserve(code.size());
  for (size_t at = 0; at < code.size(); ++at) {
    if (code[at] == '<' && at + 1 < code.size() && code[at + 1] == '/' &&
        code.size() - at >= kEnd.size()) {
      bool matches = true;
      for (size_t i = 2; i < kEnd.size(); ++i) {
        matches = matches && std::tolower(static_cast<unsigned char>(code[at + i])) == kEnd[i];
      }
      if (matches) {
        safe += "<\\/";
        ++at;
        continue;
      }
    }
    safe += code[at];
  }
  return safe;
}

std::string GroupThousands(uint64_t value) {
  std::string digits = std::to_string(value);
  for (size_t at = digits.size(); at > 3; at -= 3) {
    digits.insert(at - 3, 1, ',');
  }
  return digits;
}

std::string FormatPercent(double fraction) {
  if (!std::isfinite(fraction)) {
    return "n/a";
  }
  char text[48];
  std::snprintf(text, sizeof text, "%.2f%%", fraction * 100.0);
  if (std::string_view(text) == "-0.00%") {
    return text + 1;
  }
  return text;
}

}  // namespace qxrun
