// Trading sessions and the days left to expiry of the current data source.
#include "contract/Sessions.h"

#include "sysfuncs/SFImpl.h"

#include "contract/PropertyNumbers.h"
#include "platform/Services.h"
#include "util/DateCodec.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace sysfuncs {
namespace {

constexpr int64_t kSecondsPerDay = 86400;

// Two characters of a session text and their decimal value.
struct Piece {
  std::string text;
  int32_t value;
};

Piece PieceAt(const std::string& sessions, size_t at) {
  std::string text = sessions.substr(at, 2);
  const int32_t value = std::atoi(text.c_str());
  return {std::move(text), value};
}

std::string ClockText(const Piece& hour, const Piece& minute) {
  char text[8];
  std::snprintf(text, sizeof text, "%s:%s", hour.text.c_str(), minute.text.c_str());
  return text;
}

}  // namespace

std::vector<TradingSession> ParseSessions(const std::string& text) {
  std::vector<TradingSession> sessions;
  sessions.reserve(CountSessions(text));
  for (size_t at = 0; at + kSessionItemWidth <= text.size(); at += kSessionItemWidth) {
    const Piece startHour = PieceAt(text, at), startMinute = PieceAt(text, at + 3);
    const Piece endHour = PieceAt(text, at + 6), endMinute = PieceAt(text, at + 9);
    TradingSession session;
    session.StartHour = startHour.value;
    session.StartMinute = startMinute.value;
    session.EndHour = endHour.value;
    session.EndMinute = endMinute.value;
    session.StartText = ClockText(startHour, startMinute);
    session.EndText = ClockText(endHour, endMinute);
    sessions.push_back(std::move(session));
  }
  return sessions;
}

}  // namespace sysfuncs

using namespace sysfuncs;

double SFImpl::GetSessionTime(int32_t index, bool end) {
  // A negative index names no session: it answers the invalid number like one past the last.
  if (index < 0) return kInvalidNumber;
  // Parsed afresh on every call: the property list may have been reloaded meanwhile.
  const std::vector<TradingSession> sessions = ParseSessions(GetStringProperty(kPropSessions));
  if (static_cast<size_t>(index) >= sessions.size()) return kInvalidNumber;
  const TradingSession& session = sessions[index];
  return end ? session.EndHour * 0.01 + session.EndMinute * 0.0001
             : session.StartHour * 0.01 + session.StartMinute * 0.0001;
}

int32_t SFImpl::TradingDayLeft() {
  const std::string expiry = GetStringProperty(kPropExpiredDate);
  if (expiry.size() < 10) return 0;  // shorter than "YYYY/MM/DD": no expiry
  int64_t instant = 0;
  if (!ParseDateTime(expiry, instant)) return 0;
  const int64_t left = InstantSeconds(instant) - InstantSeconds(NowMillis());
  return static_cast<int32_t>(left / kSecondsPerDay + 1);  // today counts as the first day
}
