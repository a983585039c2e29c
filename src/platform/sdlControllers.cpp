#include "platform/sdlControllers.h"

#include <SDL.h>

SdlControllers::SdlControllers() {
    previous_ = installControllerPort(this);
}

SdlControllers::~SdlControllers() {
    closeAll();
    installControllerPort(previous_);
}

bool SdlControllers::start(std::string& error) {
    // SDL would otherwise install its own SIGINT/SIGTERM handlers and swallow them.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER) != 0) {
        error = SDL_GetError();
        return false;
    }
    started_ = true;
    // Every start queues an addition for each controller already there. The opening covers
    // them; left queued, one that fails to open would bring the next tick to open all again,
    // which queues its addition again, at every tick.
    SDL_FlushEvent(SDL_CONTROLLERDEVICEADDED);
    return true;
}

int SdlControllers::joystickCount() {
    return SDL_NumJoysticks();
}

ControllerPort::Opened SdlControllers::open(int slot, std::string& name, std::string& error) {
    if (slot < 0 || slot >= maxControllers || !SDL_IsGameController(slot))
        return Opened::NotAController;
    SDL_GameController* controller = SDL_GameControllerOpen(slot);
    if (!controller) {
        error = SDL_GetError();
        return Opened::Failed;
    }
    open_[slot] = controller;
    const char* given = SDL_GameControllerName(controller);
    name = given ? given : "";
    return Opened::Yes;
}

void SdlControllers::closeAll() {
    for (SDL_GameController*& controller : open_) {
        if (controller)
            SDL_GameControllerClose(controller);
        controller = nullptr;
    }
    if (started_)
        SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
    started_ = false;
}

std::string SdlControllers::buttonWord(int index) {
    const char* word =
        SDL_GameControllerGetStringForButton(static_cast<SDL_GameControllerButton>(index));
    return word ? word : "";
}

bool SdlControllers::nextEvent(ControllerEvent& event) {
    if (!started_)
        return false;
    SDL_Event sdl;
    while (SDL_PollEvent(&sdl)) {
        if (sdl.type == SDL_CONTROLLERDEVICEADDED) {
            event = {ControllerEvent::Kind::Added, sdl.cdevice.which};
            return true;
        }
        if (sdl.type != SDL_CONTROLLERDEVICEREMOVED)
            continue;
        // A removal names the joystick's instance id, which grows with every opening; only the
        // handles know which slot it was.
        event = {ControllerEvent::Kind::Removed, -1};
        for (int slot = 0; slot < maxControllers; ++slot)
            if (open_[slot] && SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(open_[slot])) ==
                                   sdl.cdevice.which)
                event.slot = slot;
        return true;
    }
    return false;
}

SDL_GameController* SdlControllers::at(int slot) const {
    return slot >= 0 && slot < maxControllers ? open_[slot] : nullptr;
}

bool SdlControllers::isOpen(int slot) {
    return at(slot) != nullptr;
}

bool SdlControllers::button(int slot, int index) {
    SDL_GameController* controller = at(slot);
    return controller && SDL_GameControllerGetButton(
                             controller, static_cast<SDL_GameControllerButton>(index)) != 0;
}

int SdlControllers::axis(int slot, int index) {
    SDL_GameController* controller = at(slot);
    return controller
               ? SDL_GameControllerGetAxis(controller, static_cast<SDL_GameControllerAxis>(index))
               : 0;
}

bool SdlControllers::rumble(int slot, int milliseconds, std::string& error) {
    SDL_GameController* controller = at(slot);
    if (!controller)
        return true;
    ++rumblesAsked_;
    if (SDL_GameControllerRumble(controller, 0xFFFF, 0xFFFF, static_cast<Uint32>(milliseconds)) ==
        0)
        return true;
    error = SDL_GetError();
    return false;
}
