#pragma once
#include "playback/engine/engineError.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// Inside the engine only: one decoder per channel, opened, driven and destroyed by that channel's
// decode thread alone, so a decoder needs no locks of its own. Output is always interleaved
// stereo float at 44100 Hz.
constexpr int engineRate = 44100;

class Decoder {
  public:
    virtual ~Decoder() = default;
    // Writes up to `frames` stereo frames into out; fewer only at the end of the source, 0 there.
    virtual std::size_t render(float* out, std::size_t frames) = 0;
    // Moves to an output frame (44100 Hz); false leaves the decoder where it was.
    virtual bool seek(std::uint64_t frame) = 0;
    // Length in output frames (44100 Hz).
    virtual std::uint64_t lengthFrames() const = 0;
    // The source's own rate and channel count, which positions in bytes are counted in.
    virtual int sourceRate() const = 0;
    virtual int sourceChannels() const = 0;
    // False once the file is shorter than when it was opened (the user cut it), so that a stream
    // about to loop knows it cannot play the same song again.
    virtual bool sourceIntact() const { return true; }
};

// A soundfont as the engine shares it: parsed once, kept alive by every MIDI stream that uses it,
// so no decode thread can render from a font that was freed under it.
class SoundFont;
using SoundFontRef = std::shared_ptr<const SoundFont>;
// The file a font was parsed from, canonical.
const std::string& soundFontPath(const SoundFont& font);

// A MIDI decoder can change its fonts while it plays.
class MidiDecoder : public Decoder {
  public:
    virtual void setFonts(const std::vector<SoundFontRef>& fonts) = 0;
};

// What a channel must know of its file at once: the length and the counting of bytes.
struct SourceFacts {
    std::uint64_t lengthFrames = 0; // 44100 Hz
    int sourceRate = engineRate;
    int sourceChannels = 2;
};

// The rest of an open, which can take long (a synthesiser to make, fonts to load, a codec to
// start), for the channel's decode thread.
class SourceOpener {
  public:
    virtual ~SourceOpener() = default;
    // fonts: a MIDI stream's first fonts; other sources have none. Null and error set after one
    // log line naming the path. Called once.
    virtual std::unique_ptr<Decoder> open(const std::vector<SoundFontRef>& fonts,
                                          EngineError& error) = 0;
};

class CurlReader;

// A file read only as far as its facts need; the opener is null on failure. An internet stream
// also brings its reader, which the opener's I/O reads from, so it is declared to outlive it.
struct ProbedFile {
    SourceFacts facts;
    std::shared_ptr<CurlReader> reader;
    std::unique_ptr<SourceOpener> opener;
};

// On the calling thread, quick: each fails with error set, after one log line naming the path,
// for a file that cannot be read or is not of its kind.
ProbedFile probeFfmpegFile(const std::string& path, EngineError& error);
// The audio of a connected station, probed on the calling thread until `deadline`: a format from
// its Content-Type, else FFmpeg's guess from its first bytes. MP3, Ogg Vorbis, and ADTS AAC when
// aacLoaded. probeOnly: the opener plays nothing, and the reader is stopped once the audio was
// recognised. Fails as the file probes do, naming the URL.
ProbedFile probeUrlAudio(std::shared_ptr<CurlReader> reader,
                         std::chrono::steady_clock::time_point deadline, bool probeOnly,
                         bool aacLoaded, EngineError& error);
// libopenmpt's prescan gives the length, on the pattern data only.
ProbedFile probeModuleFile(const std::string& path, EngineError& error);
// The file's tempo map gives the length; the synthesiser is left to the opener.
ProbedFile probeMidiFile(const std::string& path, EngineError& error);

// libopenmpt builds its tables on the first module that a process loads, about 20 ms here; a tiny
// module loaded on an engine thread at init spares the first song change that wait.
void warmUpModuleLoader();

// A probe and an open in one go, for one thread. Each returns null and sets error on failure,
// after one log line naming the path.
std::unique_ptr<Decoder> openFfmpegDecoder(const std::string& path, EngineError& error);
std::unique_ptr<Decoder> openModuleDecoder(const std::string& path, EngineError& error);
std::unique_ptr<MidiDecoder> openMidiDecoder(const std::string& path,
                                             const std::vector<SoundFontRef>& fonts,
                                             EngineError& error);
SoundFontRef loadSoundFont(const std::string& path, EngineError& error);
// Whether a decoder role can be served ("midi", "aac", "flac"); the plug-in check asks this.
bool decoderRoleAvailable(const std::string& role);
