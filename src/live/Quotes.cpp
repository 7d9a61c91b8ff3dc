// Real-time quotes. Not built yet: no quote is ever answered, so the cached price limits of data
// source 0 stay absent.
#include "sysfuncs/SFImpl.h"

double SFImpl::GetQuoteReal(int32_t /*field*/, const char* /*name*/) {
  return sysfuncs::kInvalidNumber;
}
