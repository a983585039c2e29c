# Sourced by the e2e scripts that run the real player: a work folder removed at the end (with a
# player still running killed), the player's log, fail, waitUpTo and stopPlayer. The player's
# process id goes into pid.
work="$(mktemp -d)"
pid=""
trap '[ -n "$pid" ] && kill -9 "$pid" 2>/dev/null; rm -rf "$work"' EXIT
log="$work/player.log"
# Qt keeps its file dialog's last folders there: a run neither reads another's nor writes the user's.
export XDG_CONFIG_HOME="$work/config"
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
# Ends the player as a desktop's session end would, and fails unless it exits with 0.
stopPlayer() {
    local code
    kill -TERM "$pid"
    wait "$pid"
    code=$?
    pid=""
    [ "$code" -eq 0 ] || fail "SIGTERM ended the player with $code"
}
