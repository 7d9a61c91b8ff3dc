// Text made safe for the page: HTML escaping, JSON inside a script element, numbers for people.
#ifndef QXRUN_PAGE_PAGE_TEXT_H_
#define QXRUN_PAGE_PAGE_TEXT_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace qxrun {

// `text` as HTML character data or attribute value: & < > " ' escaped, and every byte that is
// not part of well-formed UTF-8 replaced by U+FFFD, so a page never holds broken text.
std::string EscapeHtml(std::string_view text);

// JSON text made safe to sit inside <script>: every "<" (which only occurs in strings) becomes
// \u003c, so neither "</script>" nor "<!--" can end or confuse the element.
std::string ScriptSafeJson(std::string_view json);

// Script text made safe to inline: "</script" (any case) becomes "<\/script", which a script
// reads the same inside a string, a regular expression or a comment.
std::string ScriptSafeCode(std::string_view code);

// "1,234,567".
std::string GroupThousands(uint64_t value);

// A fraction as a percentage with two decimals: 0.01234 -> "1.23%"; never "-0.00%";
// "n/a" when not finite.
std::string FormatPercent(double fraction);

}  // namespace qxrun

#endif  // QXRUN_PAGE_PAGE_TEXT_H_
