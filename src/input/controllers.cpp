#include "input/controllers.h"

#include "core/playerState.h"
#include "util/log.h"

#include <SDL.h>

void openControllers(PlayerState& st) {
    // SDL would otherwise install its own SIGINT/SIGTERM handlers and swallow them.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER) != 0) {
        logOut("SDL could not initialize! SDL Error: %s\n", SDL_GetError());
        return;
    }
    st.controllerCount = SDL_NumJoysticks();
    for (int i = 0; i < st.controllerCount && i < maxControllers; ++i) {
        if (!SDL_IsGameController(i))
            continue;
        SDL_GameController* controller = SDL_GameControllerOpen(i);
        if (!controller)
            continue;
        st.controllerHandles[i] = controller;
        const char* name = SDL_GameControllerName(controller);
        st.controllerNames[i] = name ? name : "";
    }
}

void closeControllers(PlayerState& st) {
    bool wasOpen = SDL_WasInit(SDL_INIT_GAMECONTROLLER) != 0;
    for (int i = 0; i < maxControllers; ++i) {
        st.controllerNames[i].clear();
        if (st.controllerHandles[i])
            SDL_GameControllerClose(static_cast<SDL_GameController*>(st.controllerHandles[i]));
        st.controllerHandles[i] = nullptr;
    }
    if (wasOpen)
        SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
}
