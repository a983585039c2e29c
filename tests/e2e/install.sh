#!/usr/bin/env bash
# `cmake --install` into a prefix of its own, then the installed launcher as a user starts it: the
# desktop entry validates, every icon file has its size, the launcher lays out the user's folders
# and starts the player in them, a second launch leaves at once, and a rerun leaves the user's own
# files alone.
# Usage: install.sh BUILD_FOLDER
set -uo pipefail
build="$(realpath "$1")"
command -v desktop-file-validate >/dev/null || { echo "skipped: desktop-file-validate missing"; exit 77; }
source "$(dirname "$0")/e2eSession.sh"

prefix="$work/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null || fail "cmake --install failed"
entry="$prefix/share/applications/marble-tunnel-radio.desktop"
report="$(desktop-file-validate "$entry" 2>&1)" || fail "the desktop entry is refused: $report"
[ -z "$report" ] || fail "desktop-file-validate says: $report"
# A PNG's width and height are the big-endian words at bytes 16 and 20.
for size in 16 22 24 32 48 64 128 256; do
    png="$prefix/share/icons/hicolor/${size}x$size/apps/marble-tunnel-radio.png"
    [ "$(od -An -tu1 -j16 -N8 "$png" 2>/dev/null |
        awk '{ print $3 * 256 + $4 "x" $7 * 256 + $8 }')" = "${size}x$size" ] ||
        fail "no $size pixel icon"
done
[ -s "$prefix/share/icons/hicolor/scalable/apps/marble-tunnel-radio.svg" ] || fail "no scalable icon"
[ -n "$(ls "$prefix/share/marble-tunnel-radio/textures")" ] || fail "no textures installed"

export HOME="$work/home"
unset XDG_DATA_HOME
game="$HOME/.local/share/marble-tunnel-radio"
launch() { exec env QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER=dummy "$prefix/bin/marble-tunnel-radio"; }
launch >"$log" 2>&1 &
pid=$!
started() { grep -q "^Current directory: $game\$" "$log"; }
waitUpTo 300 started || fail "the launcher did not start the player in $game"
for folder in data "HarpTone/MIDI Songs" "HarpTone/Mp3 Songs" "HarpTone/Tracker Songs"; do
    [ -d "$game/$folder" ] || fail "no $folder"
done
[ -L "$game/data/textures" ] || fail "the textures are not linked"
second="$(timeout 20 env QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER=dummy \
    "$prefix/bin/marble-tunnel-radio" 2>&1)" || fail "a second launch ended badly: $second"
grep -q "A player already runs in $game/data" <<<"$second" || fail "a second launch said: $second"
stopPlayer

# The user's own choices stay: a folder of textures and a soundfont of their own.
rm "$game/data/textures"
mkdir "$game/data/textures"
echo mine >"$game/data/textures/mine.txt"
rm -f "$game/HarpTone/SoundFonts/TimGM6mb.sf2"
echo mine >"$game/HarpTone/SoundFonts/TimGM6mb.sf2"
launch >"$log" 2>&1 &
pid=$!
waitUpTo 300 started || fail "the second run did not start"
kill -TERM "$pid"
wait "$pid"
pid=""
[ "$(cat "$game/data/textures/mine.txt")" = mine ] || fail "the rerun touched the user's textures"
[ "$(cat "$game/HarpTone/SoundFonts/TimGM6mb.sf2")" = mine ] || fail "the rerun touched a soundfont"
exit 0
