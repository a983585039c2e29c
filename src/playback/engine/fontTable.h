#pragma once
#include "playback/engine/decoder.h"
#include "playback/engine/handle.h"

#include <map>
#include <string>
#include <vector>

struct MidiFontRecord;

// A soundfont that the engine handed out, under its handle.
struct FontEntry {
    FontHandle handle = 0;
    SoundFontRef font;
};

// The soundfonts loaded through the engine, and the list every new MIDI stream starts with. The
// engine's lifecycle lock guards it; streams and the defaults hold references of their own, so a
// font lives while anything lists it.
struct FontTable {
    std::vector<FontEntry> loaded;
    std::vector<FontEntry> defaults;
    // Every parsed font still alive, by its file: a second open of a file shares the first's.
    std::map<std::string, std::weak_ptr<const SoundFont>> parsed;
    // The fonts used last, the newest first, kept alive after their last handle went so that a
    // rotation back to one of them costs no parse. With samples read on demand a parse holds only
    // the font's preset tables (a few MB for a General MIDI font), so a few of them are cheap.
    std::vector<SoundFontRef> recent;
};

constexpr std::size_t recentFontsKept = 4;

// Forgets the handle; the defaults keep their fonts, so that the streams to come still play on
// them. False when the table has no such handle.
bool removeFont(FontTable& table, FontHandle handle);
// The font parsed from the file and still alive, or null.
SoundFontRef parsedFont(FontTable& table, const std::string& key);
// Puts the font first among the recent ones; the one that falls out is handed back, to be let go
// once the engine's lock is.
SoundFontRef noteFontUsed(FontTable& table, SoundFontRef font);
// The loaded fonts that the records name, in their order; false when one names none.
bool chooseFonts(const FontTable& table, const MidiFontRecord* records, int count,
                 std::vector<FontEntry>& chosen);
std::vector<SoundFontRef> fontRefs(const std::vector<FontEntry>& entries);
std::vector<FontHandle> fontHandles(const std::vector<FontEntry>& entries);
