#include "playback/engine/icyDemux.h"

#include "util/ascii.h"

#include <algorithm>

namespace {
// Larger intervals than this are no interval a real server sends; taking them as none keeps an
// absurd header from hiding every metadata block in the audio.
constexpr std::size_t largestInterval = 1u << 24;
} // namespace

std::string headerValue(const std::vector<std::string>& lines, const std::string& key) {
    for (std::size_t i = 1; i < lines.size(); ++i) {
        std::size_t colon = lines[i].find(':');
        if (colon == std::string::npos || asciiLower(lines[i].substr(0, colon)) != key)
            continue;
        std::string value = lines[i].substr(colon + 1);
        std::size_t first = value.find_first_not_of(" \t");
        std::size_t last = value.find_last_not_of(" \t");
        return first == std::string::npos ? std::string() : value.substr(first, last - first + 1);
    }
    return {};
}

std::size_t parseMetaInterval(std::string_view value) {
    std::size_t i = value.find_first_not_of(" \t");
    if (i == std::string_view::npos)
        return 0;
    std::size_t n = 0;
    bool digits = false;
    for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i) {
        n = n * 10 + static_cast<std::size_t>(value[i] - '0');
        if (n > largestInterval)
            return 0;
        digits = true;
    }
    return digits ? n : 0;
}

IcyDemux makeIcyDemux(std::size_t interval) {
    IcyDemux demux;
    demux.interval = interval;
    demux.audioLeft = interval;
    return demux;
}

namespace {

// A whole block: its text up to the first zero byte becomes META, unless that is empty.
bool finishBlock(IcyDemux& demux) {
    demux.inMeta = false;
    demux.audioLeft = demux.interval;
    std::string text = demux.block.substr(0, demux.block.find('\0'));
    demux.block.clear();
    if (text.empty() || text == demux.meta)
        return false;
    demux.meta = std::move(text);
    return true;
}

} // namespace

bool feedIcy(IcyDemux& demux, std::string_view in, std::string& audio) {
    if (demux.interval == 0) {
        audio.append(in);
        return false;
    }
    bool changed = false;
    while (!in.empty()) {
        if (demux.inMeta) {
            std::size_t n = std::min(demux.metaLeft, in.size());
            demux.block.append(in.substr(0, n));
            in.remove_prefix(n);
            demux.metaLeft -= n;
            if (demux.metaLeft == 0)
                changed = finishBlock(demux) || changed;
        } else if (demux.audioLeft == 0) {
            demux.metaLeft = 16 * static_cast<unsigned char>(in.front());
            in.remove_prefix(1);
            demux.inMeta = true;
            if (demux.metaLeft == 0) // L 0: no text, META stays
                changed = finishBlock(demux) || changed;
        } else {
            std::size_t n = std::min(demux.audioLeft, in.size());
            audio.append(in.substr(0, n));
            in.remove_prefix(n);
            demux.audioLeft -= n;
        }
    }
    return changed;
}
