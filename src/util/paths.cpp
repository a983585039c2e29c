#include "util/paths.h"

#include <filesystem>

namespace fs = std::filesystem;

std::string parentOfPath(const std::string& path) {
    fs::path p(path);
    if (p.has_filename())
        return p.parent_path().string();
    // "/music/" names the folder music, whose parent is "/".
    return p.parent_path().parent_path().string();
}

std::string parentOfCurrentDirectory() {
    std::error_code ec;
    return parentOfPath(fs::current_path(ec).string());
}
