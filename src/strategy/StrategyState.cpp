// Reset, roll-back and per-bar checkout of the strategy state. Not built yet beyond emptying the
// saved order records when a run starts.
#include "sysfuncs/SFImpl.h"

void SFImpl::ResetStrategyState() { m_pData->SavedOrders.clear(); }

void SFImpl::RollBackToCurrentBar() {}

void SFImpl::BarCheckout() {}
