#include "core/gameCommands.h"
#include "core/playerState.h"
#include "fuzz/fuzzTarget.h"
#include "fuzz/smallLibrary.h"
#include "playback/fadeWorker.h"

#include <filesystem>

// The game's commands.txt, taken and run line by line by runCommandLine on a player of the small
// library without an audio engine (a song that starts fails to load, as on a machine without a
// device), its generators seeded so that an input replays alike.
FUZZ_TARGET(readCommandFile) {
    FuzzFile file("commands.txt", bytes, /*mayChange=*/true);
    PlayerState st;
    addSmallLibrary(st);
    st.scanPlaylistCount = 2;
    st.scanSongCount = 5;
    st.FADE_DURATION_MS = 0;
    st.familyRng.seed(1);
    st.selectionRng.seed(2);
    st.rand15.seed(3);
    st.soundFontSeed = 4;
    st.marbleTunnelPath = fuzzFolder();
    runGameCommands(st);
    endFadeWorkers(st);
    std::error_code ec;
    if (std::filesystem::file_size(file.path(), ec) != 0 && !ec)
        fuzzFailure("commands.txt is not empty after its commands ran");
}
