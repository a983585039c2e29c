#include "playback/engine/icyDemux.h"

#include <gtest/gtest.h>

namespace {

std::string block(const std::string& text) {
    std::string b(1, static_cast<char>((text.size() + 15) / 16));
    return b + text + std::string((16 - text.size() % 16) % 16, '\0');
}

// Every split of the input into two feeds gives the same audio and META as one feed.
TEST(IcyDemux, SplitsAudioFromMetadataAtEveryFeedBoundary) {
    struct Case {
        std::size_t interval;
        std::string in, audio, meta;
    };
    const Case cases[] = {
        {4, "abcd" + block("T='1';") + "efgh" + std::string(1, '\0') + "ij", "abcdefghij",
         "T='1';"},                                                                // L 0 keeps META
        {2, "ab" + block("X") + "cd" + block(std::string("\0Y", 2)), "abcd", "X"}, // empty kept
        {2, "ab" + block(std::string("Z\0W", 3)), "ab", "Z"}, // up to the first zero byte
        {0, "ab\x01xyz", "ab\x01xyz", ""},                    // no interval: all audio
    };
    for (const Case& c : cases) {
        for (std::size_t split = 0; split <= c.in.size(); ++split) {
            IcyDemux demux = makeIcyDemux(c.interval);
            std::string audio;
            feedIcy(demux, std::string_view(c.in).substr(0, split), audio);
            feedIcy(demux, std::string_view(c.in).substr(split), audio);
            EXPECT_EQ(audio, c.audio) << split;
            EXPECT_EQ(demux.meta, c.meta) << split;
        }
    }
}

TEST(IcyDemux, ReadsTheIntervalOnlyFromANumber) {
    const std::pair<const char*, std::size_t> values[] = {
        {"8192", 8192}, {" 8192", 8192}, {"", 0}, {"0", 0}, {"none", 0}, {"99999999999", 0}};
    for (const auto& [text, interval] : values)
        EXPECT_EQ(parseMetaInterval(text), interval) << text;
}

} // namespace
