#pragma once
#include <string>

// What the input logic asks of the game-controller system; the platform answers through SDL,
// and the controllers themselves stay there. Slots are the system's joystick indices. With no
// port installed there are no controllers. Called on the user-interface thread only.
struct ControllerPort {
    virtual ~ControllerPort() = default;
    // Starts the subsystem; on failure the system's reason is in error.
    virtual bool start(std::string& error) = 0;
    virtual int joystickCount() = 0;
    // Opens the joystick at slot when it is a game controller, and gives its name.
    virtual bool open(int slot, std::string& name) = 0;
    // Closes every controller that is open and stops the subsystem.
    virtual void closeAll() = 0;
    // The system's own word for a game-controller button by index; empty when it has none.
    virtual std::string buttonWord(int index) = 0;
};

// The port stays owned by the caller; pass nullptr to remove it. Returns the one it replaced.
ControllerPort* installControllerPort(ControllerPort* port);
ControllerPort* controllerPort();
