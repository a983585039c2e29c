#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct GameLinkState;

// The game's folder holds three files: the game drops commands into commands.txt, the player
// says in MusicRunning.txt whether it runs and publishes what plays in songInfo.txt. All three
// are touched on the user-interface thread only, and never while marbleTunnelPath is empty.
std::string musicRunningPath(const GameLinkState& st);
std::string songInfoPath(const GameLinkState& st);

// Tells the game whether the player runs: "yes" at start-up, "no" as the last act of shutdown,
// with no line end. Says on the error stream what it tries and how it went.
void writeMusicRunning(const GameLinkState& st, const std::string& text);

// Takes the game's commands: the lines of commands.txt in file order (a line ends at byte 10;
// a last line without one counts), and the file left empty. None, silently, when there is no
// such file, when it is not a regular file or when it cannot be opened for reading and writing.
std::vector<std::string> readCommandFile(GameLinkState& st);

// One line of commands.txt, its word and its numbers read as a C++ stream reads them. The word
// is compared exactly; what follows the last number is ignored.
enum class CommandWord {
    NextSong,
    Position,
    Volume,
    SongPlayDurationMax,
    SongPlayDurationMin,
    FadeDurationMs,
    RawMidi,
    RawTracker,
    RawMp3,
    RawFav,
    FavoriteCount,
    PlaySong,
    FavoritesOnly,
    PreviousSong,
    Shuffle,
    NextPlaylist,
    NextSoundFont,
};
struct GameCommand {
    CommandWord word = CommandWord::NextSong;
    float value = 0.0f; // POS and VOL
    int first = 0;      // the int argument, or PLAY_SONG's playlist
    int second = 0;     // PLAY_SONG's song
};
// Nothing for an unknown word, an empty line, or an argument that is missing or unreadable.
std::optional<GameCommand> parseCommandLine(std::string_view line);
