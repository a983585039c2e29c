#include "input/controllers.h"

#include "input/actionSteps.h"
#include "input/controllerPort.h"
#include "input/inputState.h"
#include "input/keyNames.h"
#include "util/log.h"

#include <algorithm>

namespace {
// The controllers are the machine's, one set per process like the window system.
ControllerPort* installed = nullptr;

// A held volume input steps every fourth tick of 30 ms.
constexpr int holdRepeatTicks = 4;

bool isHoldRow(int id) {
    return id == action::volumeUp || id == action::volumeDown;
}

void reopenControllers(InputState& st) {
    closeControllers(st);
    openControllers(st);
}

// What one tick of the poll has seen so far, over all controllers.
struct Tick {
    bool anyPressed = false;
    // A volume row counts once a tick, however many inputs and controllers hold it.
    std::array<bool, 2> holdSeen{};
};

// One controller's pass of a tick. blocked is taken once before it, so that one controller
// can start several inputs in the tick they go down.
struct SlotPoll {
    InputState& st;
    ControllerPort& port;
    ControllerActionRunner run;
    Tick& tick;
    int slot;
    bool blocked;
};

// A trigger rumbles before its slot becomes the current one, on the controller that ran the
// last action; the action's own rumble then finds the row rumbled. False once the slot's
// controller is gone under the action.
bool fire(SlotPoll& p, int id, bool trigger) {
    if (trigger && !p.st.actionRumbled[id] && p.st.useRumble) {
        rumble(p.st, p.st.currentController, p.st.rumbleTime);
        p.st.actionRumbled[id] = true;
    }
    p.st.currentController = p.slot;
    p.run(p.st, id);
    return p.port.isOpen(p.slot);
}

// A volume row steps at the press and then every holdRepeatTicks while held.
bool hold(SlotPoll& p, int id, bool down, bool trigger) {
    const int which = id - action::volumeUp;
    if (!down || p.tick.holdSeen[which])
        return true;
    p.tick.holdSeen[which] = true;
    int& ticks = p.st.volumeHoldTicks[which];
    if (ticks == 0 && p.blocked)
        return true; // another input holds the debounce
    if (ticks > 0 && ++ticks <= holdRepeatTicks)
        return true;
    ticks = 1;
    return fire(p, id, trigger);
}

// One bound input of a row, down or up. A blocked input still holds the debounce, so that a
// held trigger, like a held button, fires once.
bool input(SlotPoll& p, int id, bool down, bool trigger) {
    p.tick.anyPressed = p.tick.anyPressed || down;
    if (isHoldRow(id))
        return hold(p, id, down, trigger);
    if (!down) {
        p.st.actionHeld[id] = false;
        p.st.actionRumbled[id] = false;
        return true;
    }
    if (p.st.actionHeld[id] || p.blocked)
        return true;
    p.st.actionHeld[id] = true;
    return fire(p, id, trigger);
}

// Nothing fires unless this controller holds the enable button, which rumbles once a press.
bool pollSlot(SlotPoll& p) {
    InputState& st = p.st;
    const int enable = st.hotkeyTable[action::controllerEnable].gameControllerButton;
    if (enable < 0 || !p.port.button(p.slot, enable)) {
        st.enableRumbled[p.slot] = false;
        return true;
    }
    if (!st.enableRumbled[p.slot] && st.useRumbleToggle) {
        st.currentController = p.slot;
        rumble(st, p.slot, st.rumbleTimeToggle);
        st.enableRumbled[p.slot] = true;
    }
    // All buttons first, then the triggers, as the rumble of a trigger depends on the
    // controller that ran the action before.
    for (int id = 0; id < hotkeyRowCount; ++id) {
        const int button = st.hotkeyTable[id].gameControllerButton;
        if (id != action::controllerEnable && button >= 0 &&
            !input(p, id, p.port.button(p.slot, button), false))
            return false;
    }
    const bool left = p.port.axis(p.slot, leftTriggerAxis) > 0;
    const bool right = p.port.axis(p.slot, rightTriggerAxis) > 0;
    for (int id = 0; id < hotkeyRowCount; ++id) {
        const int trigger = st.hotkeyTable[id].gameControllerTrigger;
        if (id != action::controllerEnable &&
            (trigger == leftTriggerAxis || trigger == rightTriggerAxis) &&
            !input(p, id, trigger == leftTriggerAxis ? left : right, true))
            return false;
    }
    return true;
}

} // namespace

ControllerPort* installControllerPort(ControllerPort* port) {
    ControllerPort* previous = installed;
    installed = port;
    return previous;
}

ControllerPort* controllerPort() {
    return installed;
}

void openControllers(InputState& st, bool atStartUp) {
    if (!installed)
        return;
    std::string error;
    if (!installed->start(error)) {
        if (atStartUp)
            logOut("SDL could not initialize! SDL Error: %s\n", error.c_str());
        else
            logOut("SDL could not initialize game controller subsystem! SDL Error: %s\n",
                   error.c_str());
        return;
    }
    st.controllerCount = installed->joystickCount();
    for (int i = 0; i < st.controllerCount && i < maxControllers; ++i) {
        std::string name;
        switch (installed->open(i, name, error)) {
        case ControllerPort::Opened::Yes:
            st.controllerNames[i] = name;
            logOut("Controller %d is connected: %s\n", i, name.c_str());
            break;
        case ControllerPort::Opened::Failed:
            logOut("Warning: Unable to open game controller %d! SDL Error: %s\n", i, error.c_str());
            break;
        case ControllerPort::Opened::NotAController:
            break;
        }
    }
}

void closeControllers(InputState& st) {
    for (std::string& name : st.controllerNames)
        name.clear();
    if (installed)
        installed->closeAll();
}

void pollControllerEvents(InputState& st) {
    ControllerEvent event;
    while (installed && installed->nextEvent(event)) {
        if (event.slot < 0 || event.slot >= maxControllers)
            continue;
        const bool open = installed->isOpen(event.slot);
        if (event.kind == ControllerEvent::Kind::Added && !open) {
            logOut("Controller %d connected.\n", event.slot);
            reopenControllers(st);
        } else if (event.kind == ControllerEvent::Kind::Removed && open) {
            logOut("Controller %d disconnected.\n", event.slot);
            reopenControllers(st);
        }
    }
}

void pollControllers(InputState& st, ControllerActionRunner run) {
    if (!installed || st.controllerPollRunning)
        return;
    st.controllerPollRunning = true;
    Tick tick;
    const int slots = std::min(st.controllerCount, static_cast<int>(maxControllers));
    // Each slot is looked up afresh: an action may have closed the controllers (the quit).
    for (int slot = 0; slot < slots; ++slot) {
        if (!installed->isOpen(slot))
            continue;
        SlotPoll poll{st,
                      *installed,
                      run,
                      tick,
                      slot,
                      std::any_of(st.actionHeld.begin(), st.actionHeld.end(), [](bool held) { return held; })};
        if (!pollSlot(poll))
            break;
    }
    st.actionHeld.fill(tick.anyPressed);
    for (int which = 0; which < 2; ++which)
        if (!tick.holdSeen[which]) {
            st.volumeHoldTicks[which] = 0;
            st.actionRumbled[action::volumeUp + which] = false;
        }
    st.controllerPollRunning = false;
}

void updatePressedButton(InputState& st) {
    st.pressedButtonText.clear();
    if (!installed || !installed->isOpen(0))
        return;
    const ControllerFamily family = controllerFamily(st.controllerNames[0]);
    for (int index = 0; index <= 20; ++index)
        if (installed->button(0, index)) {
            st.pressedButtonText = buttonName(family, index);
            return;
        }
    const bool playStation = family == ControllerFamily::PlayStation;
    if (installed->axis(0, leftTriggerAxis) > 0)
        st.pressedButtonText = playStation ? "L2" : "Left Trigger";
    else if (installed->axis(0, rightTriggerAxis) > 0)
        st.pressedButtonText = playStation ? "R2" : "Right Trigger";
}

void rumble(InputState& st, int slot, int milliseconds) {
    std::string error;
    if (installed && !installed->rumble(slot, milliseconds, error))
        logOut("Warning: Unable to initiate rumble on game controller %d! SDL Error: %s\n",
               st.currentController, error.c_str());
}
