#pragma once

namespace quorlin::plist {

// The value of one hexadecimal digit, or -1; shared by the text readers.
constexpr int hexDigitValue(char32_t c) {
    if (c >= '0' && c <= '9')
        return int(c - '0');
    if (c >= 'a' && c <= 'f')
        return int(c - 'a') + 10;
    if (c >= 'A' && c <= 'F')
        return int(c - 'A') + 10;
    return -1;
}

} // namespace quorlin::plist
