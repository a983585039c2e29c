#pragma once
#include <optional>
#include <string>

struct PlayerState;

// The rules of the Folder Information dialog; its window only shows what they leave.

// The three folders a picker can set: the music folder to add, the soundfonts, the game.
enum class PickedFolder { Music, SoundFonts, Game };
const char* folderPickerTitle(PickedFolder mode);
// A folder the picker gave: the soundfont and game folders are stored, and the settings saved in
// every mode, though a music folder goes only into the dialog's box until "Add Directory".
void takePickedFolder(PlayerState& st, PickedFolder mode, const std::string& path);
// "Clear" of the soundfont or the game folder: emptied and saved.
void clearPickedFolder(PlayerState& st, PickedFolder mode);

// "Add Directory" of the box's text: nothing for an empty text; a folder already listed, in any
// ASCII case, is named in a box and not added; otherwise appended, scanned and saved only later.
enum class AddedFolder { Nothing, AlreadyAdded, Added };
AddedFolder addMusicFolder(PlayerState& st, const std::string& text);

// "Delete Path": the music stops and the screen lets go of the song on show before anything
// else; with a row selected, that folder goes and the library is rebuilt without it. The row is
// found by its text, since another Folder window may have changed the list since this one
// showed it. Nothing starts the music again. The dialog's closing lets the screen read again.
void deleteMusicFolder(PlayerState& st, const std::optional<std::string>& selected);
void closeFolderDialog(PlayerState& st);

// The line naming the roots the last scan could not read, empty when it read them all.
std::string unreadableRootsLine(const PlayerState& st);
