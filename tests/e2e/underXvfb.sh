#!/usr/bin/env bash
# Runs a test program inside an X server of its own, on the xcb platform, with the tools its
# cases start. Without -noreset the server resets when its last client leaves.
# Usage: underXvfb.sh PROGRAM [ARGUMENTS...]
set -uo pipefail
for tool in xvfb-run xdotool xmessage; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool missing"; exit 77; }
done
exec xvfb-run -a -s "-screen 0 1024x768x24 -noreset" env -u WAYLAND_DISPLAY "$@"
