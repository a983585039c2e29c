#pragma once
#include <cstdint>
#include <optional>
#include <string>

struct PlayerState;

// What the desktop's media controls (MPRIS on the session bus) see of the player and may do to
// it. Every operation is one the menu, the hotkeys or the seek bar already run.

enum class MediaStatus { Playing, Paused, Stopped };

// The player as the desktop shows it; compared between looks to tell what changed.
struct MediaSnapshot {
    MediaStatus status = MediaStatus::Stopped;
    bool hasSong = false;                 // something is loaded, a song or a station
    std::optional<std::int64_t> lengthUs; // none on a station or with nothing loaded
    std::string title;
    std::string album;
    std::string url;
    double volume = 0;
    bool canGoPrevious = false;
    bool canSeek = false;
    friend bool operator==(const MediaSnapshot&, const MediaSnapshot&) = default;
};
MediaSnapshot mediaSnapshot(const PlayerState& st);
// The position of the audible song, read from the engine now: the stored one is as old as the
// last paint. 0 when nothing plays.
std::int64_t mediaPositionUs(const PlayerState& st);

// Play/Pause: pauses or resumes, or starts the music when the audio is off.
void mediaPlayPause(PlayerState& st);
// Play: resumes a paused song or starts the music when the audio is off; nothing while playing.
void mediaPlay(PlayerState& st);
// Pause: only a playing song.
void mediaPause(PlayerState& st);
void mediaStop(PlayerState& st);
void mediaNext(PlayerState& st);
void mediaPrevious(PlayerState& st);
// To a position in the song, as the seek bar does: false, with nothing done, outside 0 to the
// song's length or on a station.
bool mediaSeek(PlayerState& st, std::int64_t positionUs);
// The volume as a hotkey sets it, clamped to 0 to 1; not a number or an infinity is refused.
void mediaSetVolume(PlayerState& st, double volume);

// A path as a file:// address, every byte but the unreserved ones and "/" percent-encoded.
std::string fileUrl(const std::string& path);
