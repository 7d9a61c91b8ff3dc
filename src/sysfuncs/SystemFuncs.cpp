#include "sysfuncs/SystemFuncs.h"

#include "sysfuncs/SFImpl.h"

#include "platform/Services.h"

#include <cstdlib>

CSysFuncBase::~CSysFuncBase() = default;

CSystemFuncs::CSystemFuncs(CQXBaseData* data) {
  m_pBaseData = data;
  m_pData = data;
  m_pImpl = new SFImpl(data);
  // Every construction re-seeds the runtime's random generator with the calendar time.
  std::srand(static_cast<unsigned>(sysfuncs::NowMillis() / 1000));
  if (data->CurrentBar >= 1) {
    m_pImpl->RollBackToCurrentBar();
  } else if (data->CurrentBar == 0) {
    m_pImpl->ResetStrategyState();
  }
}

CSystemFuncs::~CSystemFuncs() {
  if (m_pImpl != nullptr) {
    delete m_pImpl;
    m_pImpl = nullptr;
  }
}

void CSystemFuncs::BarCheckout() { m_pImpl->BarCheckout(); }
