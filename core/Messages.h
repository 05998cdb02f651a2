// Library-internal entry points to the message and trace handlers.
#pragma once

// Shows one modal message through the current message handler.
void REShowMessage(const char* caption, const char* text, unsigned int style);

// Formats a debug trace (printf-style) and hands it to the trace handler, if one is set.
void RETrace(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
