#pragma once
#include <algorithm>
#include <string>
#include <vector>

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

// Whether a row equals text, ignoring ASCII case: a folder or a URL listed once already.
inline bool containsIgnoringAsciiCase(const std::vector<std::string>& rows,
                                      const std::string& text) {
    const std::string key = asciiLower(text);
    return std::any_of(rows.begin(), rows.end(),
                       [&key](const std::string& row) { return asciiLower(row) == key; });
}
