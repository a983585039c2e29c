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

// The text behind the last "/" or "\", or all of it when there is neither.
inline std::string_view fileNameOf(std::string_view path) {
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

// From the last "." of the whole path to the end, dot included; empty when there is none.
inline std::string extensionOf(std::string_view path) {
    std::size_t dot = path.rfind('.');
    return dot == std::string_view::npos ? std::string() : std::string(path.substr(dot));
}

// The extension of a file name, dot included; empty for "." and "..", for a name without a dot
// and for one whose only dot leads it (".sf2" is a hidden file, not an extension).
inline std::string_view extensionOfName(std::string_view name) {
    if (name == "." || name == "..")
        return {};
    std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return {};
    return name.substr(dot);
}
