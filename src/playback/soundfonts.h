#pragma once
#include "playback/engine/handle.h"
#include "playback/slots.h"

#include <string>

struct PlaybackState;

// The soundfonts of MIDI songs: the list of one folder, a font drawn at start, the rotation of the
// incoming slot's font every songsBeforeSoundfontChange MIDI songs, and the hand steps. All on the
// user-interface thread. None of these talks to the user: each returns the box it leaves for core
// to show, and the rotation the recovery it leaves for core to run.

// A box with title "Error", error icon, no owner.
enum class FontBox { None, NoFonts, LoadFailed, BadIndex };
// Its text, exactly as the user sees it; empty for None.
const char* fontBoxText(FontBox box);

// What a font the incoming stream refused leaves to do once streamMutex is let go: the restart of
// the audio for the main slot (it ends in a start of playback, which takes that lock), a rescan
// of the fonts for the Next slot.
enum class FontRecovery { None, RestartAudio, Rescan };

struct RotationOutcome {
    FontRecovery recovery = FontRecovery::None;
    // With a recovery: the repair is still due once the recovery has run.
    bool repairDue = false;
    FontBox box = FontBox::None; // of the repair's hand step
};

// Lists the ".sf2" files of soundFontDirectoryPath into soundFonts; false when there are none.
// An empty path names no folder, and is not scanned.
bool findSoundFonts(PlaybackState& st);
// Draws a font from a new generator and opens it into soundFontMain, for stream (0: the default
// of every MIDI stream to come).
FontBox loadDrawnSoundFont(PlaybackState& st, ChannelHandle stream);
// The set-up after the audio came up: the fonts of soundFontDirectoryPath, one drawn as the
// default of every MIDI stream to come.
FontBox setUpSoundFonts(PlaybackState& st);
// After the Next slot refused a font: both fonts go, the fonts of folder (config.json's) are
// listed, and a drawn one goes to musicStream.
FontBox rescanSoundFontFolder(PlaybackState& st, const std::string& folder);
// The hand step: both slots take the font at index at once, whichever is audible. None when it
// did; both old fonts stay otherwise.
FontBox selectSoundFont(PlaybackState& st, int index);
// For each new MIDI song, after songsSinceFontChange grew and before nextSlotActive flips, with
// streamMutex held: the incoming slot may take a new font, and a MIDI song after a MIDI song gets
// its slot's font by a hand step when its stream has none.
RotationOutcome rotateSoundFont(PlaybackState& st);
// The repair alone: selectSoundFont with the slot's index when the slot's stream has no font.
FontBox repairSoundFont(PlaybackState& st, Slot incoming);
// Whether the stream has at least one font set.
bool streamHasFont(ChannelHandle stream);
