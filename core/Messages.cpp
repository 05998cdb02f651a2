#include "core/Messages.h"

#include "REMessageHandler.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

void DefaultMessageHandler(const char* caption, const char* text, unsigned int style) {
#if defined(_WIN32)
    MessageBoxA(nullptr, text, caption, style);
#else
    (void)style;
    if (caption != nullptr && caption[0] != '\0')
        std::fprintf(stderr, "%s: %s\n", caption, text != nullptr ? text : "");
    else
        std::fprintf(stderr, "%s\n", text != nullptr ? text : "");
#endif
}

std::atomic<REMessageHandler> g_messageHandler{&DefaultMessageHandler};
std::atomic<RETraceHandler> g_traceHandler{nullptr};

}  // namespace

REMessageHandler RESetMessageHandler(REMessageHandler handler) {
    return g_messageHandler.exchange(handler != nullptr ? handler : &DefaultMessageHandler);
}

void RESetTraceHandler(RETraceHandler handler) { g_traceHandler.store(handler); }

void REShowMessage(const char* caption, const char* text, unsigned int style) {
    g_messageHandler.load()(caption != nullptr ? caption : "", text != nullptr ? text : "", style);
}

void RETrace(const char* format, ...) {
    RETraceHandler handler = g_traceHandler.load();
    if (handler == nullptr)
        return;
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    int needed = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(needed > 0 ? static_cast<size_t>(needed) : 0, '\0');
    if (needed > 0)
        std::vsnprintf(text.data(), text.size() + 1, format, args);
    va_end(args);
    handler(text.c_str());
}
