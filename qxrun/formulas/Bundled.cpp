#include "qxrun/formulas/Bundled.h"

#include "qxrun/InputError.h"

#include <charconv>
#include <cmath>
#include <dlfcn.h>
#include <system_error>

namespace qxrun {
namespace {

std::string FormatNumber(double value) {
  char text[32];
  const auto result = std::to_chars(text, text + sizeof(text), value);
  return std::string(text, result.ptr);
}

void CheckValue(const FormulaInfo& info, const Parameter& parameter, double value,
                const std::string& where) {
  if (parameter.Integral && value != std::floor(value)) {
    throw InputError(where + ": parameter " + parameter.Name + " of " + info.Name +
                     " takes whole numbers, not " + FormatNumber(value));
  }
  if (value < parameter.Min || value > parameter.Max) {
    throw InputError(where + ": parameter " + parameter.Name + " of " + info.Name +
                     " must lie in [" + FormatNumber(parameter.Min) + ", " +
                     FormatNumber(parameter.Max) + "], not " + FormatNumber(value));
  }
}

const Parameter* FindParameter(const FormulaInfo& info, const std::string& name) {
  for (const Parameter& parameter : info.Parameters) {
    if (parameter.Name == name) return &parameter;
  }
  return nullptr;
}

std::string ParameterNames(const FormulaInfo& info) {
  std::string names;
  for (const Parameter& parameter : info.Parameters) {
    names += (names.empty() ? "" : ", ") + parameter.Name;
  }
  return names.empty() ? "none" : names;
}

}  // namespace

const std::vector<const FormulaInfo*>& BundledFormulas() {
  static const std::vector<const FormulaInfo*> formulas = {&MaCrossInfo(),      &BreakoutInfo(),
                                                           &SpreadInfo(),       &ChannelPlotInfo(),
                                                           &MomentumPickInfo(), &LiveQuotesInfo()};
  return formulas;
}

FormulaLibrary::FormulaLibrary(const std::filesystem::path& file) {
  const std::string where = "--formula " + file.string();
  if (!std::filesystem::is_regular_file(file)) throw InputError(where + ": no such file");
  handle_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const char* error = dlerror();
    throw InputError(where + ": cannot load: " + (error == nullptr ? "unknown error" : error));
  }
  auto factory = reinterpret_cast<QxrunFormulasFunction>(dlsym(handle_, "qxrun_formulas"));
  if (factory == nullptr) {
    dlclose(handle_);
    throw InputError(where + ": exports no qxrun_formulas factory");
  }
  int count = 0;
  const FormulaInfo* infos = factory(&count);
  for (int i = 0; i < count; ++i) {
    if (infos[i].InterfaceVersion != kFormulaInterfaceVersion || infos[i].Create == nullptr) {
      dlclose(handle_);
      throw InputError(where + ": formula " + std::to_string(i) +
                       " was built against another formula interface");
    }
    formulas_.push_back(&infos[i]);
  }
  if (formulas_.empty()) {
    dlclose(handle_);
    throw InputError(where + ": holds no formula");
  }
}

FormulaLibrary::~FormulaLibrary() {
  if (handle_ != nullptr) dlclose(handle_);
}

const FormulaInfo& FindFormula(const std::string& name, std::unique_ptr<FormulaLibrary>& library) {
  const size_t so = name.find(".so");
  if (so == std::string::npos) {
    for (const FormulaInfo* info : BundledFormulas()) {
      if (info->Name == name) return *info;
    }
    std::string names;
    for (const FormulaInfo* info : BundledFormulas())
      names += (names.empty() ? "" : ", ") + info->Name;
    throw InputError("--formula " + name + ": unknown formula (bundled: " + names +
                     "; or a PATH.so)");
  }
  std::string path = name;
  std::string member;
  const size_t colon = name.find(':', so);
  if (colon != std::string::npos) {
    path = name.substr(0, colon);
    member = name.substr(colon + 1);
  }
  library = std::make_unique<FormulaLibrary>(path);
  if (member.empty()) return *library->Formulas().front();
  for (const FormulaInfo* info : library->Formulas()) {
    if (info->Name == member) return *info;
  }
  throw InputError("--formula " + name + ": " + path + " holds no formula named " + member);
}

std::map<std::string, double> ResolveParameters(const FormulaInfo& info,
                                                const std::map<std::string, double>& fileParams,
                                                const std::vector<std::string>& commandLine) {
  std::map<std::string, double> values;
  for (const Parameter& parameter : info.Parameters) values[parameter.Name] = parameter.Default;
  for (const auto& [name, value] : fileParams) {
    const Parameter* parameter = FindParameter(info, name);
    const std::string where = "run file: /params/" + name;
    if (parameter == nullptr) {
      throw InputError(where + ": " + info.Name + " has no parameter " + name + " (it has " +
                       ParameterNames(info) + ")");
    }
    CheckValue(info, *parameter, value, where);
    values[name] = value;
  }
  for (const std::string& text : commandLine) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
      throw InputError("--param " + text + ": expected name=value");
    }
    const std::string name = text.substr(0, equals);
    const std::string valueText = text.substr(equals + 1);
    const std::string where = "--param " + name;
    const Parameter* parameter = FindParameter(info, name);
    if (parameter == nullptr) {
      throw InputError(where + ": " + info.Name + " has no parameter " + name + " (it has " +
                       ParameterNames(info) + ")");
    }
    double value = 0.0;
    const char* end = valueText.data() + valueText.size();
    const auto result = std::from_chars(valueText.data(), end, value);
    if (valueText.empty() || result.ec != std::errc() || result.ptr != end ||
        !std::isfinite(value)) {
      throw InputError(where + ": \"" + valueText + "\" is not a number");
    }
    CheckValue(info, *parameter, value, where);
    values[name] = value;
  }
  return values;
}

}  // namespace qxrun
