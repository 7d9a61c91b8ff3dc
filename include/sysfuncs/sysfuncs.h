// Everything a host compiles against.
#ifndef SYSFUNCS_SYSFUNCS_H_
#define SYSFUNCS_SYSFUNCS_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/HostData.h"
#include "sysfuncs/Module.h"
#include "sysfuncs/Platform.h"
#include "sysfuncs/SystemFuncs.h"

#endif  // SYSFUNCS_SYSFUNCS_H_
