// Plots, alerts, commentary, sound, file output, global variables and profile strings: one-line
// forwards.
#include "sysfuncs/SystemFuncs.h"

#include "output/Alerts.h"
#include "output/FileOutput.h"
#include "output/GlobalVariables.h"
#include "output/Plots.h"
#include "output/ProfileStrings.h"

namespace s = sysfuncs;

// --- Plots.
bool CSystemFuncs::PlotBool(const std::string& name, bool value, double locator, int32_t color,
                            int32_t barsAgo) {
  return s::PlotBool(*m_pData, name, value, locator, color, barsAgo);
}
double CSystemFuncs::PlotNumeric(const std::string& name, double value, double locator,
                                 int32_t color, int32_t barsAgo) {
  return s::PlotNumeric(*m_pData, name, value, locator, color, barsAgo);
}
std::string CSystemFuncs::PlotString(const std::string& name, const std::string& text,
                                     double locator, int32_t color, int32_t barsAgo) {
  return s::PlotString(*m_pData, name, text, locator, color, barsAgo);
}
bool CSystemFuncs::Unplot(const std::string& name, int32_t barsAgo) {
  return s::Unplot(*m_pData, name, barsAgo);
}

// --- Alerts, commentary and sound.
bool CSystemFuncs::Alert(const std::string& text) { return s::Alert(*m_pData, text); }
bool CSystemFuncs::AlertEnabled() { return s::AlertEnabled(*m_pData); }
bool CSystemFuncs::Commentary(const std::string& text) { return s::Commentary(*m_pData, text); }
bool CSystemFuncs::PlayWavSound(const std::string& path) { return s::PlayWavSound(path); }
std::string CSystemFuncs::FormulaName() { return s::FormulaName(*m_pData); }

// --- File output.
bool CSystemFuncs::FileAppend(const std::string& file, const std::string& text) {
  return s::FileAppend(file, text);
}
bool CSystemFuncs::FileDelete(const std::string& file) { return s::FileDelete(file); }

// --- Global variables.
bool CSystemFuncs::SetGlobalVar(int32_t index, double value) {
  return s::SetGlobalVar(*m_pData, index, value);
}
double CSystemFuncs::GetGlobalVar(int32_t index) { return s::GetGlobalVar(*m_pData, index); }
bool CSystemFuncs::SetGlobalVar2(const std::string& name, double value) {
  return s::SetGlobalVar2(*m_pData, name, value);
}
double CSystemFuncs::GetGlobalVar2(const std::string& name) {
  return s::GetGlobalVar2(*m_pData, name);
}

// --- Profile strings.
bool CSystemFuncs::SetQXProfileString(const std::string& section, const std::string& key,
                                      const std::string& value) {
  return s::SetQXProfileString(section, key, value);
}
std::string CSystemFuncs::GetQXProfileString(const std::string& section, const std::string& key) {
  return s::GetQXProfileString(section, key);
}
bool CSystemFuncs::SetQXProfileString2File(const std::string& file, const std::string& section,
                                           const std::string& key, const std::string& value) {
  return s::SetQXProfileString2File(file, section, key, value);
}
std::string CSystemFuncs::GetQXProfileString2File(const std::string& file,
                                                  const std::string& section,
                                                  const std::string& key) {
  return s::GetQXProfileString2File(file, section, key);
}
