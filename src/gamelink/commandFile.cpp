#include "gamelink/commandFile.h"

#include "gamelink/gameLinkState.h"
#include "util/log.h"
#include "util/paths.h"
#include "util/plainFile.h"

#include <array>
#include <locale>
#include <sstream>

namespace {

enum class Arguments { None, Float, Int, TwoInts };

struct WordRow {
    std::string_view text;
    CommandWord word;
    Arguments arguments;
};

// The game's own spellings: rawMidi here, though the settings file says rawMIDI; no rawRadio.
constexpr std::array<WordRow, 17> wordTable{{
    {"NEXT_SONG", CommandWord::NextSong, Arguments::None},
    {"POS", CommandWord::Position, Arguments::Float},
    {"VOL", CommandWord::Volume, Arguments::Float},
    {"songPlayDurationMax", CommandWord::SongPlayDurationMax, Arguments::Int},
    {"songPlayDurationMin", CommandWord::SongPlayDurationMin, Arguments::Int},
    {"FADE_DURATION_MS", CommandWord::FadeDurationMs, Arguments::Int},
    {"rawMidi", CommandWord::RawMidi, Arguments::Int},
    {"rawTracker", CommandWord::RawTracker, Arguments::Int},
    {"rawMP3", CommandWord::RawMp3, Arguments::Int},
    {"rawFav", CommandWord::RawFav, Arguments::Int},
    {"favoriteCount", CommandWord::FavoriteCount, Arguments::Int},
    {"PLAY_SONG", CommandWord::PlaySong, Arguments::TwoInts},
    {"favoritesOnly", CommandWord::FavoritesOnly, Arguments::None},
    {"PREVIOUS_SONG", CommandWord::PreviousSong, Arguments::None},
    {"SHUFFLE", CommandWord::Shuffle, Arguments::None},
    {"NEXT_PLAYLIST", CommandWord::NextPlaylist, Arguments::None},
    {"NEXT_SOUNDFONT", CommandWord::NextSoundFont, Arguments::None},
}};

// The numbers as the game's own stream reads them: "12abc" is 12, "1.5" read as an int is 1 and
// leaves ".5" for the next number, an overflow fails.
bool readArguments(std::istream& in, Arguments arguments, GameCommand& command) {
    switch (arguments) {
    case Arguments::None:
        return true;
    case Arguments::Float:
        return static_cast<bool>(in >> command.value);
    case Arguments::Int:
        return static_cast<bool>(in >> command.first);
    case Arguments::TwoInts:
        return static_cast<bool>(in >> command.first >> command.second);
    }
    return false;
}

} // namespace

std::string musicRunningPath(const GameLinkState& st) {
    return joinPath(st.marbleTunnelPath, "/MusicRunning.txt");
}

std::string songInfoPath(const GameLinkState& st) {
    return joinPath(st.marbleTunnelPath, "/songInfo.txt");
}

void writeMusicRunning(const GameLinkState& st, const std::string& text) {
    if (st.marbleTunnelPath.empty())
        return;
    const std::string path = musicRunningPath(st);
    logErr("Trying to write to: %s\n", path.c_str());
    if (overwriteFile(path, text))
        logErr("File written successfully.\n");
    else
        logErr("Failed to open %s for writing.\n", path.c_str());
}

std::vector<std::string> readCommandFile(GameLinkState& st) {
    std::vector<std::string> lines;
    if (st.marbleTunnelPath.empty())
        return lines;
    const std::optional<std::string> bytes =
        st.gameFolder.take(st.marbleTunnelPath, "commands.txt");
    if (!bytes)
        return lines;
    std::size_t start = 0;
    while (start < bytes->size()) {
        std::size_t end = bytes->find('\n', start);
        if (end == std::string::npos)
            end = bytes->size();
        lines.emplace_back(*bytes, start, end - start);
        start = end + 1;
    }
    return lines;
}

std::optional<GameCommand> parseCommandLine(std::string_view line) {
    std::istringstream in{std::string(line)};
    in.imbue(std::locale::classic());
    std::string text;
    if (!(in >> text))
        return std::nullopt;
    for (const WordRow& row : wordTable) {
        if (row.text != text)
            continue;
        GameCommand command;
        command.word = row.word;
        if (!readArguments(in, row.arguments, command))
            return std::nullopt;
        return command;
    }
    return std::nullopt;
}
