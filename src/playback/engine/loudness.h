#pragma once
#include <atomic>
#include <memory>
#include <string>

// The loudness of a song as the player makes it heard: the engine's own decoders at 44100 Hz
// stereo float (a MIDI file through its soundfont, a module with its ramping), measured by EBU
// R128 (integrated loudness and true peak). Tags in the file (ReplayGain, R128) are not read.

enum class LoudnessOutcome {
    Measured, // lufs and truePeakDb hold the figures
    Silent,   // nothing above the gate, or shorter than one 400 ms block: never to be boosted
    Failed,   // the file cannot be decoded (one line said why)
    Stopped,  // the caller asked to stop
};

struct LoudnessFigures {
    LoudnessOutcome outcome = LoudnessOutcome::Failed;
    double lufs = 0.0;       // integrated loudness, LUFS
    double truePeakDb = 0.0; // dBTP, the louder channel
};

class SoundFont;

// One per measuring thread: it keeps the soundfont it parsed last, so that a run over many MIDI
// songs parses its font once.
class LoudnessMeter {
  public:
    LoudnessMeter();
    ~LoudnessMeter();
    LoudnessMeter(const LoudnessMeter&) = delete;
    LoudnessMeter& operator=(const LoudnessMeter&) = delete;

    // Decodes the song whole (at most an hour of it) on the calling thread. module: a tracker
    // module; otherwise the extension chooses, and a MIDI file plays through fontPath. Returns
    // Stopped within one block of stop being set.
    LoudnessFigures measure(const std::string& path, bool module, const std::string& fontPath,
                            const std::atomic<bool>& stop);

  private:
    std::string fontPath_;
    std::shared_ptr<const SoundFont> font_;
};
