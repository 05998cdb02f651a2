// Where the library's modal message boxes and debug traces go, and what a program can read of
// the failures they report.
//
// Every failure report of the library is one call of the process-wide message handler with a
// caption, a text and a message-box style. The default handler shows a message box on Windows
// and elsewhere writes "caption: text" and a line feed to standard error. Debug traces go to the
// trace handler and are dropped while none is set; they never reach the message handler.
#pragma once

#include "tarsel_export.h"

// `style` is the message-box style the report asks for, in the values of the Windows message box:
// 0 for the library's numbered messages (an OK button, no icon) and 16 for record-manager status
// reports (an OK button and the stop icon). A handler that shows no box may ignore it.
typedef void (*REMessageHandler)(const char* caption, const char* text, unsigned int style);
typedef void (*RETraceHandler)(const char* text);

// Installs `handler` and returns the previous one; null restores the default handler.
TARSEL_API REMessageHandler RESetMessageHandler(REMessageHandler handler);

// Installs the debug trace handler; null drops traces again.
TARSEL_API void RESetTraceHandler(RETraceHandler handler);

// What a program can read of one reported failure, beside the text shown.
struct REErrorInfo {
    unsigned int message;  // the library's message number; 0 for a record-manager status report
    int status;            // the record-manager status the report carries; 0 when it carries none
    int operation;         // the last record-manager operation this thread called; -1 for none
    const char* path;      // the file of that operation ("" when none): the path given to Open or
                           // Create, else the path the file object was opened with
    const char* text;      // the text shown
};

// A message handler that also receives the program's `context` and the report's details. While
// one is installed, reports go to it instead of the plain handler.
typedef void (*REMessageHandlerEx)(void* context, const char* caption, const char* text, unsigned int style,
                                   const REErrorInfo* info);

// Installs `handler` with its `context`; null goes back to the plain handler.
TARSEL_API void RESetMessageHandlerEx(REMessageHandlerEx handler, void* context);

// The last failure reported on the calling thread (message and status 0 when none was reported
// since the thread started or since REClearLastError). The pointers stay valid until the thread's
// next report.
TARSEL_API const REErrorInfo* RELastError();
TARSEL_API void REClearLastError();
