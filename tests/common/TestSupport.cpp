#include "TestSupport.h"

#include "REMessageHandler.h"

#include <atomic>
#include <random>
#include <unistd.h>

namespace testsupport {

namespace {

std::vector<CapturedMessage> g_messages;
std::vector<std::string> g_traces;
REMessageHandler g_previousHandler = nullptr;

void CaptureMessage(const char* caption, const char* text, unsigned int style) {
    g_messages.push_back({caption, text, style});
}

void CaptureTrace(const char* text) { g_traces.push_back(text); }

}  // namespace

TempDir::TempDir() {
    static std::atomic<unsigned> counter{0};
    std::random_device random;
    for (;;) {
        auto name = "tarsel-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + "-" +
                    std::to_string(random());
        m_path = std::filesystem::temp_directory_path() / name;
        if (std::filesystem::create_directory(m_path))
            break;
    }
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

MessageCapture::MessageCapture() {
    g_messages.clear();
    g_previousHandler = RESetMessageHandler(&CaptureMessage);
}

MessageCapture::~MessageCapture() { RESetMessageHandler(g_previousHandler); }

const std::vector<CapturedMessage>& MessageCapture::messages() const { return g_messages; }

std::string MessageCapture::lastText() const { return g_messages.empty() ? std::string() : g_messages.back().text; }

void MessageCapture::clear() { g_messages.clear(); }

TraceCapture::TraceCapture() {
    g_traces.clear();
    RESetTraceHandler(&CaptureTrace);
}

TraceCapture::~TraceCapture() { RESetTraceHandler(nullptr); }

const std::vector<std::string>& TraceCapture::traces() const { return g_traces; }

void TraceCapture::clear() { g_traces.clear(); }

}  // namespace testsupport
