#pragma once
#include <string>

// Byte-wise and ASCII only, so that the bytes of a UTF-8 name pass unchanged whatever the locale:
// file names compare without regard to ASCII case, and other bytes stay as they are.
constexpr char toUpperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}
constexpr char toLowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
constexpr bool isUpperAscii(char c) {
    return c >= 'A' && c <= 'Z';
}

inline std::string asciiLower(std::string text) {
    for (char& c : text)
        c = toLowerAscii(c);
    return text;
}
