#pragma once

struct PlayerState;

// The menu's command ids. 17 has no entry.
namespace command {
constexpr int exit = 3;
constexpr int playPause = 4;
constexpr int start = 5;
constexpr int stop = 6;
constexpr int nextSong = 7;
constexpr int previousSong = 8;
constexpr int radioDialog = 9;
constexpr int favoritesDialog = 10;
constexpr int hotkeysDialog = 11;
constexpr int songInfoDialog = 12;
constexpr int nextSoundFont = 13;
constexpr int previousSoundFont = 14;
constexpr int visualDialog = 15;
constexpr int foldersDialog = 16;
constexpr int mergeFavorites = 18;
constexpr int aboutDialog = 19;
constexpr int nextPlaylist = 20;
constexpr int previousPlaylist = 21;
constexpr int stationsDialog = 22;
constexpr int playGame = 23;
constexpr int updateDialog = 24;
constexpr int syncLibrary = 25;
} // namespace command

// A menu command, on the user-interface thread. An id without an entry does nothing.
void runCommand(PlayerState& st, int id);
