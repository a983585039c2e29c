#!/usr/bin/env bash
# One player per data folder, under Xvfb. A second start in the folder (reached through a link to
# it) exits 0 with its line, leaves the first's files alone, and the first raises and focuses its
# window. After kill -9 of the first, a new start runs: the kernel dropped the lock.
# Usage: singleInstance.sh PLAYER
set -uo pipefail
player="$(realpath "$1")"
e2eTools="xmessage openbox"
source "$(dirname "$0")/xvfbSession.sh"

game="$work/game"
source "$(dirname "$0")/sineLibrary.sh"
makeSineLibrary "$game" || fail "ffmpeg could not make a song"
ln -s "$game/data" "$work/link"
# Run in the background, the started job is the player itself, so that kill -9 reaches it.
start() { cd "$1" && exec env -u QT_QPA_PLATFORM SDL_AUDIODRIVER=dummy "$player"; }
# Focus between programs is the window manager's to give.
openbox >/dev/null 2>&1 &
wm=$!
sleep 1

start "$game/data" >"$log" 2>&1 &
pid=$!
findMain() { main="$(xdotool search --onlyvisible --name "^Marble Tunnel Radio$" 2>/dev/null | head -1)"; [ -n "$main" ]; }
waitUpTo 300 findMain || fail "no window titled Marble Tunnel Radio"
drawn() { grep -q "Drawn song:" "$log"; }
waitUpTo 100 drawn || fail "the first player drew no song"

xmessage -name otherProgram "another program has the focus" &
other=$!
trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; kill "$other" "$wm" 2>/dev/null; rm -rf "$work"' EXIT
xdotool search --sync --classname otherProgram windowactivate --sync >/dev/null || fail "no other window"
files() { md5sum "$game"/data/*.json "$game/MusicRunning.txt" 2>/dev/null; }
before="$(files)"

second="$work/second.log"
timeout 20 bash -c "cd '$work/link' && exec env -u QT_QPA_PLATFORM SDL_AUDIODRIVER=dummy '$player'" \
    >"$second" 2>&1
code=$?
[ "$code" -eq 0 ] || { cat "$second"; fail "the second start ended with $code"; }
grep -q "A player already runs in $game/data: its window is raised." "$second" ||
    { cat "$second"; fail "the second start did not say that a player runs there"; }
raised() { grep -q "Another start in this data folder: raising the window." "$log"; }
waitUpTo 50 raised || fail "the first player did not raise its window"
focused() { [ "$(xdotool getwindowfocus 2>/dev/null)" = "$main" ]; }
waitUpTo 50 focused || fail "the first player's window did not take the focus"
[ "$(files)" = "$before" ] || fail "the second start touched the first's files"

kill -9 "$pid"
wait "$pid" 2>/dev/null
pid=""
start "$game/data" >"$log" 2>&1 &
pid=$!
waitUpTo 300 drawn || fail "after kill -9 a new start did not play"
stopPlayer
exit 0
