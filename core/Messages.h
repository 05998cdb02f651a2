// Library-internal entry points to the message and trace handlers.
#pragma once

#include <cstddef>

// Shows one modal message through the current message handler and records it as the thread's
// last error: `message` is the library's message number (0 for a status report), `status` the
// record-manager status it carries (0 for none).
void REShowMessage(const char* caption, const char* text, unsigned int style, unsigned int message = 0,
                   int status = 0);

// Notes the record-manager operation a thread is about to call and the file it concerns, for
// the details of a report that follows.
void RENoteCall(int operation, const char* path, size_t maxLength);

// Formats a debug trace (printf-style) and hands it to the trace handler, if one is set.
void RETrace(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
