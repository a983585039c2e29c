#include "display/textures.h"

#include "core/playerState.h"

// Textures and colour schemes arrive with the painted screen; the plain window needs none.
void loadStartupTextures(PlayerState&) {}

void loadNamedTextures(PlayerState&) {}

void applyRandomColorScheme(PlayerState&) {}

void releaseTextures(PlayerState&) {}
