#!/usr/bin/env bash
# Plays a real Icecast station through the real player: tools/local-station on a free port, a
# library of one song, the radio's ratio alone. After the song, the station must fade in, and the
# log must name it and two of its running titles. Then the station stops: the player must log
# the end of its stream, move on when the segment ends, and move on again 3 s after the dead
# station fails to load.
# Under Xvfb (when it is installed) the window's frames during the song and during the station
# are left in the current folder (build/tests under ctest), and the LCD must differ between them.
# Usage: localStation.sh PLAYER
set -uo pipefail
player="$(realpath "$1")"
shots="$PWD"
# An X server of its own for the whole script; -noreset keeps it up between its clients.
if [ -z "${LOCAL_STATION_DISPLAY:-}" ] && command -v xvfb-run >/dev/null &&
    command -v xdotool >/dev/null; then
    LOCAL_STATION_DISPLAY=1 exec xvfb-run -a -s "-screen 0 1024x768x24 -noreset" "$0" "$@"
fi
tools="$(cd "$(dirname "$0")/../../tools" && pwd)"
work="$(mktemp -d)"
chmod 755 "$work" # icecast2 runs as its own user
game="$work/game"
log="$work/player.log"
pids=()
trap 'kill -TERM "${pids[@]}" 2>/dev/null; wait; rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; cat "$work/station.log" "$log"; exit 1; }
# Waits up to $1 tenths of a second for the command to succeed.
waitUpTo() {
    local tenths="$1"
    shift
    for _ in $(seq "$tenths"); do "$@" && return 0; sleep 0.1; done
    return 1
}
logs() { grep -q "$1" "$log"; }

mkdir -p "$game/data" "$game/HarpTone/Mp3 Songs/Album" "$game/HarpTone/SoundFonts"
ln -s /usr/share/sounds/sf2/TimGM6mb.sf2 "$game/HarpTone/SoundFonts/TimGM6mb.sf2"
"$tools/local-station" --data "$game/data" --port 0 --every 3 >"$work/station.log" 2>&1 &
pids+=($!)
started() { grep -q "^Station: " "$work/station.log" || ! kill -0 "${pids[0]}" 2>/dev/null; }
waitUpTo 300 started
if ! grep -q "^Station: " "$work/station.log"; then
    wait "${pids[0]}"
    code=$?
    [ "$code" -eq 77 ] && { echo "skipped: $(tail -1 "$work/station.log")"; exit 77; }
    fail "tools/local-station did not start (exit $code)"
fi

ffmpeg -nostdin -loglevel error -f lavfi -i "sine=frequency=660:duration=12" -c:a libmp3lame \
    "$game/HarpTone/Mp3 Songs/Album/song.mp3" || fail "ffmpeg could not make the song"
cat >"$game/data/MusicSettings.json" <<EOF
{
    "directoryPaths": ["$game/HarpTone/Mp3 Songs"],
    "rawFav": 0, "rawMIDI": 0, "rawMP3": 0, "rawRadio": 100, "rawTracker": 0,
    "songPlayDurationMin": 45, "songPlayDurationMax": 45,
    "iSongPlayDurationMin": 12, "iSongPlayDurationMax": 12, "FADE_DURATION_MS": 1000
}
EOF
cd "$game/data"
platform=offscreen
[ -n "${LOCAL_STATION_DISPLAY:-}" ] && platform=xcb
QT_QPA_PLATFORM=$platform SDL_AUDIODRIVER=dummy "$player" >"$log" 2>&1 &
pids+=($!)
# The LCD of the window in a frame saved as $1, as a sum; nothing without a display.
lcdOf() {
    [ "$platform" = xcb ] || return 0
    local id
    id="$(xdotool search --onlyvisible --name "^Marble Tunnel Radio$" | head -1)"
    [ -n "$id" ] || return 1
    eval "$(xdotool getwindowgeometry --shell "$id")"
    ffmpeg -nostdin -loglevel error -y -f x11grab -draw_mouse 0 -video_size "${WIDTH}x$HEIGHT" \
        -i "$DISPLAY+$X,$Y" -frames:v 1 "$shots/$1" &&
        ffmpeg -nostdin -loglevel error -i "$shots/$1" -vf "crop=$((WIDTH * 490 / 500)):$((HEIGHT * 85 / 155)):$((WIDTH * 2 / 500)):$((HEIGHT * 12 / 155)),format=rgb24" -f rawvideo - | md5sum
}
songPlays() { logs "Fading in to volume" && ! logs "Local Tone FM"; }
waitUpTo 300 songPlays || fail "the song did not fade in"
sleep 1
songLcd="$(lcdOf screen-song.png)" || fail "no frame of the song"
heard() { logs "Local Tone FM" && [ "$(grep -o "Tone number [0-9]*" "$log" | sort -u | wc -l)" -ge 2 ]; }
waitUpTo 450 heard || fail "the log does not name the station and two of its titles within 45 s"
stationLcd="$(lcdOf screen-station.png)" || fail "no frame of the station"
[ "$platform" = offscreen ] || [ "$songLcd" != "$stationLcd" ] ||
    fail "the front page did not change from the song to the station"

kill -TERM "${pids[0]}"
waitUpTo 150 logs "Internet stream .* ends" || fail "the end of the stream is not logged"
waitUpTo 200 logs "The station has ended" || fail "the radio does not see the station end"
waitUpTo 200 logs "did not load: the radio moves on in 3 seconds" ||
    fail "the dead station's failed load is not followed by a move on"
kill -TERM "${pids[1]}"
wait "${pids[1]}"
code=$?
[ "$code" -eq 0 ] || fail "the player exited with $code"
