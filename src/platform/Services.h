// The platform services in force and shortcuts for the library's own use.
#ifndef SYSFUNCS_PLATFORM_SERVICES_H_
#define SYSFUNCS_PLATFORM_SERVICES_H_

#include "sysfuncs/Platform.h"

#include <cstdint>
#include <memory>
#include <string>

namespace sysfuncs {

// A snapshot of the services in force; it stays valid while the caller holds it, even when the
// host replaces a service meanwhile.
std::shared_ptr<const SysFuncsPlatform> PlatformServices();

// The present time in milliseconds since 1970 UTC, through the clock service.
int64_t NowMillis();

// Shows a message through the message box service.
void ShowMessage(const std::string& text);

// The Linux defaults.
int DefaultSendToMsgCenter(int kind, const Quill::MsgRecord* records, size_t count);
bool DefaultPlaySound(const std::string& path);
void DefaultMessageBox(const std::string& text);
bool DefaultDeleteFile(const std::string& path);
uint32_t DefaultGetPrivateProfileString(const std::string& section, const std::string& key,
                                        const std::string& defaultText, char* buffer, uint32_t size,
                                        const std::string& file);
bool DefaultWritePrivateProfileString(const std::string& section, const std::string& key,
                                      const std::string& text, const std::string& file);

}  // namespace sysfuncs

#endif  // SYSFUNCS_PLATFORM_SERVICES_H_
