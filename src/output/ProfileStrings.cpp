#include "output/ProfileStrings.h"

#include "sysfuncs/Environment.h"
#include "sysfuncs/HostData.h"

#include "platform/Services.h"

#include <IceUtil/Exception.h>

namespace sysfuncs {
namespace {

// The platform's store that keeps the profile strings of formulas.
constexpr const char* kProfileStore = "qxlprofile";

// A value read from a profile file fills a buffer of this size, its terminating NUL included.
constexpr uint32_t kProfileBufferSize = 260;

// What the retired file setter writes: "this function has been withdrawn".
constexpr const char* kWithdrawnNotice = "该函数功能已经取消";

// The adapter of the started module; before SysFuncs_Init there is none to use.
CDataAdapter& StartedAdapter() {
  CDataAdapter* adapter = GetSFEnv()->m_pDataAdapter;
  if (adapter == nullptr) throw IceUtil::NullHandleException(__FILE__, __LINE__);
  return *adapter;
}

}  // namespace

bool SetQXProfileString(const std::string& section, const std::string& key,
                        const std::string& value) {
  StartedAdapter().SetConfigFileProperty(kProfileStore, section, key, value);
  return true;
}

std::string GetQXProfileString(const std::string& section, const std::string& key) {
  std::string value;
  // The adapter's answer is not needed: an empty text means nothing was found.
  StartedAdapter().GetConfigFileProperty(kProfileStore, section, key, value);
  if (value.empty()) value = kInvalidText;
  return value;
}

std::string GetQXProfileString2File(const std::string& file, const std::string& section,
                                    const std::string& key) {
  char buffer[kProfileBufferSize] = {};
  PlatformServices()->GetPrivateProfileString(section, key, kInvalidText, buffer,
                                              kProfileBufferSize, file);
  return std::string(buffer);  // up to the first NUL
}

bool SetQXProfileString2File(const std::string& file, const std::string& section,
                             const std::string& key, const std::string& /*value*/) {
  return PlatformServices()->WritePrivateProfileString(section, key, kWithdrawnNotice, file);
}

}  // namespace sysfuncs
