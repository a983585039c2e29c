#!/usr/bin/env bash
# The game's side of the link against the real player: gameLinkClient reads MusicRunning.txt and
# songInfo.txt and writes commands.txt in a game folder with three sine songs; SIGTERM must turn
# MusicRunning.txt to "no".
# Usage: gameLink.sh PLAYER CLIENT
set -uo pipefail
player="$1"
client="$2"
command -v ffmpeg >/dev/null || { echo "skipped: ffmpeg missing"; exit 77; }
[ -f /usr/share/sounds/sf2/TimGM6mb.sf2 ] || { echo "skipped: no TimGM6mb.sf2"; exit 77; }
work="$(mktemp -d)"
pid=""
trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; rm -rf "$work"' EXIT
log="$work/player.log"
fail() { echo "FAIL: $*"; cat "$log"; exit 1; }

game="$work/game"
source "$(dirname "$0")/sineLibrary.sh"
makeSineLibrary "$game" || fail "ffmpeg could not make a song"
# Settings that the record must show; the roots are named, so the first start keeps the ratios.
cat >"$game/data/MusicSettings.json" <<JSON
{"directoryPaths": ["$game/HarpTone/MIDI Songs", "$game/HarpTone/Mp3 Songs",
 "$game/HarpTone/Tracker Songs"], "FADE_DURATION_MS": 1500, "rawMP3": 77,
 "songsBeforeSoundfontChange": 3, "songPlayDurationMin": 12, "songPlayDurationMax": 24,
 "iSongPlayDurationMin": 61, "iSongPlayDurationMax": 181, "volumeLevel": 0.5,
 "versionCheck": false}
JSON

cd "$game/data" || fail "no data folder"
QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER=dummy "$player" >"$log" 2>&1 &
pid=$!
"$client" "$game" || fail "the game's side of the link"
for line in "Next Song..." "Change volume to 0.25..." "Trying to write to: $game/MusicRunning.txt"; do
    grep -qF "$line" "$log" || fail "the player did not say: $line"
done
kill -TERM "$pid"
wait "$pid"
code=$?
pid=""
[ "$code" -eq 0 ] || fail "SIGTERM ended the player with $code"
[ "$(cat "$game/MusicRunning.txt")" = no ] || fail "MusicRunning.txt does not say no"
grep -q "Unable to open file for writing" "$log" && fail "a write of songInfo.txt failed"
exit 0
