#pragma once

struct DisplayState;

enum class TextureSlot { Background, Lcd };

// Lists the "textures" folder and loads "Leather" and "LCD" when they are there.
void loadStartupTextures(DisplayState& st);
// Loads the textures that the settings name into their slots.
void loadNamedTextures(DisplayState& st);
// Copies a colour scheme drawn with rand() into the colour settings when randomColorPlayer is on.
void applyRandomColorScheme(DisplayState& st);
// Frees the loaded texture bitmaps and clears their slots.
void releaseTextures(DisplayState& st);
