#include "core/windowModes.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/windowEvents.h"
#include "display/windowModes.h"
#include "support/recordingPlatform.h"

#include <gtest/gtest.h>

namespace {

// The automatic mode through its four states, and the same run with the window made bare by hand
// first, which inverts the forms until the user sets them right.
TEST(WindowModes, TheAutomaticModeRunsItsStatesAndRunsThemInvertedAfterAHandToggle) {
    struct Step {
        bool timer; // the tick of timer 101, else a movement to a new place
        bool bareAfter;
        bool timerRunsAfter;
    };
    const Step states[] = {
        {false, false, true}, // Waiting: the count starts
        {false, false, true}, // Counting: it starts again
        {true, true, false},  // the count runs out: Bare
        {false, false, true}, // the frame comes back: Grace
        {true, false, false}, // the first expiry is spent on the grace: Waiting
        {false, false, true}, {true, true, false},
    };
    for (bool byHandFirst : {false, true}) {
        SCOPED_TRACE(byHandFirst);
        PlayerState st;
        RecordingPlatform platform;
        st.borderlessAuto = 1;
        if (byHandFirst)
            toggleBorderless(st);
        int x = 0;
        for (const Step& step : states) {
            if (step.timer)
                onTimer(st, host::timerBorderless);
            else
                onMouseMoved(st, ++x, 7);
            EXPECT_EQ(platform.borderless, step.bareAfter != byHandFirst) << x;
            EXPECT_EQ(st.borderlessTimerActive, step.timerRunsAfter) << x;
        }
        onMouseMoved(st, x, 7); // a move event without a movement does not count
        EXPECT_EQ(st.borderlessTimerActive, false);
    }

    // Switched off while the timer runs, it fires on without effect.
    PlayerState st;
    RecordingPlatform platform;
    st.borderlessAuto = 1;
    onMouseMoved(st, 3, 3);
    st.borderlessAuto = 0;
    onTimer(st, host::timerBorderless);
    onMouseMoved(st, 4, 4);
    EXPECT_FALSE(platform.borderless);
    EXPECT_TRUE(st.borderlessTimerActive);
}

TEST(WindowModes, AltBGoesBothWaysAltAloneOnlyBackAndTheOpacityStaysVisible) {
    const std::tuple<int, bool, bool, bool, bool> keys[] = {
        // key, Alt down, bare, repeated, toggles
        {0x42, true, false, false, true},   {0x42, true, true, false, true},
        {0x42, false, false, false, false}, {0x42, true, false, true, false},
        {0x62, true, false, false, false},  {0x12, true, true, false, true},
        {0x12, true, false, false, false},  {0x46, true, false, false, false},
    };
    for (auto [key, alt, bare, repeated, toggles] : keys)
        EXPECT_EQ(systemKeyToggles(key, alt, bare, repeated), toggles) << key << alt << bare;

    PlayerState st;
    RecordingPlatform platform;
    for (auto [typed, kept] : {std::pair(40, 80), std::pair(300, 255), std::pair(200, 200)}) {
        setWindowOpacity(st, typed);
        EXPECT_EQ(std::tie(st.windowAlpha, platform.opacity), std::tie(kept, kept)) << typed;
    }
    EXPECT_EQ(std::tuple(startupOpacity(40), startupOpacity(300)), std::tuple(40, 255));
}

} // namespace
