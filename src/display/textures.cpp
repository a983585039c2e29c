#include "display/textures.h"

#include "display/displayState.h"

// Textures and colour schemes arrive with the painted screen; the plain window needs none.
void loadStartupTextures(DisplayState&) {}

void loadNamedTextures(DisplayState&) {}

void applyRandomColorScheme(DisplayState&) {}

void releaseTextures(DisplayState&) {}
