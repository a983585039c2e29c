#include "core/hotkeyOptions.h"

#include "core/actions.h"
#include "core/playerState.h"
#include "input/actionSteps.h"
#include "input/hotkeys.h"
#include "input/keyNames.h"
#include "util/paths.h"
#include "util/textFormat.h"

#include <algorithm>

const std::array<HotkeyRow, 15> hotkeyRows{{
    {30, action::nextSong, "Next Song:", 101},
    {60, action::previousSong, "Previous Song:", 107},
    {90, action::playPause, "Play\\Pause:", 112},
    {120, action::stopStart, "Stop\\Start Music:", 117},
    {150, action::volumeToggle, "Volume Toggle:", 122},
    {180, action::nextSoundFont, "Next Sound Font:", 127},
    {210, action::previousSoundFont, "Previous Sound Font:", 132},
    {240, action::favoriteUp, "Favorite Count Up:", 137},
    {270, action::favoriteDown, "Favorite Count Down:", 142},
    {300, action::quit, "Quit:", 147},
    {330, action::volumeUp, "Volume Up:", 155},
    {360, action::volumeDown, "Volume Down:", 160},
    {390, action::home, "Music Home Button:", 165},
    {420, action::nextStation, "Next Radio Station", 176},
    {450, action::previousStation, "Previous Radio Station:", 181},
}};

namespace {

const char* orNull(const std::string& text) {
    return text.empty() ? "(null)" : text.c_str();
}

} // namespace

void chooseControllerInput(InputState& st, int actionId, int value) {
    if (actionId < 0 || actionId >= static_cast<int>(st.hotkeyTable.size()))
        return;
    HotkeyBinding& row = st.hotkeyTable[static_cast<std::size_t>(actionId)];
    if (actionId == action::controllerEnable) {
        row.gameControllerButton = value == noInputEntry ? -1 : value - 1;
        return;
    }
    row.gameControllerButton = value >= 1 && value <= 21 ? value - 1 : -1;
    row.gameControllerTrigger = value == leftTriggerEntry    ? leftTriggerAxis
                                : value == rightTriggerEntry ? rightTriggerAxis
                                                             : -1;
}

int spinOpening(const PlayerState& st, int upDownId) {
    switch (upDownId) {
    case hotkeySpin::lowVolume:
        return std::clamp(static_cast<int>(st.lowVolume * 100), 0, 100);
    case hotkeySpin::highVolume:
        return std::clamp(static_cast<int>(st.highVolume * 100), 0, 100);
    case hotkeySpin::rumbleTime:
        return std::clamp(st.rumbleTime, 0, 5000);
    case hotkeySpin::rumbleTimeToggle:
        return std::clamp(st.rumbleTimeToggle, 0, 5000);
    default:
        return 0;
    }
}

void stepHotkeySpin(PlayerState& st, int upDownId, int from) {
    switch (upDownId) {
    case hotkeySpin::lowVolume:
        st.lowVolume = static_cast<float>(from) / 100.0f;
        break;
    case hotkeySpin::highVolume:
        st.highVolume = static_cast<float>(from) / 100.0f;
        break;
    case hotkeySpin::rumbleTime:
        st.rumbleTime = from;
        break;
    case hotkeySpin::rumbleTimeToggle:
        st.rumbleTimeToggle = from;
        break;
    default:
        break;
    }
}

bool clickRumbleBox(bool& setting, bool clickedOn, bool nowTicked) {
    setting = clickedOn == nowTicked;
    return !nowTicked;
}

// The modifier flags wait for Save, unlike the key and the input, which the dialog writes at once.
void saveHotkeyOptions(PlayerState& st, const std::array<ChordFlags, 15>& flags) {
    for (std::size_t i = 0; i < hotkeyRows.size(); ++i) {
        HotkeyBinding& row = st.hotkeyTable[static_cast<std::size_t>(hotkeyRows[i].actionId)];
        row.ctrl = flags[i].ctrl;
        row.alt = flags[i].alt;
        row.shift = flags[i].shift;
    }
    saveHotkeys(st, joinPath(st.dataDirectory, "/hotkeyConfig.json"));
    reregisterHotkeys(st);
}

std::string controllerCountLine(const InputState& st) {
    return formatText("Number of Game Contorllers Detected %d", st.controllerCount);
}

// Every line says "Controller 1", whichever slot it shows.
std::string controllerLine(const InputState& st, int slot) {
    const bool inRange = slot >= 0 && slot < maxControllers;
    return formatText("Controller 1: %s",
                      orNull(inRange ? st.controllerNames[static_cast<std::size_t>(slot)] : ""));
}

std::string pressedButtonLine(const InputState& st) {
    return formatText("Current Joystick 1 Buton Pressed: %s", orNull(st.pressedButtonText));
}

int pressedButtonTop(const InputState& st) {
    return 620 + 20 * st.controllerCount;
}
