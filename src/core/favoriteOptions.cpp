#include "core/favoriteOptions.h"

#include "core/playerState.h"
#include "library/model.h"

#include <array>

const std::string& favoriteOptionsTitle(const PlayerState& st) {
    return st.onStation ? st.streamTitle : st.songTitle;
}

std::optional<int> playingFavoriteCount(const PlayerState& st) {
    if (st.onStation) {
        if (const RadioStation* station = findStation(st, st.currentStation))
            return station->favoriteCount;
        return std::nullopt;
    }
    if (const Song* song = findSong(st, {st.playingPlaylist, st.playingSong}))
        return song->favoriteCount;
    return std::nullopt;
}

void setPlayingFavoriteCount(PlayerState& st, int count) {
    const int flag = count >= 1 ? 1 : 0;
    if (st.onStation) {
        if (RadioStation* station = findStation(st, st.currentStation)) {
            station->favoriteCount = count;
            station->favorite = flag;
        }
        return;
    }
    if (Song* song = findSong(st, {st.playingPlaylist, st.playingSong})) {
        song->favoriteCount = count;
        song->isFavorite = flag;
    }
}

const char* builtInFilterName(int builtInStation) {
    static constexpr std::array<const char*, 3> names{"All Songs", "Favorites Only",
                                                      "No Favorites Allowed"};
    return builtInStation >= 0 && builtInStation < 3
               ? names[static_cast<std::size_t>(builtInStation)]
               : names[0];
}

void cycleBuiltInFilter(PlayerState& st) {
    // A filter read from a damaged file may be anything; the cycle still lands on one of three.
    st.builtInStation = (st.builtInStation % 3 + 4) % 3;
    st.stationMode = st.builtInStation + 1;
}
