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
    bool open(int slot, std::string& name) override;
    void closeAll() override;
    std::string buttonWord(int index) override;

  private:
    std::array<_SDL_GameController*, maxControllers> open_{};
    bool started_ = false;
    ControllerPort* previous_ = nullptr;
};
