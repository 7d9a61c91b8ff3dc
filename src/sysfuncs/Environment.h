// The process-wide environment of the module: the platform's adapter, the directories and the
// user, and the background writer's timer.
#ifndef SYSFUNCS_SYSFUNCS_ENVIRONMENT_H_
#define SYSFUNCS_SYSFUNCS_ENVIRONMENT_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/ModuleStrings.h"

#include <IceUtil/Handle.h>
#include <IceUtil/Shared.h>
#include <IceUtil/Timer.h>

#include <cstdint>
#include <string>

// A data buffer of the platform; the module stores a pointer to one but never fills or reads it.
class CQXDataBufferBase {
 public:
  virtual ~CQXDataBufferBase() = default;
};
class CQXDataBuffer : public CQXDataBufferBase {};

// Environment base: what the platform handed to the module at start-up.
class CQXEnv : public IceUtil::Shared {
 public:
  std::string GetBaseDir() const { return m_strBaseDir; }
  std::string GetUserDir() const { return m_strUserDir; }
  std::string GetUserID() const { return m_strUserID; }
  void SetDataBuffer(CQXDataBuffer* buffer) { m_pDataBuffer = buffer; }

  CDataAdapter* m_pDataAdapter = nullptr;  // not owned; null until SysFuncs_Init
  std::string m_strBaseDir;
  std::string m_strUserDir;  // "<base>\user\<user id>", cut at 259 characters
  std::string m_strUserID;
  CQXDataBuffer* m_pDataBuffer = nullptr;  // not owned
  int32_t m_nReserved = 1;
};

// The environment of this module: adds the background writer's timer and task.
class CSFEnv : public CQXEnv {
 public:
  ~CSFEnv() override;

  IceUtil::TimerPtr m_timer;           // null until SysFuncs_Init
  IceUtil::TimerTaskPtr m_loggerTask;  // the CTimerTask_Logger scheduled on m_timer
};
using CSFEnvPtr = IceUtil::Handle<CSFEnv>;

// A second environment of the same base, with its own process-wide instance; no system function
// uses it.
class CMyQXEnv : public CQXEnv {};
using CMyQXEnvPtr = IceUtil::Handle<CMyQXEnv>;

namespace sysfuncs {

// The module's environment, created on first use and kept until the process ends. Using the
// returned handle when it is null raises IceUtil::NullHandleException.
CSFEnvPtr GetSFEnv();
// The same environment without taking a counted reference, for a read on a hot path; valid until
// the environment is replaced.
CSFEnv& CurrentSFEnv();
CMyQXEnvPtr GetMyQXEnv();

// Replaces the environment by a fresh one, as if the module had just been loaded; the previous
// one's timer is destroyed. For tests only.
void ResetEnvironmentForTesting();

}  // namespace sysfuncs

#endif  // SYSFUNCS_SYSFUNCS_ENVIRONMENT_H_
