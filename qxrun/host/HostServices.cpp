#include "qxrun/host/HostServices.h"

#include <cstdlib>

namespace qxrun {
namespace {

std::string UserId() {
  const char* user = std::getenv("USER");
  return user != nullptr ? user : "qxrun";
}

}  // namespace

HostServices::HostServices(RunInputs& inputs, const std::filesystem::path& baseFolder)
    : centre_(baseFolder),
      adapter_(inputs.Settings.Symbols, std::move(inputs.Quotes), inputs.UserDir),
      session_(centre_, adapter_, inputs.UserDir.string(), UserId()) {}

}  // namespace qxrun
