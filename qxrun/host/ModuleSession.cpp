#include "qxrun/host/ModuleSession.h"

#include "sysfuncs/Module.h"
#include "sysfuncs/Platform.h"

namespace qxrun {

ModuleSession::ModuleSession(MessageCentre& centre, CDataAdapter& adapter, std::string baseDir,
                             std::string userId,
                             std::function<int(Quill::ITradeOrder*, int, int)> orderFrontEnd)
    : adapter_(adapter), baseDir_(std::move(baseDir)), userId_(std::move(userId)) {
  SysFuncsPlatform platform = HostPlatform(centre);
  if (orderFrontEnd) platform.ShowConfirmOrder = std::move(orderFrontEnd);
  SysFuncs_SetPlatform(platform);
  SysFuncs_Init(nullptr, &adapter_, baseDir_.c_str(), userId_.c_str());
}

ModuleSession::~ModuleSession() {
  SysFuncs_Exit();
  // The stopped writer hands its last lines over when its task is released, which a new start
  // of the module does; the new writer is stopped at once and holds nothing. Only then may the
  // message centre go. The module is left with no adapter: the session's adapter may go too, and
  // a formula run after the session must not reach it.
  SysFuncs_Init(nullptr, nullptr, baseDir_.c_str(), userId_.c_str());
  SysFuncs_Exit();
  SysFuncs_SetPlatform(SysFuncs_DefaultPlatform());
}

}  // namespace qxrun
