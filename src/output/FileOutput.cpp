#include "output/FileOutput.h"

#include "sysfuncs/Environment.h"

#include "output/Logger.h"
#include "platform/Services.h"

namespace sysfuncs {

bool FileAppend(const std::string& file, const std::string& text) {
  CTimerTask_LoggerPtr logger = CTimerTask_LoggerPtr::dynamicCast(GetSFEnv()->m_loggerTask);
  logger->Append(file, text);
  return true;
}

bool FileDelete(const std::string& file) { return PlatformServices()->DeleteFile(file); }

}  // namespace sysfuncs
