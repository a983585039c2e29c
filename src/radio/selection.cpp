#include "radio/selection.h"

#include "library/model.h"
#include "radio/radioState.h"
#include "util/paths.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

// Rejection sampling gives up after this many refused draws and lets the plain pick decide.
constexpr int maxDraws = 10000;

// Songs of a playlist, 0 for an index that names none, so that no cursor reads past the end.
int songCountOf(const RadioState& st, int plist) {
    if (plist < 0 || plist >= static_cast<int>(st.playlists.size()))
        return 0;
    return static_cast<int>(st.playlists[plist].songs.size());
}

const Song& songAt(const RadioState& st, SongRef ref) {
    return st.playlists[ref.plistIndex].songs[ref.songIndex];
}

// --- The family draw.

// With no music folders of the user's own, MIDI plays, and the stations if there are any.
void applyNoFolderRatios(RadioState& st) {
    st.rawFav = 0;
    st.rawTracker = 0;
    st.rawMIDI = 1;
    st.rawMP3 = 0;
    if (st.stationCount > 0)
        st.rawRadio = 25;
}

// All ratios 0 would leave nothing to draw from; these make the library play anyway.
void applyFallbackRatios(RadioState& st) {
    if (st.mp3SongCount > 0)
        st.rawMP3 = 1;
    if (st.midiSongCount > 0)
        st.rawMIDI = 50;
    if (st.trackerSongCount > 0)
        st.rawTracker = 1;
    if (st.stationCount > 0 && !st.firstFamilyPick)
        st.rawRadio = 30;
}

// Wide, because the ratios come unchecked from files and commands and could overflow an int.
std::int64_t ratioSum(const RadioState& st) {
    return std::int64_t{st.rawFav} + st.rawTracker + st.rawMIDI + st.rawMP3 + st.rawRadio;
}

float percentOf(int ratio, std::int64_t sum) {
    if (sum == 0)
        return 0.0f; // every band empty: the draw falls to the remainder, Tracker
    return static_cast<float>(ratio) / static_cast<float>(sum) * 100.0f;
}

// --- Candidate lists.

// A favourite stands once per count plus one; a negative count makes it stand no times.
int songWeight(const Song& song) {
    return song.isFavorite == 1 ? std::max(song.favoriteCount + 1, 0) : 1;
}

std::vector<SongRef> buildWeightedSongs(const RadioState& st) {
    std::size_t total = 0;
    for (const Playlist& playlist : st.playlists)
        for (const Song& song : playlist.songs)
            total += static_cast<std::size_t>(songWeight(song));
    std::vector<SongRef> list;
    list.reserve(total);
    for (int p = 0; p < static_cast<int>(st.playlists.size()); ++p) {
        const std::vector<Song>& songs = st.playlists[p].songs;
        for (int s = 0; s < static_cast<int>(songs.size()); ++s)
            list.insert(list.end(), static_cast<std::size_t>(songWeight(songs[s])), SongRef{p, s});
    }
    return list;
}

// The one-playlist mode: every song once, favourites carry no weight there.
std::vector<SongRef> buildPlaylistSongs(const RadioState& st, int plist) {
    std::vector<SongRef> list;
    int count = songCountOf(st, plist);
    list.reserve(static_cast<std::size_t>(count));
    for (int s = 0; s < count; ++s)
        list.push_back(SongRef{plist, s});
    return list;
}

// Stations by index, then the internet-radio playlists as radioStations.size() + their index.
std::vector<int> buildWeightedStations(const RadioState& st) {
    std::vector<int> list;
    for (int i = 0; i < static_cast<int>(st.radioStations.size()); ++i)
        list.insert(list.end(), std::max(st.radioStations[i].favoriteCount + 1, 0), i);
    int stationTotal = static_cast<int>(st.radioStations.size());
    for (int p = 0; p < static_cast<int>(st.playlists.size()); ++p) {
        const Playlist& playlist = st.playlists[p];
        if (playlist.iRadioMode != 0)
            list.insert(list.end(), std::max(playlist.favoriteCount + 1, 0), stationTotal + p);
    }
    return list;
}

// --- Bookkeeping of a chosen song.

// The flag says whether this is the first pick of its kind: then the song's own type stands in
// for the previous one, as nothing played before it.
void recordSong(RadioState& st, SongRef ref, bool& firstPick) {
    MusicType type = songAt(st, ref).musicType;
    st.previousMusicType = firstPick ? type : st.currentMusicType;
    firstPick = false;
    st.currentMusicType = type;
    appendHistory(st, type, ref.songIndex, ref.plistIndex);
}

// --- The station branch.

SongRef playStation(RadioState& st) {
    st.onStation = true;
    st.previousMusicType = st.firstSongPick ? musicTypeStation : st.currentMusicType;
    st.firstSongPick = false;
    st.currentMusicType = musicTypeStation;
    appendHistory(st, musicTypeStation, st.currentStation, st.currentStation);
    return SongRef{st.currentStation, 0};
}

// Any song of the playlist, equally likely: favourites and the repeat window do not apply here.
SongRef playRadioPlaylist(RadioState& st, int plist) {
    int count = songCountOf(st, plist);
    if (count == 0) {
        st.onStation = false;
        return SongRef{};
    }
    SongRef ref{plist, st.selectionRng.uniform(0, count - 1)};
    st.previousMusicType = st.currentMusicType;
    st.onStation = false;
    // The stored extension, not lower-cased, so "A.MP3" gives the unknown type.
    st.currentMusicType = classifyExtension(extensionOf(songAt(st, ref).songPath));
    appendHistory(st, st.currentMusicType, ref.songIndex, ref.plistIndex);
    return ref;
}

SongRef selectStation(RadioState& st) {
    if (st.stationMode != stationModeStation) {
        std::vector<int> list = buildWeightedStations(st);
        if (list.empty())
            return SongRef{};
        st.currentStation = list[st.selectionRng.uniform(0, static_cast<int>(list.size()) - 1)];
    }
    // Compared unsigned, so a negative index is no station and lands in the playlist guard.
    std::size_t stationTotal = st.radioStations.size();
    if (static_cast<std::size_t>(st.currentStation) < stationTotal)
        return playStation(st);
    return playRadioPlaylist(st, st.currentStation - static_cast<int>(stationTotal));
}

// --- The shuffled branch.

bool inRepeatWindow(const RadioState& st, const Song& song, SongRef ref) {
    int rows = static_cast<int>(st.songHistory.size());
    int start = st.historyDepth < 0 || st.historyDepth > rows ? 0 : rows - st.historyDepth;
    for (int i = start; i < rows; ++i) {
        const HistoryEntry& row = st.songHistory[i];
        if (row.songType == song.musicType && row.songIndex == ref.songIndex &&
            row.plistIndex == ref.plistIndex)
            return true;
    }
    return false;
}

// The filters in their fixed order; the cheap ones first, the history scan last.
bool isRefused(const RadioState& st, int family, const Song& song, SongRef ref) {
    if (st.builtInStation == builtInFavorites && song.isFavorite == 0)
        return true;
    if (st.builtInStation == builtInUndiscovered && song.isFavorite != 0 &&
        family != familyFavorites)
        return true;
    if (family == familyFavorites ? song.isFavorite == 0 : song.musicType != family)
        return true;
    return inRepeatWindow(st, song, ref);
}

SongRef selectShuffled(RadioState& st, int family) {
    std::vector<SongRef> candidates = st.stationMode == stationModePlaylist
                                          ? buildPlaylistSongs(st, st.modePlaylist)
                                          : buildWeightedSongs(st);
    st.weightedSongTotal = static_cast<int>(candidates.size());
    if (candidates.empty())
        return SongRef{};
    if (!familyHasSongs(st, family))
        return pickPlainSong(st);
    int last = static_cast<int>(candidates.size()) - 1;
    for (int draw = 0; draw < maxDraws; ++draw) {
        SongRef ref = candidates[st.selectionRng.uniform(0, last)];
        if (st.stationMode != stationModePlaylist && isRefused(st, family, songAt(st, ref), ref))
            continue;
        recordSong(st, ref, st.firstSongPick);
        return ref;
    }
    return pickPlainSong(st);
}

// --- The library-order branch.

// Playlists without songs (a cache can hold them) are passed over, so the cursor always lands
// on a song.
SongRef selectInLibraryOrder(RadioState& st) {
    bool anySong = std::any_of(st.playlists.begin(), st.playlists.end(),
                               [](const Playlist& playlist) { return !playlist.songs.empty(); });
    if (!anySong)
        return SongRef{};
    st.modeSongIndex = std::max(st.modeSongIndex + 1, 0);
    if (st.modeSongIndex >= songCountOf(st, st.modePlaylist)) {
        st.modeSongIndex = 0;
        int playlistTotal = static_cast<int>(st.playlists.size());
        do {
            int next = st.modePlaylist + 1;
            st.modePlaylist = next < 0 || next >= playlistTotal ? 0 : next;
        } while (songCountOf(st, st.modePlaylist) == 0);
    }
    SongRef ref{st.modePlaylist, st.modeSongIndex};
    recordSong(st, ref, st.firstSongPick);
    return ref;
}

// The one-playlist mode plays the family of its first song, as the stored extension names it.
int familyOfPlaylist(const RadioState& st, int plist) {
    if (songCountOf(st, plist) == 0)
        return familyNone;
    return classifyExtension(extensionOf(st.playlists[plist].songs.front().songPath));
}

} // namespace

int pickFamily(RadioState& st) {
    if (!st.savedRawRadioTaken) {
        st.savedRawRadio = st.rawRadio;
        st.savedRawRadioTaken = true;
    }
    // The first song of a run is never a station; the saved ratio returns once r is drawn.
    if (st.firstFamilyPick)
        st.rawRadio = 0;
    // The first pick has set the stations aside already, and their ratio comes back after it.
    zeroEmptyFamilyRatios(st, !st.firstFamilyPick);
    if (!st.hasMusicFolders && !st.firstFamilyPick)
        applyNoFolderRatios(st);
    std::int64_t sum = ratioSum(st);
    if (sum == 0) {
        applyFallbackRatios(st);
        sum = ratioSum(st);
    }
    st.noFamilyDrawn = sum < 0;
    if (st.noFamilyDrawn)
        return familyNone;
    // Single precision and a strict comparison against a whole-number r: the bands hold whole
    // numbers of r, so 22.7% plays as 23%.
    float pMidi = percentOf(st.rawMIDI, sum);
    float pMp3 = percentOf(st.rawMP3, sum);
    float pFav = percentOf(st.rawFav, sum);
    float pRadio = percentOf(st.rawRadio, sum);
    float r = static_cast<float>(st.familyRng.uniform(0, 99));
    if (st.firstFamilyPick) {
        st.firstFamilyPick = false;
        st.rawRadio = st.savedRawRadio;
    }
    float edge = pMidi;
    if (edge > r)
        return familyMidi;
    edge += pMp3;
    if (edge > r)
        return familyMp3;
    edge += pFav;
    if (edge > r)
        return familyFavorites;
    edge += pRadio;
    if (edge > r)
        return familyRadio;
    return familyTracker; // the remainder: Tracker has no band of its own
}

SongRef selectNextSong(RadioState& st) {
    if (st.stationCount < 1)
        st.rawRadio = 0;
    int family;
    if (st.stationMode == stationModePlaylist) {
        family = familyOfPlaylist(st, st.modePlaylist);
    } else {
        family = pickFamily(st);
        if (st.stationMode != stationModeStation)
            st.onStation = false;
    }
    if ((st.stationMode != stationModePlaylist && family == familyRadio) ||
        (st.onStation && st.stationCount > 0))
        return selectStation(st);
    st.onStation = false;
    return st.shuffle != 0 ? selectShuffled(st, family) : selectInLibraryOrder(st);
}

bool familyHasSongs(const RadioState& st, int family) {
    for (const Playlist& playlist : st.playlists)
        for (const Song& song : playlist.songs)
            if (family == familyFavorites ? song.isFavorite == 1 : song.musicType == family)
                return true;
    return false;
}

SongRef pickPlainSong(RadioState& st) {
    if (st.scanSongCount < 1)
        return SongRef{}; // nothing to count, and no division by zero
    int r = st.rand15.next() % st.scanSongCount;
    int playlistTotal = std::min(st.scanPlaylistCount, static_cast<int>(st.playlists.size()));
    for (int p = 0; p < playlistTotal; ++p) {
        int count = static_cast<int>(st.playlists[p].songs.size());
        if (r < count) {
            SongRef ref{p, r};
            recordSong(st, ref, st.firstPlainPick);
            return ref;
        }
        r -= count;
    }
    return SongRef{}; // the counts are stale: the library is smaller than they say
}
