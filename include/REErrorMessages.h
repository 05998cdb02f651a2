// The library's numbered error messages and the record-manager engine process.
#pragma once

#include "tarsel_export.h"

#if defined(_WIN32)
struct _PROCESS_INFORMATION;
typedef struct _PROCESS_INFORMATION PROCESS_INFORMATION;
#else
// The process record filled by LoadBtrieveEngine outside Windows.
struct PROCESS_INFORMATION {
    void* hProcess;
    void* hThread;
    unsigned long dwProcessId;
    unsigned long dwThreadId;
};
#endif

// Shows the plain message of a library error code in a box captioned "Error".
TARSEL_API void ShowErrorMessage(unsigned int code);
// Shows the message of a library error code with the number `n` (a status or error number).
TARSEL_API void ShowErrorMessage(unsigned int code, int n);

// Starts the record-manager engine process; 1 on success, 0 on failure.
TARSEL_API int LoadBtrieveEngine(PROCESS_INFORMATION* info);
// Stops the engine process started by LoadBtrieveEngine; 1 on success, 0 on failure.
TARSEL_API int UnLoadBtrieveEngine(PROCESS_INFORMATION* info);
