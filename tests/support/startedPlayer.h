#pragma once
#include "core/playerState.h"
#include "core/startup.h"
#include "playback/audioSetup.h"
#include "support/currentDirectory.h"
#include "support/output.h"
#include "support/recordingPlatform.h"
#include "support/tempDir.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// A game folder with the player's data folder inside it, as the player is installed.
struct GameFolder {
    TempDir root;
    std::string game = root.mkdir("game").string();
    std::string data = root.mkdir("game/data").string();

    // With the files given below the game folder.
    explicit GameFolder(const std::vector<std::string>& files = {}) {
        for (const std::string& file : files)
            add(file);
    }
    void add(const std::string& relative) const { root.write("game/" + relative, "x"); }
    // The game's three music folders, the roots of a first start.
    std::vector<std::string> gameRoots() const {
        return {game + "/HarpTone/MIDI Songs", game + "/HarpTone/Mp3 Songs",
                game + "/HarpTone/Tracker Songs"};
    }
    std::string read(const std::string& relative) const {
        return TempDir::read(root.path() / "game" / relative);
    }
};

// Runs the start-up in the data folder, the way the entry point does, and keeps its output.
struct StartedPlayer {
    PlayerState st;
    RecordingPlatform platform;
    std::string output;

    explicit StartedPlayer(const GameFolder& folder) {
        // A real output that needs no sound card; a user's choice of driver stays.
        setenv("SDL_AUDIODRIVER", "dummy", 0);
        ScopedCurrentDirectory cwd(folder.data);
        st.dataDirectory = folder.data;
        st.familyRng.seed(1);
        st.selectionRng.seed(2);
        st.rand15.seed(3);
        output = logOf([&] { runStartupSequence(st); });
    }
    ~StartedPlayer() { freeAudio(st); }
};
