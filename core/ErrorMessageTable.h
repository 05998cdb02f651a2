// The library's numbered error messages: the plain messages of ShowErrorMessage(code) and the
// messages with a number of ShowErrorMessage(code, n), each "[Error# %d]" filled with n.
#pragma once

#include <span>

struct ErrorMessageRow {
    unsigned int code;
    const char* text;
};

// Every code with a plain message, ascending.
std::span<const ErrorMessageRow> PlainErrorMessages();
// Every code with a numbered message, ascending.
std::span<const ErrorMessageRow> NumberedErrorMessages();
