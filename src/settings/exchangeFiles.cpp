#include "settings/exchangeFiles.h"

#include "library/favorites.h"
#include "settings/settingsState.h"

// The text files for the game arrive with the game link. The favourites list is rebuilt here
// already, at its place in the export, so that it follows the library's flags from the start.
void exportForGame(SettingsState& st) {
    rebuildFavorites(st);
}
