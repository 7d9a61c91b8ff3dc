// Alerts, bar commentary, sound and the formula's name: the formula's voice towards the user.
#ifndef SYSFUNCS_OUTPUT_ALERTS_H_
#define SYSFUNCS_OUTPUT_ALERTS_H_

#include "sysfuncs/HostData.h"

#include <string>

namespace sysfuncs {

// Queues `text` in the host's Alerts; true when queued. Refused, in this order, while OutputMode
// is non-zero, for the text "N/A", on any bar but the last and while alerts are switched off.
// A text already queued is queued again: repeated alerts all reach the host.
bool Alert(CQXBaseData& data, const std::string& text);

// The host's AlertEnabled switch.
bool AlertEnabled(const CQXBaseData& data);

// Attaches `text` to the current bar's commentary; true when stored. Refused while OutputMode is
// non-zero, for an empty text and before the first bar (a negative CurrentBar). "N/A" is stored.
bool Commentary(CQXBaseData& data, const std::string& text);

// Starts playing a sound file without waiting, through the sound service; false when the file is
// missing or cannot be played. Never a default sound; not tied to the bar or the output mode.
bool PlayWavSound(const std::string& path);

// A copy of the host's formula name.
std::string FormulaName(const CQXBaseData& data);

}  // namespace sysfuncs

#endif  // SYSFUNCS_OUTPUT_ALERTS_H_
