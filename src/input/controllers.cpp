#include "input/controllers.h"

#include "input/controllerPort.h"
#include "input/inputState.h"
#include "util/log.h"

namespace {
// The controllers are the machine's, one set per process like the window system.
ControllerPort* installed = nullptr;
} // namespace

ControllerPort* installControllerPort(ControllerPort* port) {
    ControllerPort* previous = installed;
    installed = port;
    return previous;
}

ControllerPort* controllerPort() {
    return installed;
}

void openControllers(InputState& st) {
    if (!installed)
        return;
    std::string error;
    if (!installed->start(error)) {
        logOut("SDL could not initialize! SDL Error: %s\n", error.c_str());
        return;
    }
    st.controllerCount = installed->joystickCount();
    for (int i = 0; i < st.controllerCount && i < maxControllers; ++i) {
        std::string name;
        if (installed->open(i, name))
            st.controllerNames[i] = name;
    }
}

void closeControllers(InputState& st) {
    for (std::string& name : st.controllerNames)
        name.clear();
    if (installed)
        installed->closeAll();
}
