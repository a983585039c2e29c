#!/usr/bin/env bash
# The player as an MPRIS 2 media player on a session bus of its own, driven by gdbus as the
# desktop's media keys and panels drive it; then without a bus, and two players side by side.
# Usage: mpris.sh PLAYER
set -uo pipefail
player="$(realpath "$1")"
for tool in dbus-run-session gdbus ffmpeg; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool missing"; exit 77; }
done
if [ -z "${MPRIS_SH_BUS:-}" ]; then
    MPRIS_SH_BUS=1 exec dbus-run-session -- "$0" "$@"
fi
source "$(dirname "$0")/e2eSession.sh"
source "$(dirname "$0")/sineLibrary.sh"
makeSineLibrary "$work/game" || fail "ffmpeg could not make a song"
start() { cd "$1" && exec env QT_QPA_PLATFORM=offscreen SDL_AUDIODRIVER=dummy "$player"; }

name=org.mpris.MediaPlayer2.marbletunnelradio
call() { gdbus call --session -d "$name" -o /org/mpris/MediaPlayer2 -m "$@"; }
get() { call org.freedesktop.DBus.Properties.Get org.mpris.MediaPlayer2.Player "$1"; }
set() { call org.freedesktop.DBus.Properties.Set org.mpris.MediaPlayer2.Player "$1" "$2"; }
player() { call "org.mpris.MediaPlayer2.Player.$1" "${@:2}" >/dev/null; }
title() { get Metadata | grep -o "'xesam:title': <'[^']*'>"; }
track() { get Metadata | grep -o "objectpath '[^']*'"; }
status() { get PlaybackStatus | grep -o "'[A-Za-z]*'" | tr -d "'"; }

start "$work/game/data" >"$log" 2>&1 &
pid=$!
onBus() { grep -q "On the session bus as $name" "$log"; }
waitUpTo 300 onBus || fail "the player took no name on the bus"
introspection="$(call org.freedesktop.DBus.Introspectable.Introspect)"
for interface in org.mpris.MediaPlayer2 org.mpris.MediaPlayer2.Player; do
    grep -q "interface name=\\\\\"$interface\\\\\"" <<<"$introspection" ||
        grep -q "interface name=\"$interface\"" <<<"$introspection" || fail "no $interface"
done

gdbus monitor --session -d "$name" >"$work/monitor" 2>&1 &
monitor=$!
trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; kill "$monitor" 2>/dev/null; rm -rf "$work"' EXIT
sleep 0.5
# Previous at the first row of the history does nothing.
before="$(track)"
player Previous
[ "$(track)" = "$before" ] || fail "Previous at the first song changed the song"
first="$(title)"
player Next
sleep 0.5
[ "$(track)" != "$before" ] || fail "Next kept the track id"
second="$(title)"
[ "$second" != "$first" ] || fail "Next kept the title $first"
newTrack="$(track | grep -o "'.*'" | tr -d "'")"
carried() { grep "PropertiesChanged" "$work/monitor" | grep -q "$newTrack"; }
waitUpTo 30 carried || fail "no PropertiesChanged carried the new track $newTrack"
# The same change made going back possible, and says so beside the new track.
grep "PropertiesChanged" "$work/monitor" | grep -q "CanGoPrevious" ||
    fail "no PropertiesChanged said that Previous can go back"
player Next
sleep 0.3
player Previous
sleep 0.3
[ "$(title)" = "$second" ] || fail "Previous after two Nexts did not go back to $second"

player PlayPause
[ "$(status)" = Paused ] || fail "PlayPause did not pause: $(status)"
player PlayPause
[ "$(status)" = Playing ] || fail "PlayPause did not resume: $(status)"
player Stop
[ "$(status)" = Stopped ] || fail "Stop left $(status)"
player Play
[ "$(status)" = Playing ] || fail "Play after Stop left $(status)"

# SetPosition moves the position and says so; a stale track id is ignored.
sleep 0.5
current="$(track | grep -o "'.*'" | tr -d "'")"
player SetPosition "objectpath '$current'" 12000000
position() { get Position | sed 's/.*int64 \(-*[0-9]*\).*/\1/'; }
position="$(position)"
[ "$position" -ge 12000000 ] && [ "$position" -lt 14000000 ] || fail "SetPosition left $position"
seeked() { grep -q "Seeked" "$work/monitor"; }
waitUpTo 30 seeked || fail "no Seeked signal"
player SetPosition "objectpath '/org/marbletunnelradio/track/999'" 2000000
position="$(position)"
[ "$position" -ge 12000000 ] || fail "a stale track id moved the position to $position"

for bad in "<nan>" "<-1.0>" "<7.0>" "<inf>"; do
    set Volume "$bad" >/dev/null 2>&1
    volume="$(get Volume | grep -o '[0-9.e+-]*' | head -1)"
    awk -v v="$volume" 'BEGIN { exit !(v >= 0 && v <= 1) }' || fail "Volume $bad left $volume"
done
set Volume "<0.3>" >/dev/null
[ "$(get Volume)" = "(<0.30000001192092896>,)" ] || fail "Volume 0.3 reads back as $(get Volume)"
call org.mpris.MediaPlayer2.Quit >/dev/null
wait "$pid"
code=$?
pid=""
[ "$code" -eq 0 ] || fail "Quit ended the player with $code"
grep -q '"volumeLevel": 0.3' "$work/game/data/MusicSettings.json" || fail "the volume was not saved"

# The bus frees a name when it hears the old connection hang up, which under load can come after
# the next player has asked for it.
nameFree() {
    gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus \
        -m org.freedesktop.DBus.NameHasOwner "$name" | grep -q false
}
waitUpTo 100 nameFree || fail "the bus kept the name of a player that had quit"

# Two data folders side by side: each player holds a name of its own.
makeSineLibrary "$work/other" || fail "ffmpeg could not make a song"
start "$work/game/data" >"$log" 2>&1 &
pid=$!
waitUpTo 300 onBus || fail "the first player took no name on the bus"
start "$work/other/data" >"$work/other.log" 2>&1 &
other=$!
instance() { grep -q "On the session bus as $name.instance$other" "$work/other.log"; }
waitUpTo 300 instance || { kill "$other"; fail "the second player took no instance name"; }
kill -TERM "$other"
wait "$other" || fail "the second player did not end well"
kill -TERM "$pid"
wait "$pid" || fail "the first player did not end well"
pid=""

# Without a session bus the player says so once and plays as before.
DBUS_SESSION_BUS_ADDRESS="unix:path=$work/no-bus" start "$work/game/data" >"$log" 2>&1 &
pid=$!
drawn() { grep -q "Drawn song:" "$log"; }
waitUpTo 300 drawn || fail "without a bus the player did not play"
noBus() { grep -q "No session bus" "$log"; }
waitUpTo 100 noBus || fail "without a bus the player did not say so"
kill -TERM "$pid"
wait "$pid"
code=$?
pid=""
[ "$code" -eq 0 ] || fail "without a bus SIGTERM ended the player with $code"
exit 0
