#include "core/startup.h"

#include "core/actions.h"
#include "core/audioStart.h"
#include "core/commands.h"
#include "core/hostPort.h"
#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "core/windowEvents.h"
#include "display/colors.h"
#include "display/pathLine.h"
#include "display/textures.h"
#include "gamelink/commandFile.h"
#include "input/controllers.h"
#include "input/hotkeys.h"
#include "library/cache.h"
#include "library/favorites.h"
#include "library/history.h"
#include "library/model.h"
#include "library/rebuild.h"
#include "library/scan.h"
#include "library/stations.h"
#include "playback/audioSetup.h"
#include "playback/levelling.h"
#include "playback/loudnessWorker.h"
#include "settings/configFile.h"
#include "settings/exchangeFiles.h"
#include "settings/musicSettings.h"
#include "update/versionCheck.h"
#include "util/log.h"
#include "util/paths.h"

#include <filesystem>
#include <random>

namespace fs = std::filesystem;

namespace {

// A texture the folder listed that would not load: the same box as anywhere else in the program.
void showTextureBoxes(const std::vector<std::string>& texts) {
    for (const std::string& text : texts)
        host::messageBox(text, "Error", host::Icon::None, false);
}

// Files of the data folder are tried there first, then under their bare name.
template <typename Load> void loadFromDataOrBare(PlayerState& st, const char* name, Load load) {
    if (!load(st, joinPath(st.dataDirectory, std::string("/") + name)))
        load(st, name);
}

void countScannedLibrary(PlayerState& st) {
    st.scanSongCount = 0;
    for (const Playlist& playlist : st.playlists)
        st.scanSongCount += static_cast<int>(playlist.songs.size());
    st.scanPlaylistCount = static_cast<int>(st.playlists.size());
}

// A first start, or a user without root folders: the game's three music folders, and the
// default folder when they hold nothing.
void buildFirstLibrary(PlayerState& st, bool cacheHadSongs) {
    // A user without root folders comes this way at every start: their favourites ride over the
    // rebuild by file name, as over a "Scan".
    if (cacheHadSongs)
        rebuildFavorites(st);
    for (const char* folder :
         {"/HarpTone/MIDI Songs", "/HarpTone/Mp3 Songs", "/HarpTone/Tracker Songs"})
        st.directoryPaths.push_back(joinPath(st.marbleTunnelPath, folder));
    rebuildLibrary(st);
    recountLibrary(st);
    if (st.totalSongCount <= 0) {
        st.directoryPaths.clear();
        scanDefaultFolder(st);
    }
    applyFavorites(st, st.favorites);
    recountLibrary(st);
    resetFirstStartRatios(st);
}

// Settings that name root folders, but no library cache (lost, damaged, or never written): the
// user's folders are scanned once, rather than leaving them with the default folder until they
// press "Scan".
void restoreLibraryFromRoots(PlayerState& st) {
    logOut("No library cache: rebuilding the library from the music folders.\n");
    rebuildLibrary(st);
    recountLibrary(st);
    applyFavorites(st, st.favorites);
}

// A library cache with songs, but settings that could not say which folders it came from (lost
// or damaged): a first-start rebuild would wipe every play count and favourite, so the library
// stays and its folders are taken from its own song paths.
void keepCachedLibrary(PlayerState& st) {
    st.directoryPaths = rootsOfLibrary(st.playlists);
    logErr("The settings name no music folders; keeping the library cache and its %zu folders.\n",
           st.directoryPaths.size());
}

} // namespace

void loadKeyBindings(PlayerState& st) {
    loadFromDataOrBare(st, "hotkeyConfig.json", loadHotkeys);
}

void buildListEntries(PlayerState& st) {
    st.listEntries.assign(st.builtInStationNames.begin(), st.builtInStationNames.end());
    for (const RadioStation& station : st.radioStations)
        st.listEntries.push_back(station.name);
    for (const Playlist& playlist : st.playlists) {
        if (playlist.songs.empty()) {
            st.listEntries.push_back(titleCaseFolder(playlist.albumName));
            continue;
        }
        const Song& first = playlist.songs.front();
        st.listEntries.push_back(displayPath(st, first.songPath, first.musicType));
    }
}

void checkVersionAtStart(PlayerState& st, bool asked) {
    std::string latest;
    if (asked && checkForNewVersion(st.versionServer, latest))
        host::openDialog(command::updateDialog);
}

void runEarlyStartup(PlayerState& st) {
    st.rand15.seed(std::random_device{}());
    std::error_code ec;
    st.dataDirectory = fs::current_path(ec).string();
    loadKeyBindings(st);
    registerHotkeys(st);
    showTextureBoxes(loadStartupTextures(st));
    openControllers(st, true);
}

void runStartupSequence(PlayerState& st) {
    st.libraryCachePath = joinPath(st.dataDirectory, "/musicLibraryCache.json");
    loadFromDataOrBare(st, "InternetStations.json", loadStations);
    st.stationCount = static_cast<int>(st.radioStations.size());
    loadAudioPlugins();
    initAudioAtStartup(st);

    // The default scan below saves the library before the stored settings have been read.
    st.settingsSaveHeld = true;
    st.playlists = loadLibraryCache(st);
    st.searchIndex = {};
    recountLibrary(st);
    const bool cacheHadSongs = st.totalSongCount > 0;
    if (!cacheHadSongs)
        scanDefaultFolder(st);
    countScannedLibrary(st);
    setUpStartupSoundFonts(st);

    loadFromDataOrBare(st, "MusicSettings.json", loadMusicSettings);
    st.settingsSaveHeld = false;
    loadColorsAtStartup(st);
    st.marbleTunnelPath = parentOfCurrentDirectory();
    logOut("Current directory: %s\n", st.marbleTunnelPath.c_str());
    if (st.directoryPaths.empty() && cacheHadSongs && !st.storedRootsRead)
        keepCachedLibrary(st);
    else if (st.directoryPaths.empty())
        buildFirstLibrary(st, cacheHadSongs);
    else if (!cacheHadSongs)
        restoreLibraryFromRoots(st);

    if (!st.marbleTunnelPath.empty())
        writeMusicRunning(st, "yes");
    if (st.directoryPaths.empty())
        st.hasMusicFolders = false;
    showTextureBoxes(loadNamedTextures(st));
    if (st.randomColorPlayer != 0)
        applyRandomColorScheme(st);

    st.appliedVolume = st.volume;
    recountLibrary(st);
    loadLevellingSwitch(st);
    startLoudnessWorker(st);
    buildListEntries(st);
    loadKeyBindings(st);
    if (st.totalSongCount <= 0)
        return;

    if (st.hasMusicFolders) {
        loadSongHistory(st, joinPath(st.dataDirectory, "/Song History.json"));
        st.historyEnd = st.historyPosition = static_cast<int>(st.songHistory.size());
    }
    startPlayback(st);
    queueLibraryForLoudness(st); // after the first song: the sweep waits, the listener does not
    if (!st.marbleTunnelPath.empty())
        exportForGame(st);
}

void startMainTimers(PlayerState& st) {
    host::setTimer(host::timerRepaint, 250);
    schedulePolling(st);
    host::setTimer(host::timerStationTags, 5000);
}
