#!/usr/bin/env bash
# The bare window under a real window manager (openbox) in Xvfb: with Alt held, B makes the window
# bare (no frame, no menu bar) and B again brings the frame back, in the same outer place and size;
# the opacity and an open dialog survive both. Frames stay in the current folder: window-framed.png,
# window-bare.png.
# Usage: windowModes.sh PLAYER
set -uo pipefail
player="$(realpath "$1")"
shots="$PWD"
e2eTools="openbox xprop xwininfo"
source "$(dirname "$0")/xvfbSession.sh"

game="$work/game"
source "$(dirname "$0")/sineLibrary.sh"
makeSineLibrary "$game" || fail "ffmpeg could not make a song"
printf '{"directoryPaths": ["%s"], "windowAlpha": 200}' "$game/HarpTone/Mp3 Songs" \
    >"$game/data/MusicSettings.json"

openbox >/dev/null 2>&1 &
wm=$!
trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; kill "$wm" 2>/dev/null; rm -rf "$work"' EXIT
sleep 1
startPlayer "$game/data"
sleep 1

# The window's place on the screen and size, as X, Y, WIDTH and HEIGHT (xdotool's place does not
# allow for the frame).
place() {
    eval "$(xwininfo -id "$main" | awk '/Absolute upper-left X/ { print "X=" $4 }
        /Absolute upper-left Y/ { print "Y=" $4 } / Width:/ { print "WIDTH=" $2 }
        / Height:/ { print "HEIGHT=" $2 }')"
}
# The outer rectangle: the window's place and size plus the frame the window manager reports.
outer() {
    local extents
    place
    extents="$(xprop -id "$main" _NET_FRAME_EXTENTS | grep -o '[0-9]*, [0-9]*, [0-9]*, [0-9]*' | tr -d ,)"
    set -- ${extents:-0 0 0 0}
    echo "$((X - $1)) $((Y - $3)) $((WIDTH + $1 + $2)) $((HEIGHT + $3 + $4))"
}
opacity() { xprop -id "$main" _NET_WM_WINDOW_OPACITY | grep -o '[0-9]*$'; }
grab() {
    place
    ffmpeg -nostdin -loglevel error -y -f x11grab -draw_mouse 0 -video_size "${WIDTH}x$HEIGHT" \
        -i "$DISPLAY+$X,$Y" -frames:v 1 "$1"
}
# Left of everything the screen paints, the menu bar is light and the screen's background dark.
topIsLight() {
    local gray
    gray="$(ffmpeg -nostdin -loglevel error -i "$1" -vf "crop=1:1:2:10,format=gray" \
        -f rawvideo - | od -An -tu1 | xargs)"
    [ "${gray:-0}" -gt 128 ]
}

# An owned dialog, open across both changes: Song Info, View.
xdotool mousemove --window "$main" 205 8 click 1
sleep 0.5
xdotool key Down Return
findInfo() { info="$(window "Song Information")"; [ -n "$info" ]; }
waitUpTo 50 findInfo || fail "no Song Information window"

xdotool windowactivate --sync "$main" 2>/dev/null || xdotool windowfocus --sync "$main"
before="$(outer)"
alpha="$(opacity)"
[ -n "$alpha" ] || fail "the window has no opacity"
grab "$shots/window-framed.png"
topIsLight "$shots/window-framed.png" || fail "no menu bar over the framed window"

xdotool keydown alt
sleep 0.3
xdotool key b
sleep 1
bare="$(outer)"
grab "$shots/window-bare.png"
topIsLight "$shots/window-bare.png" && { xdotool keyup alt; fail "the bare window kept its menu bar"; }
xdotool key b
sleep 1
xdotool keyup alt
sleep 0.5
after="$(outer)"

[ "$bare" = "$before" ] || fail "bare, the window moved or changed size: $before then $bare"
[ "$after" = "$before" ] || fail "framed again, the window moved or changed size: $before then $after"
[ "$(opacity)" = "$alpha" ] || fail "the opacity changed from $alpha to $(opacity)"
[ -n "$(window "Song Information")" ] || fail "the dialog did not survive"
[ "$(xprop -id "$main" _NET_FRAME_EXTENTS | grep -c '0, 0, 0, 0')" -eq 0 ] ||
    fail "the frame did not come back"

stopPlayer
exit 0
