#pragma once
#include "library/records.h"

#include <string>
#include <string_view>

struct LibraryState;

// The family of an extension given with its dot, compared exactly (".MP3" is unknown).
MusicType classifyExtension(std::string_view extension);
// The favourites' numbering of a family: 1 MIDI, 3 MP3, 4 Tracker, 0 anything else.
int favoriteSongTypeOf(MusicType type);

// Recomputes the counters from the library and zeroes the ratio of every empty family.
void recountLibrary(LibraryState& st);
// A family with nothing to play must not be drawn, so its ratio is cleared in the settings
// themselves and the zero is saved; the stations' ratio only when stationsToo.
void zeroEmptyFamilyRatios(LibraryState& st, bool stationsToo);
// The ratios of a first start and of a new scan; rawFav keeps its own.
void resetFirstStartRatios(LibraryState& st);

// "my_old.songs" -> "My Old Songs"; a blank does not start a new word.
std::string titleCaseFolder(std::string_view name);
// "my_oldSong.mid" -> "My Old Song"; at most 254 bytes.
std::string titleFromPath(std::string_view path);
// The song a reference names, or null when it names none (a stale reference after a rescan).
const Song* findSong(const LibraryState& st, SongRef ref);
Song* findSong(LibraryState& st, SongRef ref);
// The playlist or station at an index, or null when there is none there.
const Playlist* findPlaylist(const LibraryState& st, int index);
Playlist* findPlaylist(LibraryState& st, int index);
RadioStation* findStation(LibraryState& st, int index);
const RadioStation* findStation(const LibraryState& st, int index);

// Appends a history row and makes it the one that plays.
void appendHistory(LibraryState& st, int songType, int songIndex, int plistIndex);
