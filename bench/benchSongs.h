#pragma once
#include "media/encodedAudio.h"
#include "media/midiWriter.h"
#include "media/moduleWriter.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

// Songs of every family for the figures that play them, made once into the figure's folder and
// kept for the next run. A song is written under a .part name and renamed when whole, so an
// interrupted run leaves nothing that looks finished.
namespace bench {

enum class SongKind { Midi, Mp3, Flac, M4a, Module };

inline const char* extensionOf(SongKind kind) {
    switch (kind) {
    case SongKind::Midi:
        return ".mid";
    case SongKind::Mp3:
        return ".mp3";
    case SongKind::Flac:
        return ".flac";
    case SongKind::M4a:
        return ".m4a";
    case SongKind::Module:
        return ".mod";
    }
    return "";
}

namespace detail {

inline bool writeSong(const std::string& part, SongKind kind, double seconds) {
    // One tempo throughout: a figure that plays a random stretch of the song meets the same
    // density of notes as a reference that plays it from the start.
    if (kind == SongKind::Midi)
        return media::writeMidi(part, media::bandSong(seconds, 120.0)).has_value();
    if (kind == SongKind::Module) {
        media::TrackerSong song;
        song.channels = 8;
        // A .mod pattern is 64 rows of 6 ticks at 125 bpm: 7.68 s.
        song.patterns = static_cast<int>(std::ceil(seconds / 7.68));
        return media::writeMod(part, song).has_value();
    }
    std::string wav = part + ".wav";
    bool made = !media::writeMusicWav(wav, seconds, 44100, 2, 2024).empty() &&
                !media::encodeAudio(wav, part).empty();
    std::error_code error;
    std::filesystem::remove(wav, error);
    return made;
}

} // namespace detail

// folder/stem.ext, at least `seconds` long; empty after a line on the error stream.
inline std::string ensureSong(const std::filesystem::path& folder, const std::string& stem,
                              SongKind kind, double seconds) {
    namespace fs = std::filesystem;
    std::error_code error;
    fs::create_directories(folder, error);
    fs::path song = folder / (stem + extensionOf(kind));
    if (fs::exists(song, error))
        return song.string();
    // The extension stays last: the encoder picks the format by it.
    fs::path part = folder / (stem + ".part" + extensionOf(kind));
    if (!detail::writeSong(part.string(), kind, seconds)) {
        std::fprintf(stderr, "cannot make %s\n", song.c_str());
        return {};
    }
    fs::rename(part, song, error);
    return error ? std::string() : song.string();
}

} // namespace bench
