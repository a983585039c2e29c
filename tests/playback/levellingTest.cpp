#include "playback/levelling.h"

#include "core/audioStart.h"
#include "core/transport.h"
#include "media/process.h"
#include "playback/loudnessWorker.h"
#include "playback/radioFixture.h"
#include "playback/slots.h"
#include "settings/musicSettings.h"

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using Seconds = std::chrono::seconds;

// The mix as a float WAV, for a meter that is not ours.
void writeFloatWav(const std::string& path, const std::vector<float>& samples) {
    auto u32 = [](std::ofstream& out, std::uint32_t v) {
        out.write(reinterpret_cast<char*>(&v), 4);
    };
    auto u16 = [](std::ofstream& out, std::uint16_t v) {
        out.write(reinterpret_cast<char*>(&v), 2);
    };
    std::ofstream out(path, std::ios::binary);
    auto bytes = static_cast<std::uint32_t>(samples.size() * 4);
    out.write("RIFF", 4), u32(out, 36 + bytes), out.write("WAVEfmt ", 8), u32(out, 16);
    u16(out, 3), u16(out, 2), u32(out, 44100), u32(out, 44100 * 8), u16(out, 8), u16(out, 32);
    out.write("data", 4), u32(out, bytes);
    out.write(reinterpret_cast<const char*>(samples.data()), bytes);
}

// What FFmpeg's EBU R128 filter hears: the momentary loudness every 100 ms (at the end of its
// 400 ms window), the integrated loudness and the true peak.
struct Heard {
    std::vector<std::pair<double, double>> momentary; // time, LUFS
    double integrated = 0.0;
    double truePeak = 0.0;

    // The loudness of the momentary values between two times, as one power.
    double between(double from, double to) const {
        double power = 0.0;
        int count = 0;
        for (auto [t, m] : momentary)
            if (t >= from && t <= to)
                power += std::pow(10.0, m / 10.0), ++count;
        return 10.0 * std::log10(power / count);
    }
    double loudestBetween(double from, double to) const {
        double most = -200.0;
        for (auto [t, m] : momentary)
            if (t >= from && t <= to)
                most = std::max(most, m);
        return most;
    }
};

Heard hearWithFfmpeg(const std::string& wav) {
    std::string command =
        "ffmpeg -nostats -hide_banner -i '" + wav + "' -af ebur128=peak=true -f null - 2>&1";
    Heard heard;
    FILE* pipe = popen(command.c_str(), "r");
    char line[1024];
    bool inPeak = false;
    while (pipe && std::fgets(line, sizeof line, pipe)) {
        std::string text(line);
        double t = 0.0, m = 0.0;
        std::size_t at = text.find(" t: ");
        if (at != std::string::npos &&
            std::sscanf(text.c_str() + at, " t: %lf TARGET:%*d LUFS M: %lf", &t, &m) == 2)
            heard.momentary.emplace_back(t, m);
        else if (text.find("True peak:") != std::string::npos)
            inPeak = true;
        else if (std::sscanf(text.c_str(), " I: %lf LUFS", &m) == 1)
            heard.integrated = m;
        else if (inPeak && std::sscanf(text.c_str(), " Peak: %lf dBFS", &m) == 1)
            heard.truePeak = m;
    }
    if (pipe)
        pclose(pipe);
    return heard;
}

// The radio on the null output with a measuring thread at normal priority, so that a test can
// wait for its values.
class Levelling : public Radio {
  protected:
    void SetUp() override {
        Radio::SetUp();
        setDefaultFont();
        st.dataDirectory = dir.str();
        st.loudness.idlePriority = false;
        loadLevellingSwitch(st);
    }
    void TearDown() override {
        endLoudnessWorker(st);
        Radio::TearDown();
    }

    // Four families far apart: a loud MP3, a quiet module, a quieter FLAC and a MIDI band played
    // softly through TimGM6mb, each with a peak well under 15 dB above its loudness.
    void addFourFamilies(double seconds) {
        media::MidiSong band = media::bandSong(seconds);
        for (media::MidiNote& note : band.notes)
            note.velocity = std::max(1, note.velocity / 5);
        media::writeMidi(path("band.mid"), band);
        media::SineSpec loud{441.0, seconds, 44100, 2, 0.7};
        media::writeEncodedSine(path("loud.mp3"), loud);
        media::TrackerSong tracker;
        tracker.patterns = static_cast<int>(seconds / 7.68) + 1;
        tracker.volume = 0.3;
        tracker.channels = 16; // dense, so that its peak stays near its loudness
        media::writeMod(path("quiet.mod"), tracker);
        media::SineSpec faint{661.5, seconds, 44100, 2, 0.012};
        media::writeEncodedSine(path("faint.flac"), faint);
        addPlaylists({path("band.mid"), path("loud.mp3"), path("quiet.mod"), path("faint.flac")});
    }
    void measureLibrary() {
        startLoudnessWorker(st);
        queueLibraryForLoudness(st);
        ASSERT_TRUE(waitForLoudness(st, std::chrono::steady_clock::now() + Seconds(300)));
    }
    double measuredLufs(const std::string& file) {
        for (const auto& [key, record] : st.loudness.values)
            if (record.songPath == path(file))
                return record.lufs;
        ADD_FAILURE() << file << " was not measured";
        return 0.0;
    }
    // Every frame heard while the steps run, as FFmpeg hears it.
    template <typename Steps> Heard hear(const std::string& name, Steps steps) {
        std::vector<float> mix;
        steps([&mix, this](int ms) {
            std::vector<float> more = advance(ms);
            mix.insert(mix.end(), more.begin(), more.end());
        });
        writeFloatWav(path(name), mix);
        EXPECT_LE(peak(mix), std::pow(10.0f, -1.0f / 20.0f)) << name;
        return hearWithFfmpeg(path(name));
    }
};

TEST_F(Levelling, EveryFamilyPlaysAtTheTargetOnceMeasured) {
    addFourFamilies(8.0);
    measureLibrary();
    std::vector<double> raw;
    for (const char* file : {"band.mid", "loud.mp3", "quiet.mod", "faint.flac"})
        raw.push_back(measuredLufs(file));
    // Made far apart: 15 LU and more between any two.
    std::vector<double> sorted = raw;
    std::sort(sorted.begin(), sorted.end());
    for (std::size_t i = 1; i < sorted.size(); ++i)
        EXPECT_GE(sorted[i] - sorted[i - 1], 15.0);

    st.FADE_DURATION_MS = 0;
    st.volume = 1.0f;
    std::vector<double> played;
    for (int plist = 0; plist < 4; ++plist) {
        Heard heard = hear("whole" + std::to_string(plist) + ".wav", [&](auto listen) {
            transition(plist, 0);
            listen(7900); // the song whole, not its loop
        });
        played.push_back(heard.integrated);
        EXPECT_NEAR(heard.integrated, levellingTargetLufs, 1.0) << plist;
    }
    auto [low, high] = std::minmax_element(played.begin(), played.end());
    EXPECT_LE(*high - *low, 1.0);
}

TEST_F(Levelling, CrossfadesBetweenFamiliesHoldOneLevelAndWithoutLevellingTheyJump) {
    addFourFamilies(12.0);
    measureLibrary();
    st.FADE_DURATION_MS = 2000;
    st.volume = 0.5f;
    // MIDI from 0 s (steady from 2 s), the MP3 fades in from 7.5 s, the module from 15.5 s.
    auto radio = [this](auto listen) {
        transition(0, 0);
        listen(7500);
        transition(1, 0);
        listen(8000);
        transition(2, 0);
        listen(7500);
    };
    const double fades[] = {7.5, 15.5};
    Heard levelled = hear("levelled.wav", radio);
    for (double start : fades) {
        SCOPED_TRACE(start);
        double before = levelled.between(start - 4.6, start);
        double after = levelled.between(start + 2.4, start + 7.0);
        EXPECT_NEAR(before, after, 1.0);
        EXPECT_LE(levelled.loudestBetween(start + 0.1, start + 2.4), std::max(before, after) + 1.0);
    }

    setLevelling(st, false);
    EXPECT_EQ(TempDir::read(dir.path() / "levelling.json"), "{\n    \"enabled\": false\n}");
    Heard raw = hear("raw.wav", radio);
    double jump = 0.0;
    for (double start : fades)
        jump = std::max(jump, std::fabs(raw.between(start - 4.6, start) -
                                        raw.between(start + 2.4, start + 7.0)));
    EXPECT_GT(jump, 10.0);
}

TEST_F(Levelling, ASongWhosePeakForbidsTheTargetIsHeldBelowTheCeilingAndSaysSo) {
    // A faint tone with a loud click every second: about 30 dB from its loudness to its peak.
    std::string clicks = path("clicks.flac");
    ASSERT_TRUE(media::runProgram({"ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                                   "aevalsrc=0.01*sin(2*PI*441*t)+0.8*lt(mod(n\\,44100)\\,4):d=6:"
                                   "s=44100:c=stereo",
                                   "-sample_fmt", "s16", clicks})
                    .ok);
    addPlaylists({clicks});
    measureLibrary();
    st.FADE_DURATION_MS = 0;
    st.volume = 1.0f;
    std::string log;
    Heard heard = hear("clicks.wav", [&](auto listen) {
        log = logOf([&] { transition(0, 0); });
        listen(5900);
    });
    EXPECT_NE(log.find("held there by its true peak"), std::string::npos) << log;
    EXPECT_LE(heard.truePeak, levellingPeakCeilingDb + 0.2);
    EXPECT_LT(heard.integrated, levellingTargetLufs - 1.0);
}

TEST_F(Levelling, TheGainIsNeverWhatTheUserSeesAndOffSoundsExactlyAsWithoutIt) {
    addPlaylists({sine("a.flac", 3.0)});
    st.FADE_DURATION_MS = 0;
    transition(0, 0);
    std::vector<float> plain = advance(500);

    st.appliedVolume = st.volume;
    for (float gain : {12.0f, -12.0f}) {
        transition(0, 0);
        ChannelHandle song = audibleHandle(st);
        channelSetGain(song, gain);
        advance(100);
        EXPECT_FLOAT_EQ(volumeOf(song), st.volume);
        EXPECT_FLOAT_EQ(st.appliedVolume, st.volume);
        saveMusicSettings(st);
    }
    auto settings = nlohmann::json::parse(TempDir::read(dir.path() / "MusicSettings.json"));
    EXPECT_FLOAT_EQ(settings.at("volumeLevel").get<float>(), st.volume);

    // Off before the song is heard: not a sample differs from a mix that never had a gain.
    transition(0, 0);
    channelSetGain(audibleHandle(st), 12.0f);
    setLevelling(st, false);
    EXPECT_EQ(advance(500), plain);
}

TEST_F(Levelling, AFontStepByHandMovesTheMidiSongToItsNewPairsValue) {
    media::MidiSong band = media::bandSong(6.0);
    for (media::MidiNote& note : band.notes)
        note.velocity = std::max(1, note.velocity / 5);
    media::writeMidi(path("soft.mid"), band);
    addPlaylists({path("soft.mid")});
    measureLibrary();
    transition(0, 100);
    float measured = 0.0f;
    ASSERT_TRUE(channelGetGain(audibleHandle(st), measured));
    EXPECT_GT(measured, 20.0f);

    // The same font under another name: a pair never measured, so first no gain, then its own.
    fs::copy_file(timidityFont, path("copy.sf2"));
    st.soundFonts = {timidityFont, path("copy.sf2")};
    st.currentSoundFont = 0;
    stepSoundFont(st, 1);
    ASSERT_TRUE(waitForLoudness(st, std::chrono::steady_clock::now() + Seconds(120)));
    EXPECT_EQ(st.loudness.onAir->fontPath, midiStreamFontPath(audibleHandle(st)));
    EXPECT_EQ(st.loudness.values.size(), 2u);
    float moved = 0.0f;
    ASSERT_TRUE(channelGetGain(audibleHandle(st), moved));
    EXPECT_NEAR(moved, measured, 0.5f);
}

TEST_F(Levelling, TheCacheSparesEveryMeasurementItStillHolds) {
    addFourFamilies(2.0);
    addPlaylists({sine("silent.flac", 2.0, 0.0), sine("short.mp3", 0.3)});
    dir.write("broken.mp3", std::string(4096, 'x'));
    addPlaylists({path("broken.mp3")});
    std::string first = logOf([&] {
        errorsOf([&] { measureLibrary(); });
        endLoudnessWorker(st);
    });
    EXPECT_EQ(st.loudness.values.size(), 7u) << first;
    for (const char* file : {"silent.flac", "short.mp3", "broken.mp3"}) {
        const LoudnessRecord& record = st.loudness.values.at(path(file));
        EXPECT_NE(record.result, LoudnessResult::Measured) << file;
        EXPECT_DOUBLE_EQ(gainOfRecord(record).decibels, 0.0) << file;
    }

    // A restart measures nothing; a file written since and a new font are measured anew.
    auto runAgain = [this] {
        return logOf([this] {
            errorsOf([this] { measureLibrary(); });
            endLoudnessWorker(st);
        });
    };
    EXPECT_EQ(runAgain().find("Loudness:"), std::string::npos);
    media::writeEncodedSine(path("loud.mp3"), media::SineSpec{441.0, 2.5, 44100, 2, 0.7});
    fs::copy_file(timidityFont, path("other.sf2"));
    FontHandle other = midiFontInit(path("other.sf2"));
    MidiFontRecord record{other, -1, 0};
    midiStreamSetFonts(0, &record, 1);
    std::string third = runAgain();
    EXPECT_NE(third.find("loud.mp3"), std::string::npos) << third;
    EXPECT_NE(third.find("band.mid"), std::string::npos) << third;
    EXPECT_EQ(std::count(third.begin(), third.end(), '\n'), 2) << third;
    EXPECT_EQ(st.loudness.values.size(), 8u);

    // A damaged cache: one line, its copy aside, and every song measured again.
    dir.write("loudnessCache.json", "{\"songs\": 3}");
    std::string errors;
    std::string fourth = logOf([&] {
        errors = errorsOf([&] { measureLibrary(); });
        endLoudnessWorker(st);
    });
    EXPECT_EQ(TempDir::copiesAside(dir.path()).size(), 1u);
    EXPECT_NE(errors.find("loudnessCache.json"), std::string::npos) << errors;
    EXPECT_NE(fourth.find("quiet.mod"), std::string::npos) << fourth;
}

TEST_F(Levelling, AShutdownAbandonsTheSongBeingMeasuredAndSavesTheRest) {
    addPlaylists({sine("a.flac", 2.0)});
    measureLibrary();
    // An hour of dense MIDI through FluidR3: long enough to be cut short.
    media::writeMidi(path("long.mid"), media::denseGeneralMidiSong(3600.0));
    FontHandle font = midiFontInit(generalMidiFont);
    MidiFontRecord record{font, -1, 0};
    midiStreamSetFonts(0, &record, 1);
    addPlaylists({path("long.mid")});
    queueLibraryForLoudness(st);
    for (int i = 0; i < 1000; ++i) {
        std::unique_lock lock(st.loudness.lock);
        if (st.loudness.measuring)
            break;
        st.loudness.wake.wait_for(lock, std::chrono::milliseconds(10));
    }
    endLoudnessWorker(st);
    EXPECT_FALSE(st.loudness.worker.joinable());
    std::string saved = TempDir::read(dir.path() / "loudnessCache.json");
    EXPECT_NE(saved.find("a.flac"), std::string::npos);
    EXPECT_EQ(saved.find("long.mid"), std::string::npos);
}

} // namespace
