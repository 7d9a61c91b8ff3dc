#include "sysfuncs/Module.h"

#include "sysfuncs/Environment.h"

#include "output/Logger.h"

#include <cstdio>

namespace {

// Interval of the background writer.
constexpr int kLoggerPeriodSeconds = 3;

}  // namespace

extern "C" int SysFuncs_Init(void* /*reserved*/, CDataAdapter* adapter, const char* baseDir,
                             const char* userId) {
  CSFEnvPtr env = sysfuncs::GetSFEnv();
  // A previous timer is released, not destroyed: it stops only if nothing else holds it.
  env->m_timer = new IceUtil::Timer();
  env->m_loggerTask = new CTimerTask_Logger();
  env->m_timer->scheduleRepeated(env->m_loggerTask, IceUtil::Time::seconds(kLoggerPeriodSeconds));
  env->m_pDataAdapter = adapter;

  const char* base = baseDir != nullptr ? baseDir : "";
  const char* user = userId != nullptr ? userId : "";
  char userDir[260];  // a longer directory is cut to 259 characters
  std::snprintf(userDir, sizeof userDir, "%s\\user\\%s", base, user);
  env->m_strUserDir = userDir;
  env->m_strBaseDir = base;
  env->m_strUserID = user;
  return 1;
}

extern "C" void SysFuncs_Exit() {
  CSFEnvPtr env = sysfuncs::GetSFEnv();
  if (env->m_timer) env->m_timer->destroy();
}
