#pragma once
#include <string>
#include <string_view>

// The default game folder: the parent of the current directory; the root stays the root.
std::string parentOfCurrentDirectory();
std::string parentOfPath(const std::string& path);

// base + tail, where tail starts with "/": a base that already ends in "/" (the root) does not
// get a second one, so "/" and "/Music" make "/Music".
inline std::string joinPath(std::string base, std::string_view tail) {
    if (!base.empty() && base.back() == '/' && !tail.empty() && tail.front() == '/')
        base.pop_back();
    base += tail;
    return base;
}

// File names compare without regard to ASCII case; other bytes stay as they are.
inline std::string asciiLower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

// The text behind the last "/" or "\", or all of it when there is neither.
inline std::string_view fileNameOf(std::string_view path) {
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string_view::npos ? path : path.substr(cut + 1);
}
