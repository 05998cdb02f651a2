// A list control that some catalogue and settings operations fill with texts.
#pragma once

class REListControl {
public:
    virtual ~REListControl() = default;
    // Adds one entry; returns its index, or a negative value on failure.
    virtual int AddString(const char* text) = 0;
};
