#include "core/commands.h"

#include "core/playerState.h"
#include "support/output.h"
#include "support/recordingPlatform.h"

#include <gtest/gtest.h>

namespace {

// Commands that find nothing to act on: no window, no box, no line, nothing changed.
TEST(Commands, WithoutAnythingToActOnDoNothing) {
    PlayerState st;
    RecordingPlatform platform;
    st.historyPosition = 0;
    st.historyEnd = 4;
    const std::string said = logOf([&] {
        for (int id : {0, 1, 2, 17, 26, 1000, -3, command::previousSong, command::mergeFavorites,
                       command::syncLibrary, command::playGame})
            runCommand(st, id);
    });
    EXPECT_EQ(said, "");
    EXPECT_TRUE(platform.boxes.empty());
    EXPECT_TRUE(platform.dialogs.empty());
    EXPECT_EQ(platform.closeRequests, 0);
    EXPECT_EQ(st.historyPosition, 0);
    EXPECT_EQ(st.historyNavigation, historyWalkOff);
}

TEST(Commands, OpenTheirDialogsAskForTheWindowsCloseAndSayWhenThereIsNoSoundfont) {
    PlayerState st;
    RecordingPlatform platform;
    const std::vector<int> dialogs{9, 10, 11, 12, 15, 16, 19, 22, 24, 15};
    for (int id : dialogs)
        runCommand(st, id);
    EXPECT_EQ(platform.dialogs, dialogs);

    logOf([&] {
        runCommand(st, command::nextSoundFont);
        runCommand(st, command::previousSoundFont);
    });
    ASSERT_EQ(platform.boxes.size(), 2u);
    for (const RecordingPlatform::Box& box : platform.boxes)
        EXPECT_EQ(std::tie(box.text, box.title, box.icon),
                  std::tuple("No soundfont files found.", "Error", host::Icon::Error));

    runCommand(st, command::exit);
    EXPECT_EQ(platform.closeRequests, 1);
}

} // namespace
