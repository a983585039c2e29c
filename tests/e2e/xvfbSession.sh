# Sourced by the e2e scripts that drive the real player's window, with the tools they need beyond
# xvfb-run, xdotool and ffmpeg in e2eTools. The script runs again inside an X server of its own
# (skipped, 77, when a tool is missing); without -noreset the server resets when its last client
# leaves, and a polling xdotool that leaves as the player connects fails the start. Then it has
# what e2eSession.sh gives, window and startPlayer.
if [ -z "${E2E_UNDER_XVFB:-}" ]; then
    for tool in xvfb-run xdotool ffmpeg ${e2eTools:-}; do
        command -v "$tool" >/dev/null || { echo "skipped: $tool missing"; exit 77; }
    done
    E2E_UNDER_XVFB=1 exec xvfb-run -a -s "-screen 0 1024x768x24 -noreset" "$0" "$@"
fi

source "$(dirname "${BASH_SOURCE[0]}")/e2eSession.sh"
# A visible window's id by its whole title; empty while there is none.
window() { xdotool search --onlyvisible --name "^$1\$" 2>/dev/null | head -1; }
# Starts $player in the data folder $1 with the dummy audio driver (a machine under test may have
# no sound card, and that box would wait for a click), its output in $log; returns once its
# window shows, as $main.
startPlayer() {
    cd "$1" || fail "no data folder"
    env -u QT_QPA_PLATFORM SDL_AUDIODRIVER=dummy "$player" >"$log" 2>&1 &
    pid=$!
    findMain() { main="$(window "Marble Tunnel Radio")"; [ -n "$main" ]; }
    waitUpTo 300 findMain || fail "no window titled Marble Tunnel Radio"
}
