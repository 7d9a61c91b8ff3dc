// The library started for a run: SysFuncs_Init with the host's adapter and message centre on
// construction, SysFuncs_Exit on destruction, with every line a formula appended handed to the
// message centre before the session ends.
#ifndef QXRUN_HOST_MODULE_SESSION_H_
#define QXRUN_HOST_MODULE_SESSION_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/Platform.h"

#include "qxrun/host/MessageCentre.h"

#include <functional>
#include <string>

namespace qxrun {

class ModuleSession {
 public:
  // REQUIRES: no other session is open; `centre` and `adapter` outlive the session. A given
  // `orderFrontEnd` confirms and submits the live orders of formulas (the library's default
  // refuses them).
  ModuleSession(MessageCentre& centre, CDataAdapter& adapter, std::string baseDir,
                std::string userId,
                std::function<int(Quill::ITradeOrder*, int, int)> orderFrontEnd = {});
  ~ModuleSession();
  ModuleSession(const ModuleSession&) = delete;
  ModuleSession& operator=(const ModuleSession&) = delete;

 private:
  CDataAdapter& adapter_;
  std::string baseDir_;
  std::string userId_;
};

}  // namespace qxrun

#endif  // QXRUN_HOST_MODULE_SESSION_H_
