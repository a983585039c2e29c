#pragma once
#include "core/playerState.h"
#include "core/transport.h"
#include "library/model.h"
#include "playback/engine/engineFixture.h"
#include "playback/fadeWorker.h"
#include "support/manualClock.h"
#include "support/recordingPlatform.h"
#include "util/paths.h"

// A running radio on the null output: a library of real files, fades on a clock the test moves
// with the frames it pulls, so every crossfade is heard and timed exactly.
class Radio : public NullEngine {
  protected:
    void SetUp() override {
        NullEngine::SetUp();
        st.fadeClock = &clock;
        st.familyRng.seed(1);
        st.selectionRng.seed(2);
        st.rand15.seed(3);
        st.FADE_DURATION_MS = 200;
        st.songPlayDurationMax = 0; // whole songs: positions are easy to follow
    }
    void TearDown() override {
        endFadeWorkers(st);
        NullEngine::TearDown();
    }

    // One playlist per file, so that a request names a song by its playlist.
    void addPlaylists(const std::vector<std::string>& files) {
        for (const std::string& file : files)
            st.playlists.push_back(
                Playlist{"Album", {Song{file, 0, 0, 0, classifyExtension(extensionOf(file))}}, 1});
        recountLibrary(st);
        st.scanSongCount = st.totalSongCount;
        st.scanPlaylistCount = static_cast<int>(st.playlists.size());
    }
    // Plays the first song of a playlist through the next transition.
    void request(int plist) {
        st.playRequested = true;
        st.requestedPlaylist = plist;
        st.requestedSong = 0;
    }
    // A transition to the playlist's song (to a new selection for -1), then `ms` of it heard.
    void transition(int plist = -1, int ms = 200) {
        if (plist >= 0)
            request(plist);
        startTransition(st);
        advance(ms);
    }
    // Pulls the frames of the time and lets every worker whose time has come finish.
    std::vector<float> advance(int milliseconds) {
        std::vector<float> mix = nullOutputPull(static_cast<std::size_t>(milliseconds) * 441 / 10);
        clock.advance(milliseconds);
        settleFadeWorkers(st);
        return mix;
    }

    PlayerState st;
    ManualClock clock;
    RecordingPlatform platform;
};
