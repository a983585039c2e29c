#pragma once
#include <SDL.h>
#include <vector>

// Game controllers on SDL's virtual joysticks, for the player's own SDL port to find. They hold
// the joystick subsystem themselves: the player's reopening would otherwise take the virtual
// devices with it.
class VirtualPads {
  public:
    VirtualPads() {
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_InitSubSystem(SDL_INIT_JOYSTICK);
    }
    ~VirtualPads() {
        while (!pads_.empty())
            detach(static_cast<int>(pads_.size()) - 1);
        SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    }
    VirtualPads(const VirtualPads&) = delete;
    VirtualPads& operator=(const VirtualPads&) = delete;

    // Plugs a controller in as the last joystick; its triggers rest at raw -32768. Without motors
    // a rumble fails.
    int attach(const char* name, bool rumbles = true) {
        SDL_VirtualJoystickDesc desc{};
        desc.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
        desc.type = SDL_JOYSTICK_TYPE_GAMECONTROLLER;
        desc.naxes = SDL_CONTROLLER_AXIS_MAX;
        desc.nbuttons = SDL_CONTROLLER_BUTTON_MAX;
        desc.name = name;
        desc.Rumble = rumbles ? acceptRumble : nullptr;
        const int index = SDL_JoystickAttachVirtualEx(&desc);
        SDL_Joystick* joystick = SDL_JoystickOpen(index);
        for (int axis = 0; axis < SDL_CONTROLLER_AXIS_MAX; ++axis)
            SDL_JoystickSetVirtualAxis(joystick, axis, -32768);
        pads_.push_back(joystick);
        return index;
    }
    void detach(int index) {
        SDL_JoystickClose(pads_[index]);
        pads_.erase(pads_.begin() + index);
        SDL_JoystickDetachVirtual(index);
    }
    // Inputs by the game-controller numbering, set through the player's own mapping: a name with
    // "Xbox" gets SDL's, with other indices. The pad must be open as a game controller.
    void press(int pad, int button, bool down = true) {
        SDL_JoystickSetVirtualButton(pads_[pad], bindOf(pad, button, false).value.button, down);
    }
    void pull(int pad, int trigger, bool down = true) {
        SDL_JoystickSetVirtualAxis(pads_[pad], bindOf(pad, trigger, true).value.axis,
                                   down ? 32767 : -32768);
    }

  private:
    static int acceptRumble(void*, Uint16, Uint16) { return 0; }
    SDL_GameControllerButtonBind bindOf(int pad, int input, bool axis) {
        SDL_GameController* controller =
            SDL_GameControllerFromInstanceID(SDL_JoystickInstanceID(pads_[pad]));
        return axis ? SDL_GameControllerGetBindForAxis(controller,
                                                       static_cast<SDL_GameControllerAxis>(input))
                    : SDL_GameControllerGetBindForButton(
                          controller, static_cast<SDL_GameControllerButton>(input));
    }

    std::vector<SDL_Joystick*> pads_;
};
