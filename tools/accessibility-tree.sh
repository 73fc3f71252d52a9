#!/usr/bin/env bash
# Starts Varnholt on a scratch store under a virtual X display and a private session bus with
# the accessibility bus, and prints its accessibility tree as a screen reader reads it. Needs
# Debian's python3-pyatspi and at-spi2-core.
# Usage: tools/accessibility-tree.sh [build-dir] [control to press...]
#   e.g. tools/accessibility-tree.sh build "New SQL"       (the new-document sheet)
#        tools/accessibility-tree.sh build File             (the open File menu)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
shift $(( $# < 1 ? $# : 1 ))
cmake --build "$build" --target varnholt >/dev/null
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
export HOME="$scratch" XDG_CONFIG_HOME="$scratch/config" XDG_DATA_HOME="$scratch/data" \
    XDG_RUNTIME_DIR="$scratch/run" QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_QPA_PLATFORM=xcb
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
xvfb-run -a -s "-screen 0 1400x900x24" dbus-run-session -- bash -c '
    /usr/libexec/at-spi-bus-launcher --launch-immediately &
    sleep 1
    "$0" &
    application=$!
    /usr/bin/python3 tools/accessibility/tree.py "$@"
    kill "$application"
' "$build/src/shell/varnholt" "$@" 2>/dev/null
