// Rewrites a mill price list kept in the old comma-separated text form as INI-style text.
#pragma once

#include "tarsel_export.h"

// Renames the text file at `path` to the same name with the extension "DOS" (replacing any
// file of that name) and writes at `path`, for each line of it (at most 254 characters a line,
// its last character dropped): a line with a comma as "Key%02d=<line>" with a counter that
// starts at 0 in each section, any other line as an empty line and "[<line>]", which starts a
// new section. Always returns 1: failures to rename, read or write are not reported (a null
// `path` or one that already has the extension "DOS" is left alone).
TARSEL_API int ConvertMillPriceFileToIniFormat(const char* path);
