#include "settings/exchangeFiles.h"

#include "library/favorites.h"
#include "settings/settingsState.h"

// The text files for the game arrive with the game link. The favourites list is rebuilt here
// already, at its place in the export, so that it follows the library's flags from the start.
void exportForGame(SettingsState& st) {
    rebuildFavorites(st);
}

// The game's own format is read with the game link; until then the merge finds no rows.
std::vector<FavoriteEntry> readSongFavs(const std::string&) {
    return {};
}
