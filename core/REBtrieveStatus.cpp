// Judging record-manager statuses and showing them to the user.
#include "REBtrieveBase.h"

#include "core/BtrieveStatusText.h"
#include "core/Messages.h"

#include <cstdint>
#include <cstdio>

namespace {

// Message-box style of the status box: OK button, stop icon.
constexpr unsigned int kStatusBoxStyle = 16;
// Longest status text shown (the buffer holds one more for the NUL).
constexpr size_t kStatusTextSize = 256;

}  // namespace

int REBtrieveBase::CheckStatus(const int& status, const int& showMessage) {
    if (status == kStatusSuccess)
        return 1;
    if (showMessage)
        ShowStatusCodeMsg("ERROR: ", static_cast<int16_t>(status));
    return 0;
}

void REBtrieveBase::ShowStatusCodeMsg(const char* /*prefix*/, const int& code) {
    char text[kStatusTextSize];
    if (const char* row = BtrieveStatusText(code))
        std::snprintf(text, sizeof text, "%s %s", "Btrieve Error :", row);
    else
        std::snprintf(text, sizeof text, "%s\nStatus Code = %d", "Unknown Btrieve Error :", code);
    REShowMessage("", text, kStatusBoxStyle, 0, code);
}
