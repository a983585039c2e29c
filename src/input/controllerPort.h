#pragma once
#include <string>

// A controller plugged in or pulled out. An addition names the system's joystick index; a
// removal names the slot its controller was open in, or -1 for one that was not open.
struct ControllerEvent {
    enum class Kind { Added, Removed };
    Kind kind = Kind::Added;
    int slot = -1;
};

// What the input logic asks of the game-controller system; the platform answers through SDL,
// and the controllers themselves stay there. Slots are the system's joystick indices. With no
// port installed there are no controllers. Called on the user-interface thread only; the calls
// a tick makes allocate nothing unless they fail.
struct ControllerPort {
    enum class Opened { Yes, NotAController, Failed };

    virtual ~ControllerPort() = default;
    // Starts the subsystem, dropping the additions it queues for what is already there: the
    // opening that follows covers them. On failure the system's reason is in error.
    virtual bool start(std::string& error) = 0;
    virtual int joystickCount() = 0;
    // Opens the joystick at slot when it is a game controller, and gives its name or the
    // system's reason for failing.
    virtual Opened open(int slot, std::string& name, std::string& error) = 0;
    // Closes every controller that is open and stops the subsystem.
    virtual void closeAll() = 0;
    // The system's own word for a game-controller button by index; empty when it has none.
    virtual std::string buttonWord(int index) = 0;

    // The next addition or removal waiting, after the system has looked at its devices; false
    // when none is left or the subsystem is stopped.
    virtual bool nextEvent(ControllerEvent& event) = 0;
    virtual bool isOpen(int slot) = 0;
    // A button by the game-controller index, and an axis as -32768 to 32767 (the triggers are
    // 4 and 5, resting at 0); up and 0 for a slot that is not open.
    virtual bool button(int slot, int index) = 0;
    virtual int axis(int slot, int index) = 0;
    // Both motors at full strength for the time given; false with the reason when it cannot.
    virtual bool rumble(int slot, int milliseconds, std::string& error) = 0;
};

// The port stays owned by the caller; pass nullptr to remove it. Returns the one it replaced.
ControllerPort* installControllerPort(ControllerPort* port);
ControllerPort* controllerPort();
