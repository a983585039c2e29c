#pragma once

struct PlayerState;

enum class TextureSlot { Background, Lcd };

// Lists the "textures" folder and loads "Leather" and "LCD" when they are there.
void loadStartupTextures(PlayerState& st);
// Loads the textures that the settings name into their slots.
void loadNamedTextures(PlayerState& st);
// Copies a colour scheme drawn with rand() into the colour settings when randomColorPlayer is on.
void applyRandomColorScheme(PlayerState& st);
// Frees the loaded texture bitmaps and clears their slots.
void releaseTextures(PlayerState& st);
