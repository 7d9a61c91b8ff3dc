// Plots, alerts, commentary, sound, file output, global variables and profile strings.
//
// Not built yet, but for file output: those functions answer their invalid value.
#include "sysfuncs/SystemFuncs.h"

#include "output/FileOutput.h"

using sysfuncs::kInvalidNumber;
using sysfuncs::kInvalidText;

bool CSystemFuncs::PlotBool(const std::string& /*name*/, bool /*value*/, double /*locator*/,
                            int32_t /*color*/, int32_t /*barsAgo*/) {
  return false;
}
double CSystemFuncs::PlotNumeric(const std::string& /*name*/, double /*value*/, double /*locator*/,
                                 int32_t /*color*/, int32_t /*barsAgo*/) {
  return kInvalidNumber;
}
std::string CSystemFuncs::PlotString(const std::string& /*name*/, const std::string& /*text*/,
                                     double /*locator*/, int32_t /*color*/, int32_t /*barsAgo*/) {
  return kInvalidText;
}
bool CSystemFuncs::Unplot(const std::string& /*name*/, int32_t /*barsAgo*/) { return false; }
bool CSystemFuncs::Alert(const std::string& /*text*/) { return false; }
bool CSystemFuncs::AlertEnabled() { return false; }
bool CSystemFuncs::Commentary(const std::string& /*text*/) { return false; }
bool CSystemFuncs::PlayWavSound(const std::string& /*path*/) { return false; }
std::string CSystemFuncs::FormulaName() { return {}; }
bool CSystemFuncs::SetGlobalVar(int32_t /*index*/, double /*value*/) { return false; }
double CSystemFuncs::GetGlobalVar(int32_t /*index*/) { return kInvalidNumber; }
bool CSystemFuncs::SetGlobalVar2(const std::string& /*name*/, double /*value*/) { return false; }
double CSystemFuncs::GetGlobalVar2(const std::string& /*name*/) { return kInvalidNumber; }
bool CSystemFuncs::SetQXProfileString(const std::string& /*section*/, const std::string& /*key*/,
                                      const std::string& /*value*/) {
  return false;
}
std::string CSystemFuncs::GetQXProfileString(const std::string& /*section*/,
                                             const std::string& /*key*/) {
  return kInvalidText;
}
bool CSystemFuncs::SetQXProfileString2File(const std::string& /*file*/,
                                           const std::string& /*section*/,
                                           const std::string& /*key*/,
                                           const std::string& /*value*/) {
  return false;
}
std::string CSystemFuncs::GetQXProfileString2File(const std::string& /*file*/,
                                                  const std::string& /*section*/,
                                                  const std::string& /*key*/) {
  return kInvalidText;
}

bool CSystemFuncs::FileAppend(const std::string& file, const std::string& text) {
  return sysfuncs::FileAppend(file, text);
}
bool CSystemFuncs::FileDelete(const std::string& file) { return sysfuncs::FileDelete(file); }
