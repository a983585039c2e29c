#!/usr/bin/env bash
# Binds Ctrl+F9 to Next Song in the real player's Hotkey Options window under Xvfb as a user would.
# The chord, pressed by xdotool, must then move to the next song, and hotkeyConfig.json hold it.
# Usage: hotkeyDialog.sh PLAYER
set -uo pipefail
player="$(realpath "$1")"
source "$(dirname "$0")/xvfbSession.sh"

game="$work/game"
source "$(dirname "$0")/sineLibrary.sh"
makeSineLibrary "$game" || fail "ffmpeg could not make a song"

startPlayer "$game/data"

# "Settings" is the menu bar's third entry, "Hotkeys \ Game Controllers" its third item: the
# keyboard walks there from the open "File" menu.
findHotkeys() { hotkeys="$(window "Hotkey Options")"; [ -n "$hotkeys" ]; }
openHotkeys() {
    xdotool mousemove --window "$main" 15 10 click 1 sleep 0.5 key Right Right sleep 0.3 \
        key Down Down Return
    waitUpTo 30 findHotkeys && return 0
    xdotool key Escape Escape Escape
    return 1
}
waitUpTo 50 openHotkeys || fail "Settings, Hotkeys \\ Game Controllers opened no Hotkey Options"

xdotool windowfocus --sync "$hotkeys"
# The key field, F9, the row's Ctrl box, Save.
xdotool mousemove --window "$hotkeys" 230 40 click 1 sleep 0.3 key F9 sleep 0.3 \
    mousemove --window "$hotkeys" 310 40 click 1 sleep 0.3 mousemove --window "$hotkeys" 575 515 click 1
hotkeysGone() { [ -z "$(window "Hotkey Options")" ]; }
waitUpTo 50 hotkeysGone || fail "Save did not close the window"
saved="$(tr -d ' \n' <hotkeyConfig.json)"
[[ "$saved" == '[{"alt":false,"ctrl":true,"gameControllerButton":-1,"gameControllerTrigger":-1,"shift":false,"vkKey":120}'* ]] ||
    fail "hotkeyConfig.json does not bind Ctrl+F9 to Next Song: $saved"

drawn() { grep -c "Drawn song:" "$log"; }
songs="$(drawn)"
xdotool key ctrl+F9
moved() { [ "$(drawn)" -gt "$songs" ]; }
waitUpTo 100 moved || fail "Ctrl+F9 drew no new song"
stopPlayer
exit 0
