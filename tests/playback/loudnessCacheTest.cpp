#include "playback/loudnessCache.h"

#include "playback/levelling.h"
#include "playback/loudnessState.h"
#include "playback/playbackState.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

LoudnessRecord measured(const std::string& path, MusicType family, double lufs, double peak,
                        const std::string& font = {}) {
    LoudnessRecord record{path, font, *stampOf(path), {}, family, LoudnessResult::Measured,
                          lufs, peak};
    if (!font.empty())
        record.font = *stampOf(font);
    return record;
}

void add(LoudnessTable& table, LoudnessRecord record) {
    std::string key = loudnessKey(record.songPath, record.fontPath);
    table[key] = std::move(record);
}

TEST(LoudnessCache, KeepsWhatStillHoldsAndForgetsWhatChangedOrWent) {
    TempDir dir;
    std::string song = dir.write("a song.mp3", "audio").string();
    std::string midi = dir.write("b.mid", "midi").string();
    std::string font = dir.write("font.sf2", "sf2").string();
    std::string gone = dir.write("gone.flac", "x").string();
    std::string silent = dir.write("quiet.flac", "q").string();
    LoudnessTable table;
    add(table, measured(song, musicTypeMp3, -9.87, -0.42));
    add(table, measured(midi, musicTypeMidi, -24.5, -6.0, font));
    add(table, measured(gone, musicTypeMp3, -20.0, -3.0));
    add(table,
        LoudnessRecord{
            silent, {}, *stampOf(silent), {}, musicTypeTracker, LoudnessResult::Silent, 0.0, 0.0});
    fs::remove(gone);

    std::string file = (dir.path() / "loudnessCache.json").string();
    ASSERT_TRUE(saveLoudnessCache(file, table));
    LoudnessTable read = loadLoudnessCache(file);
    ASSERT_EQ(read.size(), 3u); // the file that went is left out
    const LoudnessRecord& back = read.at(loudnessKey(song, {}));
    EXPECT_EQ(back.song, table.at(loudnessKey(song, {})).song);
    EXPECT_DOUBLE_EQ(back.lufs, -9.87);
    EXPECT_DOUBLE_EQ(back.truePeakDb, -0.42);
    EXPECT_EQ(read.at(loudnessKey(midi, font)).font, *stampOf(font));
    EXPECT_EQ(read.at(loudnessKey(silent, {})).result, LoudnessResult::Silent);
    EXPECT_TRUE(TempDir::copiesAside(dir.path()).empty());

    // A file written since, or its font, is measured again.
    EXPECT_NE(currentRecord(read, LoudnessJob{song, {}, musicTypeMp3}), nullptr);
    dir.write("a song.mp3", "other audio");
    dir.write("font.sf2", "another sf2");
    EXPECT_EQ(currentRecord(read, LoudnessJob{song, {}, musicTypeMp3}), nullptr);
    EXPECT_EQ(currentRecord(read, LoudnessJob{midi, font, musicTypeMidi}), nullptr);
}

TEST(LoudnessCache, ADamagedFileIsSetAsideWithOneLineAndRebuiltFromNothing) {
    const char* damaged[] = {
        "{\"songs\": [{\"path\": \"/a.mp3\", \"size\": 1", // cut short
        "[]",
        "{\"songs\": 5}",
        "{\"songs\": [1]}",
        "{\"songs\": [{\"path\": 1, \"size\": 1, \"mtime\": 1, \"family\": 1, "
        "\"result\": \"silent\"}]}",
        "{\"songs\": [{\"path\": \"/a.mp3\", \"size\": 1, \"mtime\": 1, \"family\": 1, "
        "\"result\": \"measured\"}]}", // no figures
        "{\"songs\": [{\"path\": \"/a.mid\", \"size\": 1, \"mtime\": 1, \"family\": 0, "
        "\"result\": \"silent\"}]}", // MIDI without its font
        "{\"songs\": [{\"path\": \"/a.mp3\", \"size\": 1, \"mtime\": 1, \"family\": 7, "
        "\"result\": \"silent\"}]}",
    };
    for (const char* text : damaged) {
        SCOPED_TRACE(text);
        TempDir dir;
        std::string file = dir.write("loudnessCache.json", text).string();
        LoudnessTable table;
        std::string errors = errorsOf([&] { table = loadLoudnessCache(file); });
        EXPECT_TRUE(table.empty());
        EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
        EXPECT_EQ(TempDir::copiesAside(dir.path()), std::vector<std::string>{text});
    }
}

TEST(Levelling, AGainBringsASongToTheTargetNoFurtherThanItsPeakAllowsAndNeverRaisesSilence) {
    struct Case {
        LoudnessResult result;
        double lufs, peak, gain;
        bool heldByPeak;
    } cases[] = {
        {LoudnessResult::Measured, -30.0, -20.0, 12.0, false},
        {LoudnessResult::Measured, -10.0, -0.5, -8.0, false},
        {LoudnessResult::Measured, -30.0, -3.0, 2.0, true}, // the ceiling of -1 dBTP binds
        {LoudnessResult::Silent, 0.0, 0.0, 0.0, false},
        {LoudnessResult::Failed, 0.0, 0.0, 0.0, false},
    };
    for (const Case& c : cases) {
        LoudnessRecord record;
        record.result = c.result;
        record.lufs = c.lufs;
        record.truePeakDb = c.peak;
        LevelGain gain = gainOfRecord(record);
        EXPECT_DOUBLE_EQ(gain.decibels, c.gain);
        EXPECT_EQ(gain.heldByPeak, c.heldByPeak);
        EXPECT_TRUE(gain.measured);
    }
}

TEST(Levelling, ASongNotMeasuredYetTakesTheMedianOfItsFontOrFamilyButIsNeverRaised) {
    TempDir dir;
    std::string fontA = dir.write("a.sf2", "a").string();
    std::string fontB = dir.write("b.sf2", "b").string();
    LoudnessTable table;
    int n = 0;
    auto song = [&](MusicType family, double lufs, const std::string& font = {}) {
        add(table,
            measured(dir.write(std::to_string(n++), "x").string(), family, lufs, -30.0, font));
    };
    song(musicTypeMp3, -12.0);         // -6 dB
    song(musicTypeMp3, -14.0);         // -4
    song(musicTypeMp3, -16.0);         // -2
    song(musicTypeTracker, -30.0);     // +12: quiet, yet the median is not a boost
    song(musicTypeMidi, -13.0, fontA); // -5
    song(musicTypeMidi, -30.0, fontB); // +12 through another font
    std::string unknown = dir.write("new", "x").string();
    auto gainFor = [&](MusicType family, const std::string& font = {}) {
        LevelGain gain = levelFor(table, LoudnessJob{unknown, font, family});
        EXPECT_FALSE(gain.measured);
        return gain.decibels;
    };
    EXPECT_DOUBLE_EQ(gainFor(musicTypeMp3), -4.0);
    EXPECT_DOUBLE_EQ(gainFor(musicTypeTracker), 0.0);
    EXPECT_DOUBLE_EQ(gainFor(musicTypeMidi, fontA), -5.0);
    EXPECT_DOUBLE_EQ(gainFor(musicTypeMidi, dir.write("c.sf2", "c").string()), 0.0);
}

TEST(Levelling, TheSwitchIsOnUnlessItsOwnFileSaysOffAndADamagedOneIsSetAside) {
    struct Case {
        const char* text; // null: no file
        bool on;
        bool setAside;
    } cases[] = {{nullptr, true, false},
                 {"{\"enabled\": false}", false, false},
                 {"{\"enabled\": true}", true, false},
                 {"{\"enabled\": 0}", true, true},
                 {"off", true, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text ? c.text : "no file");
        TempDir dir;
        if (c.text)
            dir.write("levelling.json", c.text);
        PlaybackState st;
        st.dataDirectory = dir.str();
        errorsOf([&] { loadLevellingSwitch(st); });
        EXPECT_EQ(st.loudness.enabled, c.on);
        EXPECT_EQ(TempDir::copiesAside(dir.path()).size(), c.setAside ? 1u : 0u);
    }
}

} // namespace
