#include "core/libraryEdits.h"

#include "core/playerState.h"
#include "core/transport.h"
#include "library/cache.h"
#include "library/favorites.h"
#include "library/model.h"
#include "library/rebuild.h"
#include "library/scan.h"
#include "playback/audioSetup.h"
#include "playback/loudnessWorker.h"
#include "settings/musicSettings.h"
#include "util/paths.h"

#include <filesystem>

namespace {

// Songs have no identity across a scan; the favourites list carries them by file name. It is
// made from the flags first, so that a favourite marked since the last export survives too, and
// a song counted down to 0 does not come back.
void rescanKeepingFavorites(PlayerState& st, bool readOlderFile) {
    rebuildFavorites(st);
    scanAllRoots(st); // may merge the rows of a favorite.json it meets
    std::error_code ec;
    if (readOlderFile &&
        std::filesystem::exists(joinPath(st.dataDirectory, "/favoriteMusic.cif"), ec))
        loadOlderFavorites(st);
    applyFavorites(st, st.favorites);
    // Counted and saved with the favourites in place: counted before them, rawFav would be
    // zeroed for a library that has none yet.
    recountLibrary(st);
    saveLibraryCache(st);
    queueLibraryForLoudness(st);
}

} // namespace

void saveLibraryCache(PlayerState& st) {
    writeLibraryCache(st);
    // Until the start-up has read the stored settings, the working fields hold defaults.
    if (!st.settingsSaveHeld)
        saveMusicSettings(st);
}

void rebuildLibrary(PlayerState& st) {
    scanAllRoots(st);
    saveLibraryCache(st);
}

void scanDefaultFolder(PlayerState& st) {
    scanDefaultMusicFolder(st);
    saveLibraryCache(st);
}

void rescanLibrary(PlayerState& st) {
    if (st.directoryPaths.empty())
        return;
    resetFirstStartRatios(st);
    st.hasMusicFolders = true;
    stopAllStreams(st);
    rescanKeepingFavorites(st, true);
    st.buttonsDirty = true;
    startPlayback(st);
}

void deleteLibraryPath(PlayerState& st, std::size_t index) {
    if (index >= st.directoryPaths.size())
        return;
    st.libraryEditInProgress = true;
    st.directoryPaths.erase(st.directoryPaths.begin() + static_cast<std::ptrdiff_t>(index));
    rescanKeepingFavorites(st, false);
}
