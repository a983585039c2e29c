#!/usr/bin/env bash
# Starts the real player in a fresh game folder and stops it with a signal, as a user would.
# Usage: startAndStop.sh PLAYER offscreen|xvfb|nodisplay
set -uo pipefail
player="$1"
mode="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
album="$work/game/HarpTone/MIDI Songs/Album"
mkdir -p "$work/game/data" "$album" "$work/game/HarpTone/SoundFonts"
# A soundfont from Debian's package, so that no box waits for a click under a real display.
ln -s /usr/share/sounds/sf2/TimGM6mb.sf2 "$work/game/HarpTone/SoundFonts/TimGM6mb.sf2"
# The shortest Standard MIDI File: one track that only ends.
printf 'MThd\000\000\000\006\000\000\000\001\000\140MTrk\000\000\000\004\000\377\057\000' \
    >"$album/first_song.mid"
cd "$work/game/data"
log="$work/out.log"

fail() { echo "FAIL: $*"; cat "$log"; exit 1; }

# Waits up to 30 s for a line in the player's output.
waitFor() {
    for _ in $(seq 300); do
        grep -q "$1" "$log" && return 0
        sleep 0.1
    done
    return 1
}

case "$mode" in
nodisplay)
    env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$player" >"$log" 2>&1
    code=$?
    [ "$code" -eq 255 ] || fail "without a display the exit code is $code, not -1"
    grep -q "Could not create the main window" "$log" || fail "no line says why"
    exit 0
    ;;
offscreen)
    QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER=dummy "$player" >"$log" 2>&1 &
    ;;
xvfb)
    command -v xvfb-run >/dev/null || { echo "xvfb-run missing"; exit 77; }
    # The dummy driver: a machine under test may have no sound card, and the box that says so
    # would wait for a click.
    SDL_AUDIODRIVER=dummy xvfb-run -a -s "-screen 0 1024x768x24 -noreset" bash -c '
        "$0" & pid=$!
        for _ in $(seq 300); do
            xdotool search --name "^Marble Tunnel Radio$" >/dev/null 2>&1 && break
            sleep 0.1
        done
        xdotool search --name "^Marble Tunnel Radio$" >/dev/null 2>&1 && echo "window shown"
        kill -TERM $pid; wait $pid; echo "exit code $?"' "$player" >"$log" 2>&1
    grep -q "window shown" "$log" || fail "no window titled Marble Tunnel Radio"
    grep -q "exit code 0" "$log" || fail "the player did not exit with 0"
    grep -q "Drawn song: .*first_song.mid" "$log" || fail "no first song was drawn"
    exit 0
    ;;
esac
pid=$!
waitFor "Fading in to volume" || { kill -9 $pid; fail "the first song did not fade in"; }
grep -q "History row 0: " "$log" || fail "no history row was logged"
grep -q "Drawn song: $album/first_song.mid" "$log" || fail "wrong first song"
kill -INT $pid
wait $pid
code=$?
[ "$code" -eq 0 ] || fail "Ctrl+C ended the player with $code"

data="$work/game/data"
plays=0
rows=0
# What every exit writes, whatever ended the run. The song is silent and short, so a run may play
# it more than once; each run must add to what the one before saved.
checkSaved() {
    local now
    now="$(grep -o '"playCount": [0-9]*' "$data/musicLibraryCache.json" | grep -o '[0-9]*$')"
    [ "${now:-0}" -gt "$plays" ] || fail "$1: the play count $now did not grow from $plays"
    plays=$now
    now="$(grep -c '"songIndex"' "$data/Song History.json")"
    [ "$now" -gt "$rows" ] || fail "$1: the history did not grow from $rows rows"
    rows=$now
    grep -q '"directoryPaths": \[' "$data/MusicSettings.json" || fail "$1: no settings saved"
    [ "$(cat "$data/favorite.json")" = null ] || fail "$1: favourites are not null"
    [ "$(cat "$data/InternetStations.json")" = null ] || fail "$1: stations are not null"
    [ "$(grep -c '"name"' "$data/colors.json")" -eq 29 ] || fail "$1: colors.json is not 29 rows"
    grep -q "added_later" "$data/musicLibraryCache.json" && fail "$1: a scan ran at start-up"
    return 0
}
checkSaved "Ctrl+C"

# Two more starts play from the saved library without a scan, and SIGTERM and SIGHUP save as the
# close box does.
touch "$album/added_later.mid"
for signal in TERM HUP; do
    : >"$log"
    QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER=dummy "$player" >"$log" 2>&1 &
    pid=$!
    waitFor "Fading in to volume" || { kill -9 $pid; fail "the SIG$signal run did not fade in"; }
    grep -q "rebuilding the library" "$log" && fail "the SIG$signal run rebuilt the library"
    kill -$signal $pid
    wait $pid
    code=$?
    [ "$code" -eq 0 ] || fail "SIG$signal ended the player with $code"
    checkSaved "SIG$signal"
done
exit 0
