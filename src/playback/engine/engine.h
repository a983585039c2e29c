#pragma once
#include "playback/engine/engineError.h"
#include "playback/engine/handle.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The audio engine: channels on files decoded ahead on their own threads, mixed in float at
// 44100 Hz stereo and played through SDL (or pulled by a test from the null output). Every call
// accepts stale and zero handles and just fails, from any thread; the reason of the last failure
// of the calling thread is engineErrorCode().
//
// Our name                 The classic operation it stands for
// ---------------------    -----------------------------------
// pluginLoad / pluginFreeAll   BASS_PluginLoad / BASS_PluginFree(0)
// engineInit / engineFree      BASS_Init(-1, 44100, 0, 0, 0) / BASS_Free
// engineErrorCode              BASS_ErrorGetCode
// streamCreateFile             BASS_StreamCreateFile(FALSE, path, 0, 0, BASS_SAMPLE_LOOP)
// streamCreateUrl              BASS_StreamCreateURL
// musicLoad                    BASS_MusicLoad(FALSE, path, 0, 0, PRESCAN | RAMP, 0)
// channelPlay / channelPause / channelStop   BASS_ChannelPlay(h, FALSE) / Pause / Stop
// channelIsActive              BASS_ChannelIsActive
// streamFree / musicFree       BASS_StreamFree / BASS_MusicFree
// channelSetVolume / channelGetVolume / channelSlideVolume
//                              BASS_ChannelSet/Get/SlideAttribute(h, BASS_ATTRIB_VOL, ...)
// channelGetLength / channelGetPosition / channelSetPosition   ... (h, BASS_POS_BYTE)
// channelBytesToSeconds / channelSecondsToBytes   BASS_ChannelBytes2Seconds / Seconds2Bytes
// channelGetTags               BASS_ChannelGetTags
// midiFontInit / midiFontFree  BASS_MIDI_FontInit(path, 0) / BASS_MIDI_FontFree
// midiStreamSetFonts / midiStreamGetFonts   BASS_MIDI_StreamSetFonts / GetFonts (FONT_EX2)

enum class ChannelState { Stopped = 0, Playing = 1, Stalled = 2, Paused = 3 };
enum class TagKind { Http = 3, Icy = 4, Meta = 5 };
enum class AudioOutput { Device, Null };

// All ones: the failed position or length, and the length of a station.
constexpr std::uint64_t noPosition = ~std::uint64_t{0};

struct MidiFontRecord {
    FontHandle font = 0;
    int preset = -1; // -1: every preset of the font
    int bank = 0;
};

// --- Set-up. Plug-ins are the decoder roles "midi", "aac" and "flac", named as the file names of
// the classic plug-ins were ("bassmidi.dll" asks for the MIDI role). They come before init.
std::uint32_t pluginLoad(const std::string& name);
void pluginFreeAll();
// Opens the default device at 44100 Hz (or the null output for tests). False when it cannot. A
// device lost later is replaced by the default device once one opens, every channel kept.
bool engineInit(AudioOutput output = AudioOutput::Device);
// Stops and releases every channel and font; every call then fails until the next init.
bool engineFree();
EngineError engineErrorCode();
// Between a successful init and the next free.
bool engineIsInitialized();

// --- Channels. Every call returns at once: a create reads only what the length needs, and the
// channel's decode thread opens the decoder. A file that cannot be read or is not of its kind
// fails the create; one that turns out undecodable on the decode thread ends its channel as at
// its end (Stopped, its position at its length).
// A stream on a MIDI or MP3-family file; it loops at its end.
ChannelHandle streamCreateFile(const std::string& path);
// An internet stream (http or https), connected and its audio recognised before it returns, or
// 0 after one line naming the URL, within 5 s of the call (Timeout then). It never loops or
// seeks, its length is all ones, and it ends (Stopped, once its buffer is played) when the
// server closes or sends nothing for 5 s. probe: the station is only asked for its tags; the
// channel holds them but never plays.
ChannelHandle streamCreateUrl(const std::string& url, bool probe = false);
// A tracker module, length known at once; it stops at its end.
ChannelHandle musicLoad(const std::string& path);
// Starts or resumes without rewinding; the channel is heard, and its slides move, from its first
// decoded audio on.
bool channelPlay(ChannelHandle handle);
bool channelPause(ChannelHandle handle);
bool channelStop(ChannelHandle handle);
ChannelState channelIsActive(ChannelHandle handle);
bool streamFree(ChannelHandle handle);
bool musicFree(ChannelHandle handle);

// --- Volume, positions, tags. A slide moves with the frames the channel plays. A volume that is
// NaN or infinite fails with IllegalParam and leaves the channel's volume as it was.
bool channelSetVolume(ChannelHandle handle, float volume);
bool channelGetVolume(ChannelHandle handle, float& volume);
bool channelSlideVolume(ChannelHandle handle, float target, int milliseconds);
// The loudness levelling's gain, in dB, multiplied in front of the volume: channelGetVolume and the
// slides report and move the volume alone. It moves over `milliseconds` (a short ramp by default,
// so that no change clicks); a channel not heard yet takes it at once, so that a fade-in starts
// at the right level. 0 dB is a factor of exactly 1.
constexpr int gainRampMs = 50;
bool channelSetGain(ChannelHandle handle, float decibels, int milliseconds = gainRampMs);
bool channelGetGain(ChannelHandle handle, float& decibels);
std::uint64_t channelGetLength(ChannelHandle handle);
// What the listener has heard, not what the decoder read ahead.
std::uint64_t channelGetPosition(ChannelHandle handle);
// Exactly -1.0 for a bad handle.
double channelBytesToSeconds(ChannelHandle handle, std::uint64_t bytes);
std::uint64_t channelSecondsToBytes(ChannelHandle handle, double seconds);
// Refuses a position outside the channel and leaves it where it was. The buffered audio is not
// heard any more; the channel is silent, its position the one asked for, until the decoder is
// there.
bool channelSetPosition(ChannelHandle handle, std::uint64_t bytes);
// Zero-separated list ending in an empty string (Http, Icy) or one string (Meta); null if none.
const char* channelGetTags(ChannelHandle handle, TagKind kind);

// --- MIDI.
// A file already open shares its parsed font with the new handle, so a reopen costs nothing;
// the four fonts opened last stay parsed after their last handle went. A file deleted since fails.
FontHandle midiFontInit(const std::string& path);
// The handle goes; the streams and the default list that name it keep the font.
bool midiFontFree(FontHandle font);
// Stream 0 sets the default fonts of every MIDI stream created afterwards; a stream's own fonts
// are loaded on its decode thread and heard from its next decoded audio on.
bool midiStreamSetFonts(ChannelHandle stream, const MidiFontRecord* fonts, int count);
// The number of fonts set, with records filled when out is not null; -1 on failure.
int midiStreamGetFonts(ChannelHandle stream, MidiFontRecord* out, int count);
// The file of the stream's first font as last set (its canonical path), empty when it has none;
// stream 0 names the first default font.
std::string midiStreamFontPath(ChannelHandle stream);

// --- For tests and benchmarks.
// Mixes the next frames of the null output; waits for decoders, so the result is deterministic.
std::vector<float> nullOutputPull(std::size_t frames);
// The next `calls` font changes of a stream (not of stream 0) fail, as a broken stream's would.
void failStreamSetFonts(int calls);
// Blocks of a playing channel that found its buffer empty.
int channelUnderruns(ChannelHandle handle);
