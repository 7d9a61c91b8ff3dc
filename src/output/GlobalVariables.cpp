#include "output/GlobalVariables.h"

namespace sysfuncs {
namespace {

template <typename Table, typename Key>
double Lookup(const Table& table, const Key& key) {
  const auto found = table.find(key);
  return found != table.end() ? found->second : kInvalidNumber;
}

// `name` without leading and trailing 0x20 bytes; tabs and other white space stay.
std::string StripBlanks(const std::string& name) {
  const size_t first = name.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return name.substr(first, name.find_last_not_of(' ') - first + 1);
}

}  // namespace

bool SetGlobalVar(CQXBaseData& data, int32_t index, double value) {
  data.GlobalVars[index] = value;
  return true;
}

double GetGlobalVar(const CQXBaseData& data, int32_t index) {
  return Lookup(data.GlobalVars, index);
}

bool SetGlobalVar2(CQXBaseData& data, const std::string& name, double value) {
  data.NamedGlobalVars[name] = value;
  return true;
}

double GetGlobalVar2(const CQXBaseData& data, const std::string& name) {
  return Lookup(data.NamedGlobalVars, StripBlanks(name));
}

}  // namespace sysfuncs
