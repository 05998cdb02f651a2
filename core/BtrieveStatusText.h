// The texts of the record-manager statuses the library describes, by status code.
#pragma once

// Number of described codes (0 .. kBtrieveStatusTextCount - 1) and the fixed width of each row.
constexpr int kBtrieveStatusTextCount = 71;
constexpr int kBtrieveStatusTextWidth = 50;

// The row of `code`, NUL-terminated; null for a code outside the table.
const char* BtrieveStatusText(int code);
