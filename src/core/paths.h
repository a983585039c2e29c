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
