#include "fuzz/fuzzTarget.h"
#include "playback/playbackState.h"
#include "playback/tags.h"

#include <array>
#include <string>

// The read behind readStationTags over any three tag texts the engine could hand over. The input's
// first byte says which of them the stream has (bits 0 to 2: ICY list, HTTP list, metadata), the
// rest holds the name read last time, then the three texts, split at 0xFF bytes; a list's strings
// end at zero bytes, and the engine closes every list with an empty one.
FUZZ_TARGET(readStationTags) {
    if (bytes.empty())
        return;
    unsigned present = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    std::array<std::string, 4> parts; // previous name, ICY, HTTP, metadata
    for (std::string& part : parts) {
        std::size_t end = bytes.find('\xff');
        part = bytes.substr(0, end);
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    }
    parts[1].push_back('\0');
    parts[2].push_back('\0');
    auto text = [&](int i) { return (present >> (i - 1) & 1) ? parts[i].c_str() : nullptr; };

    PlaybackState st;
    st.previousStationName = parts[0];
    applyStationTags(st, text(1), text(2), text(3));
    for (const std::string* field : {&st.stationName, &st.stationGenre, &st.streamTitle})
        if (field->size() > stationTextMax)
            fuzzFailure("a station text is longer than the screen keeps");
}
