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
    return true;
}

int SdlControllers::joystickCount() {
    return SDL_NumJoysticks();
}

bool SdlControllers::open(int slot, std::string& name) {
    if (slot < 0 || slot >= maxControllers || !SDL_IsGameController(slot))
        return false;
    SDL_GameController* controller = SDL_GameControllerOpen(slot);
    if (!controller)
        return false;
    open_[slot] = controller;
    const char* given = SDL_GameControllerName(controller);
    name = given ? given : "";
    return true;
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
