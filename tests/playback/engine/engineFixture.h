#pragma once
#include "media/encodedAudio.h"
#include "media/midiWriter.h"
#include "media/moduleWriter.h"
#include "playback/engine/decoder.h"
#include "playback/engine/engine.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

constexpr const char* timidityFont = "/usr/share/sounds/sf2/TimGM6mb.sf2";
constexpr const char* generalMidiFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";

inline float peak(const std::vector<float>& samples) {
    float most = 0.0f;
    for (float v : samples)
        most = std::max(most, std::fabs(v));
    return most;
}

// How far the audio heard is from the audio expected, relative to the latter, from sample `from`
// on: 1 for silence, about 0 for the same audio.
inline double relativeDistance(const std::vector<float>& heard, const std::vector<float>& expected,
                               std::size_t from = 0) {
    double distance = 0.0, energy = 0.0;
    for (std::size_t i = from; i < expected.size(); ++i) {
        distance += (heard[i] - expected[i]) * (heard[i] - expected[i]);
        energy += expected[i] * expected[i];
    }
    return std::sqrt(distance / energy);
}

// Up to `frames` from a decoder, asked for in blocks as a decode thread would; fewer at its end.
inline std::vector<float> renderFrames(Decoder& decoder, std::size_t frames,
                                       std::size_t block = 1000) {
    std::vector<float> out(2 * frames);
    std::size_t done = 0;
    while (done < frames) {
        std::size_t got = decoder.render(out.data() + 2 * done, std::min(block, frames - done));
        if (got == 0)
            break;
        done += got;
    }
    out.resize(2 * done);
    return out;
}
inline std::vector<float> renderAll(Decoder& decoder, std::size_t block = 1000) {
    return renderFrames(decoder, decoder.lengthFrames() + engineRate, block);
}

// The engine on its null output with every decoder role loaded, and media made for the test.
class NullEngine : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(engineInit(AudioOutput::Null));
        for (const char* plugin : {"bassmidi.dll", "bass_aac.dll", "BASSFLAC.dll"})
            ASSERT_NE(pluginLoad(plugin), 0u);
    }
    void TearDown() override {
        engineFree();
        pluginFreeAll();
    }

    std::string path(const std::string& name) const { return (dir.path() / name).string(); }
    // A sine as a file of the format the name's extension gives.
    std::string sine(const std::string& name, double seconds, double frequency = 441.0) {
        media::SineSpec spec;
        spec.seconds = seconds;
        spec.frequency = frequency;
        return media::writeEncodedSine(path(name), spec);
    }
    std::string module(const std::string& name, int patterns = 1) {
        media::TrackerSong song;
        song.patterns = patterns;
        moduleSeconds = media::writeMod(path(name), song).value_or(0.0);
        return path(name);
    }
    std::string midi(const std::string& name, double seconds) {
        midiSeconds = media::writeMidi(path(name), media::bandSong(seconds)).value_or(0.0);
        return path(name);
    }
    // Makes TimGM6mb the font that every new MIDI stream starts with.
    FontHandle setDefaultFont() {
        FontHandle font = midiFontInit(timidityFont);
        EXPECT_NE(font, 0u);
        MidiFontRecord record{font, -1, 0};
        EXPECT_TRUE(midiStreamSetFonts(0, &record, 1));
        return font;
    }

    static std::uint64_t frameBytes(double seconds) {
        return static_cast<std::uint64_t>(seconds * 44100) * 4;
    }
    static float volumeOf(ChannelHandle handle) {
        float volume = -1.0f;
        channelGetVolume(handle, volume);
        return volume;
    }
    static bool isFreed(ChannelHandle handle) { return channelGetLength(handle) == noPosition; }

    TempDir dir;
    double moduleSeconds = 0.0;
    double midiSeconds = 0.0;
};
