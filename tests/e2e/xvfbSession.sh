# Sourced by the e2e scripts that drive the real player's window, with the tools they need beyond
# xvfb-run, xdotool and ffmpeg in e2eTools. The script runs again inside an X server of its own
# (skipped, 77, when a tool is missing); without -noreset the server resets when its last client
# leaves, and a polling xdotool that leaves as the player connects fails the start. Then it has
# what e2eSession.sh gives.
if [ -z "${E2E_UNDER_XVFB:-}" ]; then
    for tool in xvfb-run xdotool ffmpeg ${e2eTools:-}; do
        command -v "$tool" >/dev/null || { echo "skipped: $tool missing"; exit 77; }
    done
    E2E_UNDER_XVFB=1 exec xvfb-run -a -s "-screen 0 1024x768x24 -noreset" "$0" "$@"
fi

source "$(dirname "${BASH_SOURCE[0]}")/e2eSession.sh"
