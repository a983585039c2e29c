#include "core/gameCommands.h"

#include "core/audioStart.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "core/volume.h"
#include "gamelink/commandFile.h"
#include "library/model.h"
#include "playback/engine/engine.h"
#include "util/log.h"

#include <locale>
#include <sstream>
#include <utility>

namespace {

// The game reads these lines as its own stream printed them: 30 as "30", 12.5 as "12.5".
std::string streamText(float value) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << value;
    return out.str();
}

// The stored value does not count the heart, so a positive one leaves isFavorite alone and the
// song keeps its draw weight; a count of 0 or below takes the heart away.
void setFavoriteCount(PlayerState& st, int value) {
    if (st.onStation) {
        if (RadioStation* station = findStation(st, st.currentStation))
            station->favoriteCount = value;
        return;
    }
    if (Song* song = findSong(st, {st.playingPlaylist, st.playingSong})) {
        song->favoriteCount = value;
        if (value <= 0)
            song->isFavorite = 0;
    }
}

void playRequestedSong(PlayerState& st, int playlist, int song) {
    st.requestedPlaylist = playlist;
    st.requestedSong = song;
    st.playRequested = true;
    startTransition(st);
    st.playRequested = false;
}

// The words that only set a setting: the draw and the segments read it from the next song on.
constexpr std::pair<CommandWord, int PlayerState::*> settingWords[] = {
    {CommandWord::SongPlayDurationMax, &PlayerState::songPlayDurationMax},
    {CommandWord::SongPlayDurationMin, &PlayerState::songPlayDurationMin},
    {CommandWord::FadeDurationMs, &PlayerState::FADE_DURATION_MS},
    {CommandWord::RawMidi, &PlayerState::rawMIDI},
    {CommandWord::RawTracker, &PlayerState::rawTracker},
    {CommandWord::RawMp3, &PlayerState::rawMP3},
    {CommandWord::RawFav, &PlayerState::rawFav},
};

} // namespace

void runGameCommand(PlayerState& st, const GameCommand& command) {
    for (const auto& [word, field] : settingWords)
        if (word == command.word)
            st.*field = command.first;
    switch (command.word) {
    case CommandWord::NextSong:
        logOut("Next Song...\n");
        startTransition(st);
        break;
    case CommandWord::Position:
        logOut("Change position to %s seconds...\n", streamText(command.value).c_str());
        seekActiveSong(st, command.value);
        break;
    case CommandWord::Volume:
        logOut("Change volume to %s...\n", streamText(command.value).c_str());
        st.volume = command.value; // the engine has its own limits
        applyVolume(st);
        break;
    case CommandWord::FavoriteCount:
        setFavoriteCount(st, command.first);
        break;
    case CommandWord::PlaySong:
        playRequestedSong(st, command.first, command.second);
        break;
    case CommandWord::FavoritesOnly:
        // The three built-in stations in turn, without a transition: the next song is drawn
        // from the new one.
        st.builtInStation = (st.builtInStation + 1) % 3;
        st.stationMode = st.builtInStation + 1;
        break;
    case CommandWord::PreviousSong:
        previousSong(st);
        break;
    case CommandWord::Shuffle:
        st.shuffle = 1 - st.shuffle;
        st.buttonsDirty = true;
        break;
    case CommandWord::NextPlaylist:
        nextPlaylist(st);
        st.buttonsDirty = true;
        break;
    case CommandWord::NextSoundFont:
        stepSoundFont(st, +1);
        st.buttonsDirty = true;
        break;
    default: // a setting, set above
        break;
    }
}

void runCommandLine(PlayerState& st, const std::string& line) {
    if (std::optional<GameCommand> command = parseCommandLine(line))
        runGameCommand(st, *command);
}

void runGameCommands(PlayerState& st) {
    // The file is empty again before the first line runs: a line the game adds while a command
    // blocks the tick (a station's connection) waits for the next tick instead of being lost.
    for (const std::string& line : readCommandFile(st))
        runCommandLine(st, line);
}
