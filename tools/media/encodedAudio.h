#pragma once
#include <cstdint>
#include <string>
#include <vector>

// Encoded audio made at run time for tests and benchmarks: synthesised 16-bit PCM WAV files, and
// MP3, M4A and FLAC made from them by the `ffmpeg` command. Every function returns the path it
// wrote, or an empty string after a line on the error stream.
namespace media {

struct SineSpec {
    double frequency = 440.0;
    double seconds = 1.0;
    int rate = 44100;
    int channels = 2;
    double amplitude = 0.5; // of full scale; every channel carries the same sine
};

// Sample n of every channel is amplitude * sin(2 pi frequency n / rate), rounded to 16 bits.
std::string writeSineWav(const std::string& path, const SineSpec& spec);

// Something like music for the coders to chew on: a few drifting tones, a beat and some noise,
// different in each channel; the same seed gives the same file.
std::string writeMusicWav(const std::string& path, double seconds, int rate, int channels,
                          std::uint32_t seed);

// Encodes a WAV into the format that outPath's extension names (.mp3 with LAME, .m4a with
// FFmpeg's AAC, .aac the same as ADTS, .flac, .ogg Vorbis); extraArgs go just before the output
// (e.g. "-write_xing", "0").
std::string encodeAudio(const std::string& wavPath, const std::string& outPath,
                        const std::vector<std::string>& extraArgs = {});

// A short video without any sound (.mkv), for a file that opens but has nothing to play.
std::string writeVideoOnly(const std::string& outPath);

// A sine written as WAV beside outPath (same name, .wav) and encoded to outPath.
std::string writeEncodedSine(const std::string& outPath, const SineSpec& spec,
                             const std::vector<std::string>& extraArgs = {});

// The frames a WAV file holds (its data size over its block size): the true length of whatever
// was encoded from it. 0 when the file is not a WAV we can read.
std::uint64_t wavFrames(const std::string& wavPath);

} // namespace media
