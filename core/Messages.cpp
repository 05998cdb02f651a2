#include "core/Messages.h"

#include "REMessageHandler.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <mutex>
#include <algorithm>
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

struct ExHandler {
    REMessageHandlerEx handler = nullptr;
    void* context = nullptr;
};
// Reports are rare: the pair is read and written under a lock, and called outside it.
std::mutex g_exHandlerLock;
ExHandler g_exHandler;

constexpr size_t kPathSize = 261;

// The last call of this thread: the path is copied when it comes from another place than the
// last one, or when Open or Create may have put a new path there.
struct LastCall {
    int operation = -1;
    const char* source = nullptr;
    char path[kPathSize] = {};
};
thread_local LastCall t_lastCall;

struct LastError {
    REErrorInfo info{0, 0, -1, "", ""};
    char path[kPathSize] = {};
    std::string text;
};
thread_local LastError t_lastError;

}  // namespace

void RENoteCall(int operation, const char* path, size_t maxLength) {
    constexpr int kOpen = 0, kCreate = 14, kOpBase = 100;
    LastCall& last = t_lastCall;
    last.operation = operation;
    const int base = operation % kOpBase;
    if (path != last.source || base == kOpen || base == kCreate) {
        last.source = path;
        size_t length = 0;
        if (path != nullptr)
            for (; length < kPathSize - 1 && length < maxLength && path[length] != '\0'; ++length)
                last.path[length] = path[length];
        last.path[length] = '\0';
    }
}

void RESetMessageHandlerEx(REMessageHandlerEx handler, void* context) {
    std::lock_guard<std::mutex> guard(g_exHandlerLock);
    g_exHandler = ExHandler{handler, handler != nullptr ? context : nullptr};
}

const REErrorInfo* RELastError() { return &t_lastError.info; }

void REClearLastError() {
    t_lastError.text.clear();
    t_lastError.path[0] = '\0';
    t_lastError.info = REErrorInfo{0, 0, -1, "", ""};
}

namespace {

}  // namespace

REMessageHandler RESetMessageHandler(REMessageHandler handler) {
    return g_messageHandler.exchange(handler != nullptr ? handler : &DefaultMessageHandler);
}

void RESetTraceHandler(RETraceHandler handler) { g_traceHandler.store(handler); }

void REShowMessage(const char* caption, const char* text, unsigned int style, unsigned int message, int status) {
    caption = caption != nullptr ? caption : "";
    text = text != nullptr ? text : "";
    LastError& last = t_lastError;
    last.text = text;
    std::copy(std::begin(t_lastCall.path), std::end(t_lastCall.path), std::begin(last.path));
    last.info = REErrorInfo{message, status, t_lastCall.operation, last.path, last.text.c_str()};
    ExHandler ex;
    {
        std::lock_guard<std::mutex> guard(g_exHandlerLock);
        ex = g_exHandler;
    }
    if (ex.handler != nullptr) {
        ex.handler(ex.context, caption, text, style, &last.info);
        return;
    }
    g_messageHandler.load()(caption, text, style);
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
