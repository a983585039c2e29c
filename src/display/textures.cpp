#include "display/textures.h"

#include "display/displayState.h"

// Textures arrive with the painted screen; the plain window needs none.
void scanTextures(DisplayState&, const std::string&) {}

TextureLoad loadTexture(DisplayState&, const std::string&, int) {
    return TextureLoad::NotListed;
}

std::string textureFailureText(const std::string& name) {
    return "Failed to load " + name + ".bmp";
}

std::vector<std::string> loadStartupTextures(DisplayState&) {
    return {};
}

std::vector<std::string> loadNamedTextures(DisplayState&) {
    return {};
}

void releaseTextures(DisplayState&) {}
