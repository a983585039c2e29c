#!/usr/bin/env bash
# Points the real player at a new music folder under Xvfb as a user would: File, "Select Local
# Folders", "Browse", the folder typed into Qt's own picker, "Add Directory", "Scan". A song of
# that folder must be drawn, and MusicSettings.json must keep the folder after the player ends.
# The settings name a root that does not exist, so the library starts empty and the window names
# that root after the scan; the window is left in the current folder as folders-dialog.png.
# Usage: folders.sh PLAYER
set -uo pipefail
player="$(realpath "$1")"
shots="$PWD"
source "$(dirname "$0")/xvfbSession.sh"

game="$work/game"
source "$(dirname "$0")/sineLibrary.sh"
makeSineLibrary "$game" || fail "ffmpeg could not make a song"
music="$work/new music"
mkdir -p "$music/Album"
ffmpeg -nostdin -loglevel error -f lavfi -i "sine=frequency=330:duration=20" -c:a libmp3lame \
    "$music/Album/tune.mp3" || fail "ffmpeg could not make the new song"
printf '{"directoryPaths": ["%s"]}' "$work/missing" >"$game/data/MusicSettings.json"

startPlayer "$game/data"
grep -q "Drawn song:" "$log" && fail "a song was drawn from a library that should be empty"

# "File" is the menu bar's first entry, "Select Local Folders" its first item.
findFolders() { folders="$(window "Folder Information")"; [ -n "$folders" ]; }
openFolders() {
    xdotool mousemove --window "$main" 15 10 click 1
    sleep 0.5
    xdotool key Down Return
    waitUpTo 30 findFolders
}
waitUpTo 50 openFolders || fail "File, Select Local Folders opened no Folder Information window"

xdotool mousemove --window "$folders" 80 102 click 1
findPicker() { picker="$(window "Browse for Music Folder")"; [ -n "$picker" ]; }
waitUpTo 100 findPicker || fail "Browse opened no folder picker"
sleep 0.5
xdotool windowfocus --sync "$picker"
xdotool key ctrl+a
xdotool type --delay 20 "$music"
# The picker's completer follows the typing; on a loaded machine it needs a moment.
sleep 1
xdotool key Return
pickerGone() { [ -z "$(window "Browse for Music Folder")" ]; }
waitUpTo 50 pickerGone || fail "the picker did not take the folder"

# A click sent while the window is still taking the picker's answer can be lost on a loaded
# machine; a second one on the emptied box adds nothing, so it is safe to send.
addDirectory() { xdotool mousemove --window "$folders" 240 102 click 1; }
added() { grep -q "Music folder added:" "$log"; }
addDirectory
waitUpTo 30 added || { addDirectory; waitUpTo 50 added; } || fail "Add Directory added no folder"
grep -qF "Music folder added: $music" "$log" ||
    fail "the picker gave another folder: $(grep "Music folder added:" "$log")"
xdotool mousemove --window "$folders" 335 602 click 1
drawnNew() { grep -q "Drawn song: $music/Album/tune.mp3" "$log"; }
waitUpTo 200 drawnNew || fail "Scan drew no song of the new folder"
sleep 0.5
eval "$(xdotool getwindowgeometry --shell "$folders")"
ffmpeg -nostdin -loglevel error -y -f x11grab -draw_mouse 0 -video_size "${WIDTH}x$HEIGHT" \
    -i "$DISPLAY+$X,$Y" -frames:v 1 "$shots/folders-dialog.png" || fail "no grab of the window"

stopPlayer
grep -qF "\"$music\"" "$game/data/MusicSettings.json" ||
    fail "MusicSettings.json lost the new folder: $(cat "$game/data/MusicSettings.json")"
exit 0
