#!/usr/bin/env bash
# The real player on faults of the machine it runs on, as a user meets them.
#   readonly: the data folder cannot be written (a read-only tmpfs; without root, no write
#     permission): the player starts and plays, each save at exit fails with one line, and every
#     file stays as it was, with nothing new beside it.
#   nodevice: no audio device opens (SDL's disk driver into a folder that is not there): the box
#     that says so is a line, the player runs silent, the game's commands and the desktop's MPRIS
#     calls do no harm, and it exits with 0 and every file saved.
# Usage: faults.sh PLAYER readonly|nodevice
set -uo pipefail
player="$(realpath "$1")"
mode="$2"
for tool in ffmpeg dbus-run-session gdbus; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool missing"; exit 77; }
done
[ -n "${FAULTS_SH_BUS:-}" ] || FAULTS_SH_BUS=1 exec dbus-run-session -- "$0" "$@"
source "$(dirname "$0")/e2eSession.sh"
source "$(dirname "$0")/sineLibrary.sh"
game="$work/game"
data="$game/data"
makeSineLibrary "$game" || fail "ffmpeg could not make a song"
echo '{"versionCheck": false}' >"$data/MusicSettings.json"
saves=(musicLibraryCache.json MusicSettings.json InternetStations.json favorite.json
    "Song History.json")
start() {
    (cd "$data" && exec env QT_QPA_PLATFORM=offscreen "$@" "$player") >"$log" 2>&1 &
    pid=$!
}
logs() { grep -qF "$1" "$log"; }

if [ "$mode" = readonly ]; then
    start SDL_AUDIODRIVER=dummy
    waitUpTo 300 logs "Fading in to volume" || fail "the first start did not play"
    stopPlayer
    cp -a "$data" "$work/saved"
    trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; umount -l "$data" 2>/dev/null
          chmod -R u+w "$work"; rm -rf "$work"' EXIT
    if mount -t tmpfs -o size=1m tmpfs "$data" 2>/dev/null; then
        cp -a "$work/saved/." "$data/" && mount -o remount,ro "$data" || fail "no read-only tmpfs"
    elif [ "$(id -u)" -ne 0 ]; then
        chmod a-w "$data"
    else
        echo "skipped: root cannot mount a tmpfs here"
        exit 77
    fi
    files() { (cd "$data" && find . -type f -exec md5sum {} + | sort); }
    before="$(files)"
    start SDL_AUDIODRIVER=dummy
    waitUpTo 300 logs "Fading in to volume" || fail "the player did not play"
    stopPlayer
    for file in "${saves[@]}"; do
        [ "$(grep -F "$data/$file" "$log" | grep -c "for writing")" -eq 1 ] ||
            fail "not one line for the save of $file"
    done
    [ "$(files)" = "$before" ] || fail "the data folder changed: $(diff <(echo "$before") <(files))"
    exit 0
fi

start SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE="$work/no such folder/out.raw"
name=org.mpris.MediaPlayer2.marbletunnelradio
waitUpTo 300 logs "On the session bus as $name" || fail "the player took no name on the bus"
[ "$(grep -c "Failed to initialize BASS library!" "$log")" -eq 1 ] || fail "not one line for the box"
for line in NEXT_SONG "VOL 0.25" "POS 12" "PLAY_SONG 0 1" NEXT_SOUNDFONT PREVIOUS_SONG; do
    echo "$line" >>"$game/commands.txt"
    taken() { [ ! -s "$game/commands.txt" ]; }
    waitUpTo 100 taken || fail "the command $line was not taken"
done
call() { gdbus call --session -d "$name" -o /org/mpris/MediaPlayer2 -m "$@" >/dev/null; }
for method in Next Previous PlayPause Stop Play; do
    call "org.mpris.MediaPlayer2.Player.$method" || fail "MPRIS $method failed"
done
call org.mpris.MediaPlayer2.Player.Seek 5000000 || fail "MPRIS Seek failed"
call org.freedesktop.DBus.Properties.Set org.mpris.MediaPlayer2.Player Volume "<0.3>" ||
    fail "MPRIS could not set the volume"
stopPlayer
grep -q '"volumeLevel": 0.3' "$data/MusicSettings.json" || fail "the volume was not saved"
for file in "${saves[@]}"; do
    [ -s "$data/$file" ] || fail "$file was not saved"
done
grep -q '"playCount"' "$data/musicLibraryCache.json" || fail "the library was not saved"
exit 0
