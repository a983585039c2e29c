# Sourced by the e2e scripts that drive the real player's window, with the tools they need beyond
# xvfb-run, xdotool and ffmpeg in e2eTools. The script runs again inside an X server of its own
# (skipped, 77, when a tool is missing); without -noreset the server resets when its last client
# leaves, and a polling xdotool that leaves as the player connects fails the start. Then it has a
# work folder removed at the end, the player's log, fail, and waitUpTo.
if [ -z "${E2E_UNDER_XVFB:-}" ]; then
    for tool in xvfb-run xdotool ffmpeg ${e2eTools:-}; do
        command -v "$tool" >/dev/null || { echo "skipped: $tool missing"; exit 77; }
    done
    E2E_UNDER_XVFB=1 exec xvfb-run -a -s "-screen 0 1024x768x24 -noreset" "$0" "$@"
fi

work="$(mktemp -d)"
pid=""
trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; rm -rf "$work"' EXIT
log="$work/player.log"
fail() { echo "FAIL: $*"; cat "$log" 2>/dev/null; exit 1; }
# Waits up to $1 tenths of a second for the command to succeed, while the player runs.
waitUpTo() {
    local tenths="$1"
    shift
    for _ in $(seq "$tenths"); do
        "$@" && return 0
        [ -z "$pid" ] || kill -0 "$pid" 2>/dev/null || return 1
        sleep 0.1
    done
    return 1
}
