// Global variables: numbers kept in the host data object by index and by name, shared by every
// instance on that object and never written to disk.
#ifndef SYSFUNCS_OUTPUT_GLOBAL_VARIABLES_H_
#define SYSFUNCS_OUTPUT_GLOBAL_VARIABLES_H_

#include "sysfuncs/HostData.h"

#include <cstdint>
#include <string>

namespace sysfuncs {

// Stores `value` under `index` (any index, negative ones too); returns true.
bool SetGlobalVar(CQXBaseData& data, int32_t index, double value);
// The value under `index`; the invalid number when none was stored.
double GetGlobalVar(const CQXBaseData& data, int32_t index);

// Stores `value` under `name` exactly as given (letter case and blanks matter); returns true.
bool SetGlobalVar2(CQXBaseData& data, const std::string& name, double value);
// The value under `name` without its leading and trailing blanks (0x20 only); the invalid number
// when none was stored. Only the reading side strips: a value stored under " a" is never read.
double GetGlobalVar2(const CQXBaseData& data, const std::string& name);

}  // namespace sysfuncs

#endif  // SYSFUNCS_OUTPUT_GLOBAL_VARIABLES_H_
