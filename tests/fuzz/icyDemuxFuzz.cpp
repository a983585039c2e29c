#include "fuzz/fuzzTarget.h"
#include "playback/engine/icyDemux.h"
#include "playback/playbackState.h"
#include "playback/tags.h"

#include <string>
#include <vector>

namespace {

// The header lines as libcurl hands them over, one by one, up to the blank line.
std::vector<std::string> headerLines(std::string_view& bytes) {
    std::vector<std::string> lines;
    while (!bytes.empty()) {
        std::size_t end = bytes.find('\n');
        std::string line(bytes.substr(0, end));
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
        while (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty())
            break;
        lines.push_back(std::move(line));
    }
    return lines;
}

struct Demuxed {
    std::string audio;
    std::string meta;
};

// The body fed at once (cuts null), or in the pieces the seed cuts.
Demuxed demux(std::size_t interval, std::string_view body, const unsigned* cuts) {
    IcyDemux state = makeIcyDemux(interval);
    Demuxed out;
    if (!cuts)
        feedIcy(state, body, out.audio);
    for (FuzzChunks chunks(cuts ? body : std::string_view(), cuts ? *cuts : 0); !chunks.done();)
        feedIcy(state, chunks.next(), out.audio);
    out.meta = state.meta;
    return out;
}

} // namespace

// A station's answer: its first byte chooses how the network cuts the body, then the header lines,
// a blank line and the body. The body fed whole and fed in pieces must split alike; the tags
// go to the station's fields as the engine hands them over.
FUZZ_TARGET(icyDemux) {
    if (bytes.empty())
        return;
    unsigned cuts = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    std::vector<std::string> lines = headerLines(bytes);
    std::size_t interval = parseMetaInterval(headerValue(lines, "icy-metaint"));
    Demuxed whole = demux(interval, bytes, nullptr);
    Demuxed pieces = demux(interval, bytes, &cuts);
    if (whole.audio != pieces.audio || whole.meta != pieces.meta)
        fuzzFailure("the body splits otherwise when it comes in pieces");
    if (whole.audio.size() > bytes.size())
        fuzzFailure("more audio than body");

    std::string list;
    for (const std::string& line : lines)
        list.append(line).push_back('\0');
    const bool icy = !lines.empty() && lines.front().starts_with("ICY");
    PlaybackState st;
    applyStationTags(st, icy ? list.c_str() : nullptr, icy ? nullptr : list.c_str(),
                     whole.meta.empty() ? nullptr : whole.meta.c_str());
}
