#pragma once
#include "library/records.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

// The loudness of every song measured so far, kept in loudnessCache.json in the data folder so
// that a song is measured once. A value holds for the file as it was measured (its size and
// modification time), and for a MIDI song for the soundfont it was heard through.

struct FileStamp {
    std::int64_t size = 0;
    std::int64_t mtimeNs = 0; // modification time, nanoseconds since the epoch
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// The file's stamp now, or nothing when it is gone or unreadable.
std::optional<FileStamp> stampOf(const std::string& path);

enum class LoudnessResult { Measured, Silent, Failed };

struct LoudnessRecord {
    std::string songPath;
    std::string fontPath; // MIDI only
    FileStamp song;
    FileStamp font;
    MusicType family = musicTypeUnknown;
    LoudnessResult result = LoudnessResult::Failed;
    double lufs = 0.0;       // Measured only
    double truePeakDb = 0.0; // Measured only
};

// By loudnessKey(songPath, fontPath).
using LoudnessTable = std::unordered_map<std::string, LoudnessRecord>;
std::string loudnessKey(const std::string& songPath, const std::string& fontPath);

// Missing: empty. Damaged: one line, the file set aside as NAME.bad-..., and empty, so that the
// cache is rebuilt from nothing.
LoudnessTable loadLoudnessCache(const std::string& path);
// Atomic. Values of files that are gone (the song, or a MIDI song's font) are left out. False
// after one line when the file cannot be written.
bool saveLoudnessCache(const std::string& path, const LoudnessTable& table);
