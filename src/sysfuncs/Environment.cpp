#include "sysfuncs/Environment.h"

namespace sysfuncs {
namespace {

// The process-wide handles. Function-local statics: created on first use, and released when the
// module unloads, which lets the logger hand over its last lines.
CSFEnvPtr& SFEnvHandle() {
  static CSFEnvPtr handle;
  return handle;
}

CMyQXEnvPtr& MyQXEnvHandle() {
  static CMyQXEnvPtr handle;
  return handle;
}

template <typename Env>
IceUtil::Handle<Env>& Obtain(IceUtil::Handle<Env>& handle) {
  if (!handle) handle = new Env();
  return handle;
}

}  // namespace

CSFEnvPtr GetSFEnv() { return Obtain(SFEnvHandle()); }

CSFEnv& CurrentSFEnv() { return *Obtain(SFEnvHandle()); }

CMyQXEnvPtr GetMyQXEnv() { return Obtain(MyQXEnvHandle()); }

void ResetEnvironmentForTesting() {
  CSFEnvPtr& handle = SFEnvHandle();
  if (handle && handle->m_timer) handle->m_timer->destroy();
  handle = new CSFEnv();
}

}  // namespace sysfuncs

CSFEnv::~CSFEnv() {
  m_loggerTask = nullptr;
  m_timer = nullptr;
}
