// MIDI through FluidSynth: one synth and one player per stream, fonts shared between streams.
#include "playback/engine/decoder.h"
#include "playback/engine/fileBytes.h"
#include "playback/engine/midiTempoMap.h"
#include "util/log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fluidsynth.h>
#include <mutex>
#include <string>

namespace {

struct DeleteSettings {
    void operator()(fluid_settings_t* s) const { delete_fluid_settings(s); }
};
struct DeleteSynth {
    void operator()(fluid_synth_t* s) const { delete_fluid_synth(s); }
};
struct DeletePlayer {
    void operator()(fluid_player_t* p) const { delete_fluid_player(p); }
};
using SettingsPtr = std::unique_ptr<fluid_settings_t, DeleteSettings>;
using SynthPtr = std::unique_ptr<fluid_synth_t, DeleteSynth>;
using PlayerPtr = std::unique_ptr<fluid_player_t, DeletePlayer>;

void logFluidError(int, const char* message, void*) {
    logOut("fluidsynth: %s\n", message);
}

// Settings for a synth that nobody plays through a device: no driver is ever created, and the
// sample data is not pinned to RAM (a desktop player should not lock hundreds of megabytes; the
// fluidsynth command does the same when it renders to a file). Reverb, chorus, polyphony and
// interpolation keep FluidSynth's defaults, so a song sounds as the fluidsynth command plays it.
SettingsPtr makeSettings() {
    SettingsPtr settings(new_fluid_settings());
    if (!settings)
        return nullptr;
    fluid_settings_setnum(settings.get(), "synth.sample-rate", double(engineRate));
    fluid_settings_setint(settings.get(), "synth.lock-memory", 0);
    // A General MIDI font holds some 140 MB of samples, and a song uses a few of its presets:
    // FluidSynth reads a preset's samples when a channel selects it, on the decode thread,
    // ahead of what the mixer plays.
    fluid_settings_setint(settings.get(), "synth.dynamic-sample-loading", 1);
    fluid_settings_setstr(settings.get(), "player.timing-source", "sample");
    return settings;
}

// Settings for a synth that never plays: one voice and no effects keep it small.
SettingsPtr makeIdleSettings() {
    SettingsPtr settings = makeSettings();
    if (settings) {
        fluid_settings_setint(settings.get(), "synth.polyphony", 1);
        fluid_settings_setint(settings.get(), "synth.reverb.active", 0);
        fluid_settings_setint(settings.get(), "synth.chorus.active", 0);
    }
    return settings;
}

// FluidSynth keeps its log handlers process-wide, and builds its shared tables in the first synth
// made without a lock, so two decode threads opening their first songs could race for them: both
// are done here, once, before any other FluidSynth object. Its errors stay visible; its warnings
// (a preset missing for a channel, on every such note), information and debugging lines would only
// flood the log.
// That first synth is kept for the life of the process. FluidSynth starts libinstpatch with every
// synth and closes it with the last one, and each new start registers its types again without
// freeing the old ones: a player whose synths all went away on every Stop leaked some ten
// kilobytes per Start. Held by a static and never deleted, so no exit path can free it under a
// thread that still renders.
void prepareFluidSynth() {
    static std::once_flag once;
    std::call_once(once, [] {
        fluid_set_log_function(FLUID_PANIC, logFluidError, nullptr);
        fluid_set_log_function(FLUID_ERR, logFluidError, nullptr);
        fluid_set_log_function(FLUID_WARN, nullptr, nullptr);
        fluid_set_log_function(FLUID_INFO, nullptr, nullptr);
        fluid_set_log_function(FLUID_DBG, nullptr, nullptr);
        static fluid_settings_t* settings = makeIdleSettings().release();
        static fluid_synth_t* keeper = settings ? new_fluid_synth(settings) : nullptr;
        (void)keeper;
    });
}

} // namespace

// A soundfont loaded into a synth of its own that never plays. FluidSynth keeps the sample data
// of every loaded font in a process-wide cache, keyed by file name and counted by the fonts that
// use it: while this holder lives, each stream that loads the same name shares those samples
// instead of reading the file's sample data again.
// FluidSynth reads a preset's samples by the file's name whenever a channel selects it, and
// crashes when the file is gone by then: fonts are loaded under the /proc name of a descriptor
// that the holder keeps open, which leads to the file opened even after it was deleted.
class SoundFont {
  public:
    SoundFont(std::string path, FilePtr file, std::string fluidName)
        : path_(std::move(path)), file_(std::move(file)), fluidName_(std::move(fluidName)) {}
    SoundFont(const SoundFont&) = delete;
    SoundFont& operator=(const SoundFont&) = delete;

    // Loads the font into the holder; false when FluidSynth cannot (noMemory: no synth at all).
    bool load(SettingsPtr settings, bool& noMemory) {
        settings_ = std::move(settings);
        holder_.reset(settings_ ? new_fluid_synth(settings_.get()) : nullptr);
        noMemory = !holder_;
        return holder_ && fluid_synth_sfload(holder_.get(), fluidName_.c_str(), 0) != FLUID_FAILED;
    }
    const std::string& path() const { return path_; }
    const std::string& fluidName() const { return fluidName_; }

  private:
    std::string path_; // canonical, for the log
    FilePtr file_;     // outlives every synth that reads through fluidName_
    std::string fluidName_;
    SettingsPtr settings_; // declared before the synth, which must go first
    SynthPtr holder_;
};

namespace {

constexpr std::size_t blockFrames = 64; // FluidSynth renders, and its player ticks, per block
// What the synth is asked for at a time. FluidSynth runs its reverb and chorus once per call, each
// time through an OpenMP region whose start and end cost system calls; one call per block cost a
// listener more than all the rest of the player's own work while a MIDI song plays.
constexpr std::size_t batchFrames = 16 * blockFrames;

std::uint64_t framesAt(const MidiTiming& timing, std::uint64_t tick) {
    return static_cast<std::uint64_t>(std::llround(timing.secondsAt(double(tick)) * engineRate));
}

class FluidMidiDecoder final : public MidiDecoder {
  public:
    FluidMidiDecoder(std::string path, FilePtr file, std::vector<unsigned char> bytes,
                     const MidiTiming& timing, SettingsPtr settings, SynthPtr synth)
        : path_(std::move(path)), file_(std::move(file)), bytes_(std::move(bytes)), timing_(timing),
          length_(framesAt(timing, timing.endTick)), settings_(std::move(settings)),
          synth_(std::move(synth)) {}

    std::size_t render(float* out, std::size_t frames) override {
        unloadRetiredFonts();
        auto count = static_cast<std::size_t>(std::min<std::uint64_t>(frames, length_ - position_));
        if (player_)
            pull(out, count);
        // Without a font the player still runs, so that a font set later comes in on time; the
        // output is made plain zeros, since FluidSynth's effects add a tiny offset against
        // denormal numbers that would read as not quite silence.
        if (!player_ || fontIds_.empty())
            std::fill(out, out + 2 * count, 0.0f);
        position_ += count;
        return count;
    }

    // Fails only beyond the end, or when memory runs out with the old player gone: the stream is
    // then silent.
    bool seek(std::uint64_t frame) override {
        if (frame > length_)
            return false;
        if (restart(frame))
            return true;
        logOut("midi: cannot seek in %s\n", path_.c_str());
        return false;
    }

    std::uint64_t lengthFrames() const override { return length_; }
    int sourceRate() const override { return engineRate; }
    int sourceChannels() const override { return 2; }
    // The song plays from memory, but a stream about to loop must stop like the other files do
    // when the user cut its file short.
    bool sourceIntact() const override { return fileHolds(file_.get(), bytes_.size()); }

    void setFonts(const std::vector<SoundFontRef>& fonts) override;
    bool restart(std::uint64_t frame);

  private:
    // A voice that sounded when the fonts changed, known by its note id: FluidSynth reuses the
    // voice for later notes.
    struct RingingVoice {
        fluid_voice_t* voice;
        unsigned int id;
    };

    void pull(float* out, std::size_t frames);
    void synthesize(float* out, std::size_t frames);
    void silence();
    void retireFonts(std::vector<int> ids);
    void unloadRetiredFonts();

    std::string path_;
    FilePtr file_;
    std::vector<unsigned char> bytes_; // the player parses the file again on every restart
    MidiTiming timing_;
    std::uint64_t length_;
    std::uint64_t position_ = 0;
    std::vector<SoundFontRef> fonts_; // keeps the shared samples alive under the synth's fonts
    std::vector<int> fontIds_;
    std::vector<int> retiredIds_;            // replaced fonts, still sounding in the voices below
    std::vector<SoundFontRef> retiredFonts_; // their samples are still read through their names
    std::vector<RingingVoice> ringing_;
    SettingsPtr settings_; // then synth, then player: each dies before what it uses
    SynthPtr synth_;
    PlayerPtr player_;
    // The synth is only ever asked for whole batches, so that nothing it rendered before a seek
    // can come out after it; the rest of a batch waits here.
    std::array<float, 2 * batchFrames> staging_{};
    std::size_t stagingAt_ = 0;
    std::size_t stagingLeft_ = 0;
};

// One batch per call: given more, FluidSynth renders them in one go and, once the voices run
// out, steals different ones than batch by batch. Batch by batch, the audio does not depend on
// how the engine sizes its reads. Within a call, notes still start on their own block.
void FluidMidiDecoder::synthesize(float* out, std::size_t frames) {
    for (; frames > 0; frames -= batchFrames, out += 2 * batchFrames)
        if (fluid_synth_write_float(synth_.get(), int(batchFrames), out, 0, 2, out, 1, 2) !=
            FLUID_OK)
            std::fill(out, out + 2 * batchFrames, 0.0f);
}

void FluidMidiDecoder::pull(float* out, std::size_t frames) {
    while (frames > 0) {
        if (stagingLeft_ > 0) {
            std::size_t count = std::min(frames, stagingLeft_);
            std::copy_n(staging_.data() + 2 * stagingAt_, 2 * count, out);
            stagingAt_ += count;
            stagingLeft_ -= count;
            out += 2 * count;
            frames -= count;
        } else if (frames >= batchFrames) {
            std::size_t whole = frames - frames % batchFrames;
            synthesize(out, whole);
            out += 2 * whole;
            frames -= whole;
        } else {
            synthesize(staging_.data(), batchFrames);
            stagingAt_ = 0;
            stagingLeft_ = batchFrames;
        }
    }
}

// A reset does not cut the voices that sound: FluidSynth lets them die away over a tenth of a
// second or so, which a seek would let through as the tail of the notes before it. They are
// rendered out here, unheard, and a second reset clears the reverb and chorus they fed.
void FluidMidiDecoder::silence() {
    fluid_synth_system_reset(synth_.get());
    constexpr float quiet = 1e-4f;                                // -80 dB
    constexpr std::size_t mostBatches = engineRate / batchFrames; // a second, for endless releases
    std::array<float, 2 * batchFrames> batch;
    for (std::size_t n = 0; n < mostBatches && fluid_synth_get_active_voice_count(synth_.get()) > 0;
         ++n) {
        synthesize(batch.data(), batchFrames);
        if (std::all_of(batch.begin(), batch.end(), [](float v) { return std::fabs(v) < quiet; }))
            break;
    }
    fluid_synth_system_reset(synth_.get());
}

// FluidSynth's own seek keeps whatever the song set after the target (a program, a bend) and
// works only on a running player; a fresh player on a reset synth replays the song's set-up events
// up to the target instead, without its notes, as if it had played from the start. The player
// can only start on a whole tick: it starts on the one at or before the frame, and the audio up
// to the frame is dropped, so that the notes after it come at their own time.
bool FluidMidiDecoder::restart(std::uint64_t frame) {
    player_.reset();
    silence();
    // The chorus's modulator keeps its phase across a reset; setting its speed starts it afresh,
    // so that a song sounds the same from a place whatever the synthesiser rendered before.
    double speed = 0.0;
    if (fluid_synth_get_chorus_group_speed(synth_.get(), -1, &speed) == FLUID_OK)
        fluid_synth_set_chorus_group_speed(synth_.get(), -1, speed);
    stagingLeft_ = 0;
    double exactTick = timing_.tickAt(double(frame) / engineRate);
    auto tick = std::min<std::uint64_t>(static_cast<std::uint64_t>(std::floor(exactTick + 1e-6)),
                                        timing_.endTick);
    PlayerPtr player(new_fluid_player(synth_.get()));
    // A seek before play: once playing, the player refuses ticks beyond the tracks it has not
    // loaded yet.
    if (!player || fluid_player_add_mem(player.get(), bytes_.data(), bytes_.size()) != FLUID_OK ||
        fluid_player_seek(player.get(), int(std::min<std::uint64_t>(tick, INT32_MAX))) !=
            FLUID_OK ||
        fluid_player_play(player.get()) != FLUID_OK)
        return false;
    player_ = std::move(player);
    std::uint64_t skip = frame - std::min(frame, framesAt(timing_, tick));
    std::array<float, 2 * batchFrames> dropped;
    while (skip > 0) {
        std::size_t count = std::min<std::size_t>(skip, dropped.size() / 2);
        pull(dropped.data(), count);
        skip -= count;
    }
    position_ = frame;
    return true;
}

// FluidSynth looks for a preset in the most recently loaded font first, so the list is loaded
// from its end: where several fonts have a preset, the first font of the list wins. The new fonts
// come in before the old ones go, and the load gives every channel the preset of its own bank and
// program (drums stay drums) from the new fonts: the next notes sound on them. Notes still
// sounding are not cut; they ring out on the old fonts, which are unloaded once they have ended.
void FluidMidiDecoder::setFonts(const std::vector<SoundFontRef>& fonts) {
    std::vector<int> oldIds = std::move(fontIds_);
    fontIds_.clear();
    for (auto font = fonts.rbegin(); font != fonts.rend(); ++font) {
        if (!*font)
            continue;
        int id = fluid_synth_sfload(synth_.get(), (*font)->fluidName().c_str(), 1);
        if (id == FLUID_FAILED)
            logOut("midi: cannot load %s for %s\n", (*font)->path().c_str(), path_.c_str());
        else
            fontIds_.push_back(id);
    }
    retiredFonts_.insert(retiredFonts_.end(), fonts_.begin(), fonts_.end());
    retireFonts(std::move(oldIds));
    fonts_ = fonts; // a font in both lists is not read twice
}

// FluidSynth would otherwise free a font unloaded under sounding voices later, from a timer
// thread of its own.
void FluidMidiDecoder::retireFonts(std::vector<int> ids) {
    if (ids.empty())
        return;
    retiredIds_.insert(retiredIds_.end(), ids.begin(), ids.end());
    std::vector<fluid_voice_t*> voices(
        static_cast<std::size_t>(fluid_synth_get_polyphony(synth_.get())) + 1, nullptr);
    fluid_synth_get_voicelist(synth_.get(), voices.data(), int(voices.size()), -1);
    for (fluid_voice_t* voice : voices)
        if (voice)
            ringing_.push_back({voice, fluid_voice_get_id(voice)});
    unloadRetiredFonts();
}

void FluidMidiDecoder::unloadRetiredFonts() {
    if (retiredIds_.empty()) {
        retiredFonts_.clear(); // none of them was loaded
        return;
    }
    std::erase_if(ringing_, [](const RingingVoice& ringing) {
        return !fluid_voice_is_playing(ringing.voice) ||
               fluid_voice_get_id(ringing.voice) != ringing.id;
    });
    if (!ringing_.empty())
        return;
    for (int id : retiredIds_)
        fluid_synth_sfunload(synth_.get(), id, 1);
    retiredIds_.clear();
    retiredFonts_.clear();
}

enum class FontHeader { Unreadable, Other, SoundFont };

FontHeader readFontHeader(const std::string& path, int& errorNumber) {
    FilePtr file(std::fopen(path.c_str(), "rb"));
    unsigned char header[12];
    std::size_t got = file ? std::fread(header, 1, sizeof header, file.get()) : 0;
    if (!file || std::ferror(file.get())) {
        errorNumber = errno;
        return FontHeader::Unreadable;
    }
    bool riff = got == sizeof header && std::memcmp(header, "RIFF", 4) == 0 &&
                std::memcmp(header + 8, "sfbk", 4) == 0;
    return riff ? FontHeader::SoundFont : FontHeader::Other;
}

// Null if FluidSynth cannot parse the file.
SoundFontRef loadHeldFont(const std::string& path, bool& noMemory) {
    std::error_code ec;
    std::filesystem::path canonical = std::filesystem::canonical(path, ec);
    std::string name = ec ? path : canonical.string();
    FilePtr file(std::fopen(name.c_str(), "rbe")); // not handed to the game the player starts
    std::string fluidName = file ? "/proc/self/fd/" + std::to_string(fileno(file.get())) : name;
    if (!std::filesystem::exists(fluidName, ec)) // no /proc mounted
        fluidName = name;
    SettingsPtr settings = makeIdleSettings();
    auto font = std::make_shared<SoundFont>(name, std::move(file), std::move(fluidName));
    if (!font->load(std::move(settings), noMemory))
        return nullptr;
    return font;
}

} // namespace

const std::string& soundFontPath(const SoundFont& font) {
    return font.path();
}

SoundFontRef loadSoundFont(const std::string& path, EngineError& error) {
    prepareFluidSynth();
    int errorNumber = 0;
    FontHeader header = readFontHeader(path, errorNumber);
    if (header == FontHeader::Unreadable) {
        logOut("soundfont: cannot open %s: %s\n", path.c_str(), std::strerror(errorNumber));
        error = EngineError::FileOpen;
        return nullptr;
    }
    bool noMemory = false;
    SoundFontRef font = header == FontHeader::SoundFont ? loadHeldFont(path, noMemory) : nullptr;
    if (font) {
        error = EngineError::Ok;
        return font;
    }
    if (noMemory)
        logOut("soundfont: no memory to load %s\n", path.c_str());
    else
        logOut("soundfont: %s is not a SoundFont\n", path.c_str());
    error = noMemory ? EngineError::Memory : EngineError::FileFormat;
    return nullptr;
}

namespace {

// The file read and its tempo map go to the decode thread, which makes the synthesiser: FluidSynth
// builds its preset tables for every synth, a tenth of a second with a General MIDI font.
class MidiOpener final : public SourceOpener {
  public:
    MidiOpener(std::string path, FileBytes read, const MidiTiming& timing)
        : path_(std::move(path)), read_(std::move(read)), timing_(timing) {}

    std::uint64_t lengthFrames() const { return framesAt(timing_, timing_.endTick); }

    std::unique_ptr<Decoder> open(const std::vector<SoundFontRef>& fonts,
                                  EngineError& error) override {
        return openMidi(fonts, error);
    }

    std::unique_ptr<MidiDecoder> openMidi(const std::vector<SoundFontRef>& fonts,
                                          EngineError& error) {
        prepareFluidSynth();
        SettingsPtr settings = makeSettings();
        SynthPtr synth(settings ? new_fluid_synth(settings.get()) : nullptr);
        auto decoder = synth ? std::make_unique<FluidMidiDecoder>(
                                   path_, std::move(read_.file), std::move(read_.bytes), timing_,
                                   std::move(settings), std::move(synth))
                             : nullptr;
        if (decoder)
            decoder->setFonts(fonts);
        if (!decoder || !decoder->restart(0)) {
            logOut("midi: no memory for a synthesiser for %s\n", path_.c_str());
            error = EngineError::Memory;
            return nullptr;
        }
        error = EngineError::Ok;
        return decoder;
    }

  private:
    std::string path_;
    FileBytes read_;
    MidiTiming timing_;
};

std::unique_ptr<MidiOpener> probeMidi(const std::string& path, EngineError& error) {
    FileBytes read = readFileBytes(path, "MThd");
    if (read.error == FileReadError::Memory) {
        logOut("midi: %s does not fit in memory\n", path.c_str());
        error = EngineError::Memory;
        return nullptr;
    }
    if (read.error != FileReadError::None) {
        logOut("midi: cannot open %s: %s\n", path.c_str(), std::strerror(read.errorNumber));
        error = EngineError::FileOpen;
        return nullptr;
    }
    MidiProblem problem = MidiProblem::None;
    MidiTiming timing = readMidiTiming(read.bytes, problem);
    if (problem != MidiProblem::None) {
        bool smpte = problem == MidiProblem::Smpte;
        logOut(smpte ? "midi: %s counts time in SMPTE frames, which FluidSynth cannot play\n"
                     : "midi: %s is not a MIDI file\n",
               path.c_str());
        error = smpte ? EngineError::Codec : EngineError::FileFormat;
        return nullptr;
    }
    error = EngineError::Ok;
    return std::make_unique<MidiOpener>(path, std::move(read), timing);
}

} // namespace

ProbedFile probeMidiFile(const std::string& path, EngineError& error) {
    std::unique_ptr<MidiOpener> opener = probeMidi(path, error);
    if (!opener)
        return {};
    SourceFacts facts{opener->lengthFrames(), engineRate, 2};
    return {facts, nullptr, std::move(opener)};
}

std::unique_ptr<MidiDecoder> openMidiDecoder(const std::string& path,
                                             const std::vector<SoundFontRef>& fonts,
                                             EngineError& error) {
    std::unique_ptr<MidiOpener> opener = probeMidi(path, error);
    return opener ? opener->openMidi(fonts, error) : nullptr;
}
