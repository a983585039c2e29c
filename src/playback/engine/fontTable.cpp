#include "playback/engine/fontTable.h"

#include "playback/engine/engine.h"

#include <algorithm>

bool removeFont(FontTable& table, FontHandle handle) {
    auto named = [handle](const FontEntry& entry) { return entry.handle == handle; };
    auto it = std::find_if(table.loaded.begin(), table.loaded.end(), named);
    if (it == table.loaded.end())
        return false;
    table.loaded.erase(it);
    return true;
}

SoundFontRef parsedFont(FontTable& table, const std::string& key) {
    auto it = table.parsed.find(key);
    if (it == table.parsed.end())
        return nullptr;
    SoundFontRef font = it->second.lock();
    if (!font)
        table.parsed.erase(it);
    return font;
}

SoundFontRef noteFontUsed(FontTable& table, SoundFontRef font) {
    auto& recent = table.recent;
    auto it = std::find(recent.begin(), recent.end(), font);
    if (it == recent.end())
        it = recent.insert(recent.end(), std::move(font));
    std::rotate(recent.begin(), it, it + 1);
    SoundFontRef dropped;
    if (recent.size() > recentFontsKept) {
        dropped = std::move(recent.back());
        recent.pop_back();
    }
    return dropped;
}

bool chooseFonts(const FontTable& table, const MidiFontRecord* records, int count,
                 std::vector<FontEntry>& chosen) {
    chosen.clear();
    for (int i = 0; i < count; ++i) {
        auto it =
            std::find_if(table.loaded.begin(), table.loaded.end(),
                         [&](const FontEntry& entry) { return entry.handle == records[i].font; });
        if (it == table.loaded.end())
            return false;
        chosen.push_back(*it);
    }
    return true;
}

std::vector<SoundFontRef> fontRefs(const std::vector<FontEntry>& entries) {
    std::vector<SoundFontRef> refs;
    for (const FontEntry& entry : entries)
        refs.push_back(entry.font);
    return refs;
}

std::vector<FontHandle> fontHandles(const std::vector<FontEntry>& entries) {
    std::vector<FontHandle> handles;
    for (const FontEntry& entry : entries)
        handles.push_back(entry.handle);
    return handles;
}
