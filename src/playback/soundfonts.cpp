#include "playback/soundfonts.h"

#include "library/rebuild.h"
#include "playback/engine/engine.h"
#include "playback/playbackState.h"
#include "util/log.h"

#include <random>
#include <vector>

namespace {

unsigned errorCode() {
    return static_cast<unsigned>(engineErrorCode());
}

FontHandle& fontField(PlaybackState& st, Slot slot) {
    return slot == Slot::Main ? st.soundFontMain : st.soundFontNext;
}

int& indexField(PlaybackState& st, Slot slot) {
    return slot == Slot::Main ? st.soundFontIndexMain : st.soundFontIndexNext;
}

bool setFont(ChannelHandle stream, FontHandle font) {
    MidiFontRecord record{font, -1, 0};
    return midiStreamSetFonts(stream, &record, 1);
}

// The incoming song changes font right after its start, while it is still at volume 0: what its
// stream read ahead on the old font is dropped and rendered again, so that its first audible
// moment is on the new one. A MIDI stream's seek costs no more than a restart of its player.
void renderAgainFromHere(ChannelHandle stream) {
    channelSetPosition(stream, channelGetPosition(stream));
}

int lastFontIndex(const PlaybackState& st) {
    return static_cast<int>(st.soundFonts.size()) - 1;
}

// Steps 2.1 to 2.9 of the rotation: a drawn font for the incoming slot.
FontRecovery changeIncomingFont(PlaybackState& st, Slot slot) {
    int drawn = st.soundFontRng.uniform(0, lastFontIndex(st));
    st.songsSinceFontChange = 0;
    if (drawn >= st.soundFontCount)
        drawn = 0;
    st.currentSoundFont = drawn;
    const std::string& file = st.soundFonts[drawn];
    FontHandle font = midiFontInit(file);
    if (font == 0) {
        logOut("Error loading sound font from %s: %u\n", file.c_str(), errorCode());
        return FontRecovery::None;
    }
    FontHandle& field = fontField(st, slot);
    midiFontFree(field); // the zero handle frees nothing
    indexField(st, slot) = st.currentSoundFont;
    if (!setFont(slotChannel(st, slot, musicTypeMidi), font)) {
        logOut(slot == Slot::Main ? "Error setting sound font for midiStream: %u\n"
                                  : "Error setting sound font for midiStreamNext: %u\n",
               errorCode());
        midiFontFree(font);
        return slot == Slot::Main ? FontRecovery::RestartAudio : FontRecovery::Rescan;
    }
    field = font;
    renderAgainFromHere(slotChannel(st, slot, musicTypeMidi));
    logOut("Sound font for %s: %s\n", slotChannelName(slot, musicTypeMidi), file.c_str());
    return FontRecovery::None;
}

} // namespace

const char* fontBoxText(FontBox box) {
    switch (box) {
    case FontBox::NoFonts:
        return "No soundfont files found.";
    case FontBox::LoadFailed:
        return "Failed to load the selected soundfont.";
    case FontBox::BadIndex:
        return "Invalid sound font index.";
    case FontBox::None:
        break;
    }
    return "";
}

bool findSoundFonts(PlaybackState& st) {
    if (st.soundFontDirectoryPath.empty())
        st.soundFonts.clear();
    else
        st.soundFonts = scanSoundFonts(st.soundFontDirectoryPath);
    return !st.soundFonts.empty();
}

FontBox loadDrawnSoundFont(PlaybackState& st, ChannelHandle stream) {
    st.soundFontRng.seed(st.soundFontSeed != 0 ? st.soundFontSeed : std::random_device{}());
    int index = st.soundFontRng.uniform(0, lastFontIndex(st));
    st.soundFontCount = static_cast<int>(st.soundFonts.size());
    st.soundFontMain = midiFontInit(st.soundFonts[index]);
    if (st.soundFontMain == 0)
        return FontBox::LoadFailed;
    setFont(stream, st.soundFontMain);
    logOut("Sound font for %s: %s\n", stream == 0 ? "every MIDI stream to come" : "musicStream",
           st.soundFonts[index].c_str());
    return FontBox::None;
}

FontBox setUpSoundFonts(PlaybackState& st) {
    if (!findSoundFonts(st))
        return FontBox::NoFonts;
    return loadDrawnSoundFont(st, 0);
}

FontBox rescanSoundFontFolder(PlaybackState& st, const std::string& folder) {
    midiFontFree(st.soundFontMain);
    midiFontFree(st.soundFontNext);
    st.soundFontDirectoryPath = folder;
    if (!findSoundFonts(st))
        return FontBox::NoFonts;
    return loadDrawnSoundFont(st, st.musicStream);
}

FontBox selectSoundFont(PlaybackState& st, int index) {
    if (index < 0 || index > lastFontIndex(st))
        return FontBox::BadIndex;
    const std::string& file = st.soundFonts[index];
    FontHandle font = midiFontInit(file);
    if (font == 0)
        return FontBox::LoadFailed;
    midiFontFree(st.soundFontMain);
    midiFontFree(st.soundFontNext);
    st.soundFontMain = font;
    st.soundFontNext = midiFontInit(file); // shares the parse of the first open
    setFont(st.musicStream, st.soundFontMain);
    setFont(st.musicStreamNext, st.soundFontNext);
    st.currentSoundFont = index;
    logOut("Sound font for musicStream and musicStreamNext: %s\n", file.c_str());
    return FontBox::None;
}

RotationOutcome rotateSoundFont(PlaybackState& st) {
    RotationOutcome outcome;
    if (st.directoryPaths.empty() || st.soundFonts.empty())
        return outcome;
    const Slot incoming = loadingSlot(st);
    const bool repairDue =
        st.currentMusicType == musicTypeMidi && st.previousMusicType == musicTypeMidi;
    if (st.songsBeforeSoundfontChange != 0 &&
        st.songsSinceFontChange >= st.songsBeforeSoundfontChange) {
        outcome.recovery = changeIncomingFont(st, incoming);
        if (outcome.recovery != FontRecovery::None) {
            outcome.repairDue = repairDue;
            return outcome;
        }
    }
    if (repairDue)
        outcome.box = repairSoundFont(st, incoming);
    return outcome;
}

FontBox repairSoundFont(PlaybackState& st, Slot incoming) {
    ChannelHandle stream = slotChannel(st, incoming, musicTypeMidi);
    if (streamHasFont(stream))
        return FontBox::None;
    FontBox box = selectSoundFont(st, indexField(st, incoming));
    if (box == FontBox::None)
        renderAgainFromHere(stream);
    return box;
}

bool streamHasFont(ChannelHandle stream) {
    int count = midiStreamGetFonts(stream, nullptr, 0);
    if (count <= 0)
        return false;
    std::vector<MidiFontRecord> records(static_cast<std::size_t>(count));
    if (midiStreamGetFonts(stream, records.data(), count) != count)
        return false;
    for (const MidiFontRecord& record : records)
        if (record.font != 0)
            return true;
    return false;
}
