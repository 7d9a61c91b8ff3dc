#include "platform/Services.h"

#include "platform/LocalTime.h"

#include <mutex>
#include <utility>

namespace sysfuncs {
namespace {

std::mutex servicesMutex;

// Never destroyed: the environment's logger hands over its last lines through these services
// when the module unloads, after function-local statics made later than it are gone.
std::shared_ptr<const SysFuncsPlatform>& CurrentServices() {
  static auto* services = new std::shared_ptr<const SysFuncsPlatform>(
      std::make_shared<const SysFuncsPlatform>(SysFuncs_DefaultPlatform()));
  return *services;
}

template <typename Service>
void Replace(Service& target, const Service& given) {
  if (given) target = given;
}

}  // namespace

std::shared_ptr<const SysFuncsPlatform> PlatformServices() {
  std::lock_guard<std::mutex> lock(servicesMutex);
  return CurrentServices();
}

int64_t NowMillis() { return PlatformServices()->Now(); }

void ShowMessage(const std::string& text) { PlatformServices()->MessageBox(text); }

}  // namespace sysfuncs

SysFuncsPlatform SysFuncs_DefaultPlatform() {
  SysFuncsPlatform services;
  services.SendToMsgCenter = sysfuncs::DefaultSendToMsgCenter;
  services.ShowConfirmOrder = [](Quill::ITradeOrder*, int, int) { return 0; };
  services.PlaySound = sysfuncs::DefaultPlaySound;
  services.MessageBox = sysfuncs::DefaultMessageBox;
  services.DeleteFile = sysfuncs::DefaultDeleteFile;
  services.Now = sysfuncs::SystemNowMillis;
  services.GetPrivateProfileString = sysfuncs::DefaultGetPrivateProfileString;
  services.WritePrivateProfileString = sysfuncs::DefaultWritePrivateProfileString;
  return services;
}

void SysFuncs_SetPlatform(const SysFuncsPlatform& given) {
  std::lock_guard<std::mutex> lock(sysfuncs::servicesMutex);
  auto& current = sysfuncs::CurrentServices();
  SysFuncsPlatform services = *current;
  sysfuncs::Replace(services.SendToMsgCenter, given.SendToMsgCenter);
  sysfuncs::Replace(services.ShowConfirmOrder, given.ShowConfirmOrder);
  sysfuncs::Replace(services.PlaySound, given.PlaySound);
  sysfuncs::Replace(services.MessageBox, given.MessageBox);
  sysfuncs::Replace(services.DeleteFile, given.DeleteFile);
  sysfuncs::Replace(services.Now, given.Now);
  sysfuncs::Replace(services.GetPrivateProfileString, given.GetPrivateProfileString);
  sysfuncs::Replace(services.WritePrivateProfileString, given.WritePrivateProfileString);
  current = std::make_shared<const SysFuncsPlatform>(std::move(services));
}
