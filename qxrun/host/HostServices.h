// The platform side of a run: the message centre, the file adapter and the library session, in
// the order they must be made and ended. Modes that run many instances in one process (a pool,
// a sweep) open one for all of them.
#ifndef QXRUN_HOST_HOST_SERVICES_H_
#define QXRUN_HOST_HOST_SERVICES_H_

#include "qxrun/RunInputs.h"
#include "qxrun/host/FileAdapter.h"
#include "qxrun/host/MessageCentre.h"
#include "qxrun/host/ModuleSession.h"

#include <filesystem>

namespace qxrun {

class HostServices {
 public:
  // FileAppend lines go under `baseFolder`. Takes the quotes out of `inputs`.
  // REQUIRES: no other session is open.
  HostServices(RunInputs& inputs, const std::filesystem::path& baseFolder);
  HostServices(const HostServices&) = delete;
  HostServices& operator=(const HostServices&) = delete;

  const MessageCentre& Centre() const { return centre_; }

 private:
  MessageCentre centre_;
  FileAdapter adapter_;
  ModuleSession session_;
};

}  // namespace qxrun

#endif  // QXRUN_HOST_HOST_SERVICES_H_
