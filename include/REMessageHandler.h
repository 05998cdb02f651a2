// Where the library's modal message boxes and debug traces go.
//
// Every failure report of the library is one call of the process-wide message handler with a
// caption, a text and a message-box style. The default handler shows a message box on Windows
// and elsewhere writes "caption: text" and a line feed to standard error. Debug traces go to the
// trace handler and are dropped while none is set; they never reach the message handler.
#pragma once

#include "tarsel_export.h"

typedef void (*REMessageHandler)(const char* caption, const char* text, unsigned int style);
typedef void (*RETraceHandler)(const char* text);

// Installs `handler` and returns the previous one; null restores the default handler.
TARSEL_API REMessageHandler RESetMessageHandler(REMessageHandler handler);

// Installs the debug trace handler; null drops traces again.
TARSEL_API void RESetTraceHandler(RETraceHandler handler);
