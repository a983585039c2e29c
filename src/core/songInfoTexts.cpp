#include "core/songInfoTexts.h"

#include "core/playerState.h"
#include "util/textFormat.h"

std::array<SongInfoLine, 8> songInfoLines(const PlayerState& st) {
    long long songs = 0;
    for (const Playlist& playlist : st.playlists)
        songs += static_cast<long long>(playlist.songs.size());
    const int playlists = static_cast<int>(st.playlists.size());
    const bool fontListed =
        st.currentSoundFont >= 0 && st.currentSoundFont < static_cast<int>(st.soundFonts.size());
    return {{
        {"Total Songs: " + groupedNumber(songs) + "  |  MIDI: " + groupedNumber(st.midiSongCount) +
             "  |  MP3: " + groupedNumber(st.mp3SongCount) +
             "  |  Tracker: " + groupedNumber(st.trackerSongCount) +
             "  |  Fav: " + groupedNumber(st.favoriteSongCount),
         {10, 10, 560, 60},
         false},
        {"Total Songs (with favorite count): " + groupedNumber(songs) + " (" +
             groupedNumber(st.weightedSongTotal) + ")",
         {10, 30, 500, 40},
         false},
        {formatText("Radio Stations: %d  |  Local: %d  |  iRadio: %d", st.stationCount + playlists,
                    playlists, st.stationCount),
         {10, 50, 560, 40},
         false},
        {formatText("Song History: %d  |  Current Position: %d", st.historyEnd,
                    st.historyPosition + 1),
         {10, 70, 560, 40},
         false},
        {"Current Sound Font:", {10, 110, 560, 40}, true},
        {fontListed ? st.soundFonts[static_cast<std::size_t>(st.currentSoundFont)] : "",
         {10, 130, 560, 80},
         false},
        {"Current Song:", {10, 170, 560, 40}, true},
        {st.songTitle, {10, 190, 560, 80}, false},
    }};
}

bool takeSongInfoChange(PlayerState& st) {
    const bool changed = st.songInfoDirty;
    st.songInfoDirty = false;
    return changed;
}
