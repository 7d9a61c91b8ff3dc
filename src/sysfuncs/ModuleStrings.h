// Names of platform components and the module's identity tag, shared by every unit.
#ifndef SYSFUNCS_SYSFUNCS_MODULE_STRINGS_H_
#define SYSFUNCS_SYSFUNCS_MODULE_STRINGS_H_

#include <string>

namespace sysfuncs {

inline const std::string kAppMsgManager = "AppMsgManager";
inline const std::string kDCManager = "DCManager";
inline const std::string kADatabase = "ADatabase";
inline const std::string kPDatabase = "PDatabase";
inline const std::string kIdentityTag = "QXOO_1.1";

}  // namespace sysfuncs

#endif  // SYSFUNCS_SYSFUNCS_MODULE_STRINGS_H_
