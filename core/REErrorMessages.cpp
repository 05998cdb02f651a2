#include "REErrorMessages.h"

#include "core/ErrorMessageTable.h"
#include "core/Messages.h"
#include "core/Platform.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char* kCaption = "Error";
// Message-box style: OK button, no icon.
constexpr unsigned int kStyle = 0;
// Sizes of the formatting buffers of the plain and numbered forms.
constexpr size_t kPlainTextSize = 260;
constexpr size_t kNumberedTextSize = 100;

constexpr const char* kUnknownMessage = "Unknown error : %d. Please contact developer.";

constexpr const char* kEngineCommandLine = "C:\\Program Files\\BTI\\Win32\\bin\\W32MKDE.EXE";

const char* FindText(std::span<const ErrorMessageRow> rows, unsigned int code) {
    auto row = std::lower_bound(rows.begin(), rows.end(), code,
                                [](const ErrorMessageRow& r, unsigned int c) { return r.code < c; });
    return row != rows.end() && row->code == code ? row->text : nullptr;
}

}  // namespace

void ShowErrorMessage(unsigned int code) {
    char text[kPlainTextSize];
    if (const char* message = FindText(PlainErrorMessages(), code))
        std::snprintf(text, sizeof text, "%s", message);
    else
        std::snprintf(text, sizeof text, kUnknownMessage, static_cast<int>(code));
    REShowMessage(kCaption, text, kStyle, code);
}

void ShowErrorMessage(unsigned int code, int n) {
    char text[kNumberedTextSize];
    // Every numbered text holds exactly one "%d" (checked where the table is defined).
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#endif
    if (const char* message = FindText(NumberedErrorMessages(), code))
        std::snprintf(text, sizeof text, message, n);
    else
        std::snprintf(text, sizeof text, kUnknownMessage, static_cast<int>(code));
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    REShowMessage(kCaption, text, kStyle, code, n);
}

int LoadBtrieveEngine(PROCESS_INFORMATION* info) {
    if (info == nullptr)
        return 0;
    return platform::StartEngineProcess(kEngineCommandLine, info) ? 1 : 0;
}

int UnLoadBtrieveEngine(PROCESS_INFORMATION* info) {
    if (info == nullptr)
        return 0;
    return platform::StopEngineProcess(info) ? 1 : 0;
}
