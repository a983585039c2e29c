#include "input/controllers.h"

#include "core/playerState.h"
#include "core/windowEvents.h"
#include "input/actionSteps.h"
#include "input/keyNames.h"
#include "platform/sdlControllers.h"
#include "support/output.h"
#include "support/recordingPlatform.h"
#include "support/virtualPads.h"

#include <SDL.h>
#include <gtest/gtest.h>
#include <map>

namespace {

constexpr int buttonA = SDL_CONTROLLER_BUTTON_A;
constexpr int buttonB = SDL_CONTROLLER_BUTTON_B;
constexpr int buttonX = SDL_CONTROLLER_BUTTON_X;
constexpr int enable = SDL_CONTROLLER_BUTTON_LEFTSHOULDER;
constexpr int rightTrigger = SDL_CONTROLLER_AXIS_TRIGGERRIGHT;

// The player's controllers on SDL's virtual joysticks.
class Controllers : public testing::Test {
  protected:
    Controllers() {
        st.hotkeyTable[action::controllerEnable].gameControllerButton = enable;
        st.hotkeyTable[action::quit].gameControllerButton = buttonA;
        st.hotkeyTable[action::volumeUp].gameControllerButton = buttonX;
    }
    ~Controllers() override { closeControllers(st); }

    int attach(const char* name, bool rumbles = true) { return pads.attach(name, rumbles); }
    void detach(int index) { pads.detach(index); }
    void press(int pad, int button, bool down = true) { pads.press(pad, button, down); }
    void pull(int pad, int trigger, bool down = true) { pads.pull(pad, trigger, down); }
    // The 30 ms tick as the window's timer runs it.
    void tick(int times = 1) {
        for (int i = 0; i < times; ++i)
            onTimer(st, host::timerPoll);
    }
    int fired() const { return platform.closeRequests; } // the quit row counts the fires

    VirtualPads pads; // declared first: it goes once the player has closed its controllers
    PlayerState st;
    RecordingPlatform platform;
    SdlControllers port;
};

TEST_F(Controllers, TheEnableButtonShiftsTheRowsAndAPressFiresOnceWithOneRumble) {
    attach("Generic Pad");
    openControllers(st);
    // {inputs changed, fires so far, rumbles so far}; the enable button rumbles once a press.
    struct Step {
        std::vector<std::pair<int, bool>> buttons;
        int fires;
        int rumbles;
    };
    const Step steps[] = {
        {{{buttonA, true}}, 0, 0},  // no enable: nothing
        {{{enable, true}}, 1, 2},   // fires in the tick the enable goes down
        {{}, 1, 2},                 // held: once
        {{{enable, false}}, 1, 2},  // the latches clear with the enable up
        {{{enable, true}}, 2, 3},   // and it fires again, in the same press of A
        {{{buttonA, false}}, 2, 3}, // up for a tick
        {{{buttonA, true}}, 3, 4},
    };
    for (const Step& step : steps) {
        for (auto [button, down] : step.buttons)
            press(0, button, down);
        tick();
        EXPECT_EQ(fired(), step.fires);
        EXPECT_EQ(port.rumblesAsked(), step.rumbles);
    }
}

TEST_F(Controllers, AHeldVolumeButtonStepsEveryFourthTickAndAHeldTriggerFiresOnce) {
    attach("DualSense Wireless Controller");
    openControllers(st);
    st.hotkeyTable[action::quit] = {};
    st.hotkeyTable[action::quit].gameControllerTrigger = rightTrigger;
    st.volume = 0.5f;
    press(0, enable);
    press(0, buttonX);
    tick(9); // steps in ticks 1, 5 and 9
    EXPECT_FLOAT_EQ(st.volume, 0.53f);
    EXPECT_EQ(port.rumblesAsked(), 2); // the enable's and the first step's
    press(0, buttonX, false);
    tick();
    pull(0, rightTrigger);
    tick(6);
    EXPECT_EQ(fired(), 1);
    pull(0, rightTrigger, false);
    tick();
    pull(0, rightTrigger);
    tick();
    EXPECT_EQ(fired(), 2);
}

TEST_F(Controllers, TheDebounceSpansControllersWhileTheTableServesEach) {
    attach("Generic Pad");
    attach("Generic Pad");
    openControllers(st);
    st.volume = 0.5f;
    press(1, enable);
    press(1, buttonA);
    tick();
    EXPECT_EQ(std::tie(platform.closeRequests, st.currentController), std::tuple(1, 1));
    press(0, enable);
    press(0, buttonX); // blocked while controller 1 holds its button
    tick(3);
    EXPECT_FLOAT_EQ(st.volume, 0.5f);
    press(1, buttonA, false);
    press(0, buttonX, false);
    tick();
    press(0, buttonA); // the enable of controller 1 does not count for controller 0
    press(1, enable, false);
    tick();
    EXPECT_EQ(std::tie(platform.closeRequests, st.currentController), std::tuple(2, 0));
}

TEST_F(Controllers, ARumbleWithoutMotorsIsALineAndTheActionRunsAllTheSame) {
    attach("Generic Pad", false);
    openControllers(st);
    press(0, enable);
    press(0, buttonA);
    const std::string log = logOf([&] { tick(); });
    EXPECT_NE(log.find("Warning: Unable to initiate rumble on game controller 0! SDL Error: "),
              std::string::npos)
        << log;
    EXPECT_EQ(fired(), 1);
}

// A removal names the joystick's instance id, which grows with every plug: after ten rounds it
// lies past the eight slots, where only the handles can tell the slot.
TEST_F(Controllers, PlugsReopenAllAlsoPastTenRoundsAndANinthJoystickHasNoSlot) {
    openControllers(st);
    for (int round = 0; round < 10; ++round) {
        attach("Generic Pad");
        EXPECT_EQ(logOf([&] { tick(); }),
                  "Controller 0 connected.\nController 0 is connected: Generic Pad\n");
        detach(0);
        EXPECT_EQ(logOf([&] { tick(); }), "Controller 0 disconnected.\n");
        EXPECT_TRUE(st.controllerNames[0].empty());
    }
    for (int i = 0; i < 9; ++i)
        attach(i == 4 ? "Xbox 360 Controller" : "Generic Pad");
    logOf([&] { tick(); });
    EXPECT_EQ(st.controllerCount, 9);
    EXPECT_EQ(st.controllerNames[4], "Xbox 360 Controller");
    EXPECT_TRUE(port.isOpen(7));
    EXPECT_EQ(logOf([&] { tick(); }), ""); // nothing left queued to open all again
}

TEST_F(Controllers, TheReadOutNamesSlotZerosInputByItsFamily) {
    const std::tuple<const char*, int, std::string, std::string> cases[] = {
        {"Generic Pad", buttonB, "b", "Left Trigger"},
        {"DualSense Wireless Controller", buttonA, "Cross", "L2"},
        {"Xbox 360 Controller", buttonB, "B", "Left Trigger"},
    };
    for (auto [name, button, word, trigger] : cases) {
        attach(name);
        logOf([&] { openControllers(st); });
        press(0, button);
        tick();
        EXPECT_EQ(st.pressedButtonText, word);
        EXPECT_NE(selectBoundInput(fillInputList(st), st, button, -1), -1);
        press(0, button, false);
        pull(0, SDL_CONTROLLER_AXIS_TRIGGERLEFT);
        tick();
        EXPECT_EQ(st.pressedButtonText, trigger);
        closeControllers(st);
        detach(0);
    }
}

} // namespace
