#pragma once
#include "playback/engine/decoder.h"
#include "playback/engine/handle.h"

#include <vector>

struct MidiFontRecord;

// A soundfont that the engine handed out, under its handle.
struct FontEntry {
    FontHandle handle = 0;
    SoundFontRef font;
};

// The soundfonts loaded through the engine, and the list every new MIDI stream starts with. The
// engine's lifecycle lock guards it; streams hold references of their own.
struct FontTable {
    std::vector<FontEntry> loaded;
    std::vector<FontEntry> defaults;
};

// Forgets the font, from the defaults too; false when the table has no such handle.
bool removeFont(FontTable& table, FontHandle handle);
// The loaded fonts that the records name, in their order; false when one names none.
bool chooseFonts(const FontTable& table, const MidiFontRecord* records, int count,
                 std::vector<FontEntry>& chosen);
std::vector<SoundFontRef> fontRefs(const std::vector<FontEntry>& entries);
std::vector<FontHandle> fontHandles(const std::vector<FontEntry>& entries);
