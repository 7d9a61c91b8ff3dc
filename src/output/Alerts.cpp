#include "output/Alerts.h"

#include "platform/Services.h"

namespace sysfuncs {
namespace {

// Room made for the texts of a bar when its list is first used.
constexpr size_t kCommentaryReserve = 10;

}  // namespace

bool Alert(CQXBaseData& data, const std::string& text) {
  if (data.OutputMode != 0) return false;
  if (text == kInvalidText) return false;
  if (data.CurrentBar != data.BarCount - 1) return false;  // alerts of earlier bars are dropped
  if (!data.AlertEnabled) return false;
  data.Alerts.push_back(text);
  return true;
}

bool AlertEnabled(const CQXBaseData& data) { return data.AlertEnabled; }

bool Commentary(CQXBaseData& data, const std::string& text) {
  if (data.OutputMode != 0 || text.empty()) return false;
  if (data.CurrentBar < 0) return false;
  const size_t bar = static_cast<size_t>(data.CurrentBar);
  if (data.Commentaries.size() < bar + 1) {
    data.Commentaries.resize(bar + 1);
    std::vector<std::string>& texts = data.Commentaries[bar];
    if (texts.capacity() - texts.size() < kCommentaryReserve) texts.reserve(kCommentaryReserve);
  }
  data.Commentaries[bar].push_back(text);
  return true;
}

bool PlayWavSound(const std::string& path) { return PlatformServices()->PlaySound(path); }

std::string FormulaName(const CQXBaseData& data) { return data.FormulaName; }

}  // namespace sysfuncs
