#!/usr/bin/env bash
# Clicks the real player's window under Xvfb as a user would: the next-song glyph must draw a new
# song, and the figures glyph must turn the LCD to the ratio page. The frames before and after are
# left in the current folder (build/tests under ctest): screen-before.png, screen-figures.png.
# Ctrl+Alt+N, bound to Next Song in the hotkey file, must draw a new song too.
# Usage: screen.sh PLAYER
set -uo pipefail
player="$(realpath "$1")"
shots="$PWD"
e2eTools=xmessage
source "$(dirname "$0")/xvfbSession.sh"

game="$work/game"
source "$(dirname "$0")/sineLibrary.sh"
makeSineLibrary "$game" || fail "ffmpeg could not make a song"

# Ctrl+Alt+N (virtual key 78) on row 0, Next Song, and Ctrl+= (187) on row 11, Volume Up: global
# hotkeys.
row() { echo "{\"alt\": $1, \"ctrl\": $2, \"gameControllerButton\": -1, \"gameControllerTrigger\": -1, \"shift\": false, \"vkKey\": $3}"; }
{
    printf '[%s' "$(row true true 78)"
    for id in $(seq 29); do
        if [ "$id" -eq 11 ]; then printf ',%s' "$(row false true 187)"; else printf ',%s' "$(row false false 0)"; fi
    done
    printf ']'
} >"$game/data/hotkeyConfig.json"

cd "$game/data" || fail "no data folder"
# The dummy driver: a machine under test may have no sound card, and that box would wait too.
env -u QT_QPA_PLATFORM SDL_AUDIODRIVER=dummy "$player" >"$log" 2>&1 &
pid=$!
findWindow() { id="$(xdotool search --onlyvisible --name "^Marble Tunnel Radio$" | head -1)"; }
waitUpTo 300 findWindow || fail "no window titled Marble Tunnel Radio"
eval "$(xdotool getwindowgeometry --shell "$id")"
# The menu bar stands over the client area: x and y of a grid point in the window.
top=0
px() { echo $(($1 * WIDTH / 500)); }
py() { echo $((top + $1 * (HEIGHT - top) / 155)); }
grab() {
    ffmpeg -nostdin -loglevel error -y -f x11grab -draw_mouse 0 -video_size "${WIDTH}x$HEIGHT" \
        -i "$DISPLAY+$X,$Y" -frames:v 1 "$1"
}
# "R G B" of a frame's pixel at grid units.
pixel() {
    ffmpeg -nostdin -loglevel error -i "$1" -vf "crop=1:1:$(px "$2"):$(py "$3"),format=rgb24" \
        -f rawvideo - | od -An -tu1 | xargs
}
lcdSum() {
    ffmpeg -nostdin -loglevel error -i "$1" \
        -vf "crop=$(px 490):$(((HEIGHT - top) * 85 / 155)):$(px 2):$(py 12),format=rgb24" -f rawvideo - | md5sum
}
drawn() { grep -c "Drawn song:" "$log"; }

# Painted once the background is no longer the empty window's black.
before="$shots/screen-before.png"
painted() { grab "$before" && [ "$(pixel "$before" 1 153)" != "0 0 0" ]; }
waitUpTo 100 painted || fail "the window shows no frame"
# The client area starts at the first dark row of the window's last column, past the light bar.
top="$(ffmpeg -nostdin -loglevel error -i "$before" -vf "crop=1:$HEIGHT:$((WIDTH - 1)):0,format=gray" \
    -f rawvideo - | od -An -v -tu1 -w1 | awk '$1 < 100 { print NR - 1; exit }')"
[ -n "$top" ] && [ "$top" -lt $((HEIGHT / 2)) ] || fail "no client area below the menu bar"
[ "$(drawn)" -ge 1 ] || fail "no first song was drawn"

songs="$(drawn)"
xdotool mousemove --window "$id" "$(px 270)" "$(py 142)" click 1
moved() { [ "$(drawn)" -gt "$songs" ]; }
waitUpTo 100 moved || fail "the next-song glyph drew no new song"

# The ratio page's first bar is the text colour (white in a fresh data folder) past the ratio,
# where the front page shows the LCD.
figures="$shots/screen-figures.png"
xdotool mousemove --window "$id" "$(px 476)" "$(py 20)" click 1
onRatioPage() { grab "$figures" && [ "$(pixel "$figures" 400 21)" = "255 255 255" ]; }
waitUpTo 100 onRatioPage || fail "the figures glyph did not show the ratio bars"
[ "$(pixel "$before" 400 21)" != "255 255 255" ] || fail "the front page shows a bar already"
[ "$(lcdSum "$before")" != "$(lcdSum "$figures")" ] || fail "the LCD did not change"

# The hotkey reaches the player whichever window has the focus: the key grab is the root's.
xmessage -name otherProgram "another program has the focus" &
other=$!
trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; kill "$other" 2>/dev/null; rm -rf "$work"' EXIT
xdotool search --sync --classname otherProgram windowfocus --sync >/dev/null ||
    fail "no other window to focus"
songs="$(drawn)"
xdotool key ctrl+alt+n
waitUpTo 100 moved || fail "Ctrl+Alt+N drew no new song"
# Also with Caps Lock and Num Lock on.
xdotool key Caps_Lock Num_Lock
songs="$(drawn)"
xdotool key ctrl+alt+n
waitUpTo 100 moved || fail "Ctrl+Alt+N with the lock keys on drew no new song"
xdotool key Caps_Lock Num_Lock

# Ctrl+= steps the volume once a press, also held while the keyboard repeats: from 0.5 by two
# presses and one hold to 0.65, as the settings saved at the end say. The latch lets go at the
# 100 ms tick after the keys are up.
xdotool key ctrl+equal
sleep 0.4
xdotool key ctrl+equal
sleep 0.4
xdotool keydown ctrl+equal
sleep 1
xdotool keyup ctrl+equal
sleep 0.4

stopPlayer
volume="$(grep -o '"volumeLevel": *[0-9.]*' "$game/data/MusicSettings.json" | grep -o '[0-9.]*$')"
awk -v v="$volume" 'BEGIN { exit !(v > 0.649 && v < 0.651) }' ||
    fail "Ctrl+= left the volume at ${volume:-nothing}, not 0.65"
exit 0
