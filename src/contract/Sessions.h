// Trading sessions of a contract, read from its session text.
#ifndef SYSFUNCS_CONTRACT_SESSIONS_H_
#define SYSFUNCS_CONTRACT_SESSIONS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace sysfuncs {

// A session text is a run of fixed-width items "HH:MM-HH:MM,"; a trailing remainder shorter than
// one item is ignored.
inline constexpr size_t kSessionItemWidth = 12;

struct TradingSession {
  int32_t StartHour = 0;
  int32_t StartMinute = 0;
  int32_t EndHour = 0;
  int32_t EndMinute = 0;
  std::string StartText;  // "HH:MM", the item's characters as they stand
  std::string EndText;
};

inline int32_t CountSessions(const std::string& text) {
  return static_cast<int32_t>(text.size() / kSessionItemWidth);
}

// Every whole item of the text, in order. Hours and minutes are the decimal values of their two
// characters (0 when they are not digits); the separator characters are not examined.
std::vector<TradingSession> ParseSessions(const std::string& text);

}  // namespace sysfuncs

#endif  // SYSFUNCS_CONTRACT_SESSIONS_H_
