#pragma once
#include "input/controllerPort.h"
#include "input/hotkeyBinding.h"

#include <array>

struct _SDL_GameController;

// The game controllers through SDL's game-controller subsystem alone: never SDL_Quit and no
// video, so the audio output, a subsystem of its own, is never taken along.
class SdlControllers : public ControllerPort {
  public:
    SdlControllers();
    ~SdlControllers() override;
    SdlControllers(const SdlControllers&) = delete;
    SdlControllers& operator=(const SdlControllers&) = delete;

    bool start(std::string& error) override;
    int joystickCount() override;
    Opened open(int slot, std::string& name, std::string& error) override;
    void closeAll() override;
    std::string buttonWord(int index) override;
    bool nextEvent(ControllerEvent& event) override;
    bool isOpen(int slot) override;
    bool button(int slot, int index) override;
    int axis(int slot, int index) override;
    bool rumble(int slot, int milliseconds, std::string& error) override;

    // How many rumbles were asked for: SDL passes one on to the device only when the strength
    // changes, so this is where they can be counted.
    int rumblesAsked() const { return rumblesAsked_; }

  private:
    _SDL_GameController* at(int slot) const;

    std::array<_SDL_GameController*, maxControllers> open_{};
    bool started_ = false;
    int rumblesAsked_ = 0;
    ControllerPort* previous_ = nullptr;
};
