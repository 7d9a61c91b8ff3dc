// Module entry points of libsysfuncs and the export macro of the library.
#ifndef SYSFUNCS_MODULE_H_
#define SYSFUNCS_MODULE_H_

#if defined(_WIN32)
#if defined(SYSFUNCS_BUILDING)
#define SYSFUNCS_API __declspec(dllexport)
#else
#define SYSFUNCS_API __declspec(dllimport)
#endif
#else
#define SYSFUNCS_API __attribute__((visibility("default")))
#endif

class CDataAdapter;

extern "C" {

// Starts the module: stores the platform's adapter, the base directory and the user id in the
// process-wide environment, makes the user directory "<baseDir>\user\<userId>" (cut at 259
// characters) and starts the background writer, which hands buffered file output to the message
// centre every 3 seconds. The first argument is ignored. Always returns 1. A second call replaces
// the values of the first.
// REQUIRES: called once on one thread before any formula instance runs.
SYSFUNCS_API int SysFuncs_Init(void* reserved, CDataAdapter* adapter, const char* baseDir,
                               const char* userId);

// Stops the background writer. The environment and the adapter pointer stay in place. Does
// nothing before SysFuncs_Init.
SYSFUNCS_API void SysFuncs_Exit();
}

#endif  // SYSFUNCS_MODULE_H_
