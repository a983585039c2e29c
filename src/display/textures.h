#pragma once
#include <string>
#include <vector>

struct DisplayState;

// Lists the folder (not its subfolders) into `textures`: every ".bmp" entry that loads, by its
// stem, sorted by name like the other scans. Files that are no bitmap are skipped silently.
void scanTextures(DisplayState& st, const std::string& folder);

enum class TextureLoad { Loaded, NotListed, Failed };
// Releases what the slot held, then loads "textures/NAME.bmp" when NAME is listed (exact case)
// and names the slot's setting after it. NotListed leaves the slot empty and says nothing;
// Failed wants the box of textureFailureText.
TextureLoad loadTexture(DisplayState& st, const std::string& name, int slot);
std::string textureFailureText(const std::string& name);

// The loads of the start-up: the scan with "Leather" and "LCD", then the names of the settings.
// Each returns the texts of the boxes that its failed loads want, in order.
std::vector<std::string> loadStartupTextures(DisplayState& st);
std::vector<std::string> loadNamedTextures(DisplayState& st);
// Frees the loaded texture bitmaps and clears their slots.
void releaseTextures(DisplayState& st);
