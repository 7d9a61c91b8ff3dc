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

void CheckValue(const FormulaSpec& spec, const Parameter& parameter, double value,
                const std::string& where) {
  if (parameter.Integral && value != std::floor(value)) {
    throw InputError(where + ": parameter " + parameter.Name + " of " + spec.Name +
                     " takes whole numbers, not " + FormatNumber(value));
  }
  if (value < parameter.Min || value > parameter.Max) {
    throw InputError(where + ": parameter " + parameter.Name + " of " + spec.Name +
                     " must lie in [" + FormatNumber(parameter.Min) + ", " +
                     FormatNumber(parameter.Max) + "], not " + FormatNumber(value));
  }
}

const Parameter* FindParameter(const FormulaSpec& spec, const std::string& name) {
  for (const Parameter& parameter : spec.Parameters) {
    if (parameter.Name == name) return &parameter;
  }
  return nullptr;
}

std::string ParameterNames(const FormulaSpec& spec) {
  std::string names;
  for (const Parameter& parameter : spec.Parameters) {
    names += (names.empty() ? "" : ", ") + parameter.Name;
  }
  return names.empty() ? "none" : names;
}

}  // namespace

const std::vector<const FormulaSpec*>& BundledFormulas() {
  static const std::vector<const FormulaSpec*> formulas = {
      &MaCrossSpec(), &BreakoutSpec(), &SpreadSpec(), &ChannelPlotSpec(), &MomentumPickSpec()};
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
  const FormulaSpec* specs = factory(&count);
  for (int i = 0; i < count; ++i) {
    if (specs[i].InterfaceVersion != kFormulaInterfaceVersion || specs[i].Create == nullptr) {
      dlclose(handle_);
      throw InputError(where + ": formula " + std::to_string(i) +
                       " was built against another formula interface");
    }
    formulas_.push_back(&specs[i]);
  }
  if (formulas_.empty()) {
    dlclose(handle_);
    throw InputError(where + ": holds no formula");
  }
}

FormulaLibrary::~FormulaLibrary() {
  if (handle_ != nullptr) dlclose(handle_);
}

const FormulaSpec& FindFormula(const std::string& name, std::unique_ptr<FormulaLibrary>& library) {
  const size_t so = name.find(".so");
  if (so == std::string::npos) {
    for (const FormulaSpec* spec : BundledFormulas()) {
      if (spec->Name == name) return *spec;
    }
    std::string names;
    for (const FormulaSpec* spec : BundledFormulas())
      names += (names.empty() ? "" : ", ") + spec->Name;
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
  for (const FormulaSpec* spec : library->Formulas()) {
    if (spec->Name == member) return *spec;
  }
  throw InputError("--formula " + name + ": " + path + " holds no formula named " + member);
}

std::map<std::string, double> ResolveParameters(const FormulaSpec& spec,
                                                const std::map<std::string, double>& fileParams,
                                                const std::vector<std::string>& commandLine) {
  std::map<std::string, double> values;
  for (const Parameter& parameter : spec.Parameters) values[parameter.Name] = parameter.Default;
  for (const auto& [name, value] : fileParams) {
    const Parameter* parameter = FindParameter(spec, name);
    const std::string where = "run file: /params/" + name;
    if (parameter == nullptr) {
      throw InputError(where + ": " + spec.Name + " has no parameter " + name + " (it has " +
                       ParameterNames(spec) + ")");
    }
    CheckValue(spec, *parameter, value, where);
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
    const Parameter* parameter = FindParameter(spec, name);
    if (parameter == nullptr) {
      throw InputError(where + ": " + spec.Name + " has no parameter " + name + " (it has " +
                       ParameterNames(spec) + ")");
    }
    double value = 0.0;
    const char* end = valueText.data() + valueText.size();
    const auto result = std::from_chars(valueText.data(), end, value);
    if (valueText.empty() || result.ec != std::errc() || result.ptr != end ||
        !std::isfinite(value)) {
      throw InputError(where + ": \"" + valueText + "\" is not a number");
    }
    CheckValue(spec, *parameter, value, where);
    values[name] = value;
  }
  return values;
}

}  // namespace qxrun
