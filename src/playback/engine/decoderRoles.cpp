#include "playback/engine/decoderRoles.h"

#include "util/ascii.h"

std::string roleOfPluginName(const std::string& name) {
    std::string lower = asciiLower(name);
    for (const char* role : {"midi", "aac", "flac"})
        if (lower.find(role) != std::string::npos)
            return role;
    return {};
}

std::string roleOfExtension(const std::string& extension) {
    if (extension == ".mid" || extension == ".midi")
        return "midi";
    if (extension == ".m4a")
        return "aac";
    if (extension == ".flac")
        return "flac";
    return {};
}
