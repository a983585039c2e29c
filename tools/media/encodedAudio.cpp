#include "media/encodedAudio.h"

#include "media/process.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <random>

namespace media {
namespace {

void putLe(std::string& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xff));
}

std::string wavHeader(std::uint64_t frames, int rate, int channels) {
    const std::uint32_t blockAlign = 2u * static_cast<std::uint32_t>(channels);
    const auto dataBytes = static_cast<std::uint32_t>(frames * blockAlign);
    std::string h = "RIFF";
    putLe(h, 36 + dataBytes, 4);
    h += "WAVEfmt ";
    putLe(h, 16, 4);
    putLe(h, 1, 2); // integer PCM
    putLe(h, static_cast<std::uint32_t>(channels), 2);
    putLe(h, static_cast<std::uint32_t>(rate), 4);
    putLe(h, static_cast<std::uint32_t>(rate) * blockAlign, 4);
    putLe(h, blockAlign, 2);
    putLe(h, 16, 2);
    h += "data";
    putLe(h, dataBytes, 4);
    return h;
}

// Writes frames produced one at a time by sampleAt(frame, channel) in [-1, 1].
template <typename SampleAt>
std::string writeWav(const std::string& path, std::uint64_t frames, int rate, int channels,
                     SampleAt&& sampleAt) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << wavHeader(frames, rate, channels);
    std::string block;
    block.reserve(1 << 16);
    for (std::uint64_t frame = 0; frame < frames && out; ++frame) {
        for (int channel = 0; channel < channels; ++channel) {
            double value = std::clamp(sampleAt(frame, channel), -1.0, 1.0);
            auto sample = static_cast<std::int16_t>(std::lround(value * 32767.0));
            putLe(block, static_cast<std::uint16_t>(sample), 2);
        }
        if (block.size() >= (1 << 16) - 16) {
            out.write(block.data(), static_cast<std::streamsize>(block.size()));
            block.clear();
        }
    }
    out.write(block.data(), static_cast<std::streamsize>(block.size()));
    out.close();
    if (!out) {
        std::fprintf(stderr, "media: cannot write %s\n", path.c_str());
        return {};
    }
    return path;
}

const char* const* codecArgsFor(const std::string& extension) {
    static constexpr const char* mp3[] = {"-c:a", "libmp3lame", "-b:a", "192k", nullptr};
    static constexpr const char* m4a[] = {"-c:a", "aac", "-b:a", "160k", nullptr};
    static constexpr const char* flac[] = {"-c:a", "flac", nullptr};
    static constexpr const char* adts[] = {"-c:a", "aac", "-b:a", "160k", "-f", "adts", nullptr};
    static constexpr const char* vorbis[] = {"-c:a", "libvorbis", "-q:a", "5", nullptr};
    if (extension == ".mp3")
        return mp3;
    if (extension == ".m4a")
        return m4a;
    if (extension == ".flac")
        return flac;
    if (extension == ".aac")
        return adts;
    if (extension == ".ogg")
        return vorbis;
    return nullptr;
}

std::uint32_t readLe(const unsigned char* p, int bytes) {
    std::uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i)
        value = (value << 8) | p[i];
    return value;
}

// Walks the RIFF chunks for "fmt " and "data"; a short or odd file reads as zero frames.
std::uint64_t readWavFrames(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    unsigned char riff[12];
    if (!in.read(reinterpret_cast<char*>(riff), 12) || std::memcmp(riff, "RIFF", 4) != 0 ||
        std::memcmp(riff + 8, "WAVE", 4) != 0)
        return 0;
    std::uint32_t blockAlign = 0;
    unsigned char chunk[8];
    while (in.read(reinterpret_cast<char*>(chunk), 8)) {
        std::uint32_t size = readLe(chunk + 4, 4);
        if (std::memcmp(chunk, "fmt ", 4) == 0 && size >= 16) {
            unsigned char fmt[16];
            in.read(reinterpret_cast<char*>(fmt), 16);
            blockAlign = readLe(fmt + 12, 2);
            in.seekg(size - 16 + (size & 1), std::ios::cur);
        } else if (std::memcmp(chunk, "data", 4) == 0) {
            return blockAlign == 0 ? 0 : size / blockAlign;
        } else {
            in.seekg(size + (size & 1), std::ios::cur);
        }
    }
    return 0;
}

} // namespace

std::string writeSineWav(const std::string& path, const SineSpec& spec) {
    const auto frames = static_cast<std::uint64_t>(std::llround(spec.seconds * spec.rate));
    const double step = 2.0 * std::numbers::pi * spec.frequency / spec.rate;
    return writeWav(path, frames, spec.rate, spec.channels, [&](std::uint64_t frame, int) {
        return spec.amplitude * std::sin(step * static_cast<double>(frame));
    });
}

std::string writeMusicWav(const std::string& path, double seconds, int rate, int channels,
                          std::uint32_t seed) {
    const auto frames = static_cast<std::uint64_t>(std::llround(seconds * rate));
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> noise(-1.0, 1.0);
    constexpr double tones[] = {110.0, 220.0, 277.18, 329.63, 440.0, 659.25};
    constexpr double twoPi = 2.0 * std::numbers::pi;
    return writeWav(path, frames, rate, channels, [&](std::uint64_t frame, int channel) {
        double t = static_cast<double>(frame) / rate;
        double value = 0.0;
        for (std::size_t i = 0; i < std::size(tones); ++i) {
            // Each tone drifts slowly in pitch and swells in its own rhythm.
            double pitch = tones[i] * (1.0 + 0.01 * std::sin(twoPi * 0.1 * (i + 1) * t));
            double swell = 0.5 + 0.5 * std::sin(twoPi * (0.25 + 0.1 * i) * t + channel);
            value += 0.08 * swell * std::sin(twoPi * pitch * t + channel * 0.5);
        }
        double beatPhase = std::fmod(t * 2.0, 1.0); // two beats a second
        value += 0.2 * std::exp(-beatPhase * 30.0) * noise(rng);
        value += 0.02 * noise(rng);
        return value;
    });
}

std::string encodeAudio(const std::string& wavPath, const std::string& outPath,
                        const std::vector<std::string>& extraArgs) {
    const char* const* codecArgs =
        codecArgsFor(std::filesystem::path(outPath).extension().string());
    if (!codecArgs) {
        std::fprintf(stderr, "media: no encoder for %s\n", outPath.c_str());
        return {};
    }
    std::vector<std::string> args = {"ffmpeg", "-nostdin", "-hide_banner", "-loglevel",
                                     "error",  "-y",       "-i",           wavPath};
    for (; *codecArgs; ++codecArgs)
        args.emplace_back(*codecArgs);
    args.insert(args.end(), extraArgs.begin(), extraArgs.end());
    args.push_back(outPath);
    if (!runProgram(std::move(args)).ok) {
        std::fprintf(stderr, "media: ffmpeg could not make %s\n", outPath.c_str());
        return {};
    }
    return outPath;
}

std::string writeVideoOnly(const std::string& outPath) {
    if (!runProgram({"ffmpeg", "-nostdin", "-hide_banner", "-loglevel", "error", "-y", "-f",
                     "lavfi", "-i", "color=c=blue:s=32x32:d=0.2", "-c:v", "ffv1", outPath})
             .ok) {
        std::fprintf(stderr, "media: ffmpeg could not make %s\n", outPath.c_str());
        return {};
    }
    return outPath;
}

std::string writeEncodedSine(const std::string& outPath, const SineSpec& spec,
                             const std::vector<std::string>& extraArgs) {
    std::string wavPath = std::filesystem::path(outPath).replace_extension(".wav").string();
    if (writeSineWav(wavPath, spec).empty())
        return {};
    return encodeAudio(wavPath, outPath, extraArgs);
}

std::uint64_t wavFrames(const std::string& wavPath) {
    return readWavFrames(wavPath);
}

} // namespace media
