#!/usr/bin/env bash
# Saves screenshots of the main window's states in English, Chinese and Japanese, light and
# dark, under a virtual X display, on a scratch store that leaves your own data alone.
# Usage: tools/screenshots.sh [build-dir] [output-dir] [scene...]
# (scenes: see tools/screenshots/main.cpp; all when none is named)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
output="$(realpath -m "${2:-screenshots}")"
shift $(( $# < 2 ? $# : 2 ))
cmake --build "$build" --target varnholt-screenshots >/dev/null
mkdir -p "$output"
for appearance in light dark; do
    for language in en zh-Hans ja; do
        scratch="$(mktemp -d)"
        HOME="$scratch" XDG_CONFIG_HOME="$scratch/config" XDG_DATA_HOME="$scratch/data" \
            XDG_RUNTIME_DIR="$scratch" QT_QPA_PLATFORM=xcb \
            xvfb-run -a -s "-screen 0 1400x900x24" \
            "$build/tools/screenshots/varnholt-screenshots" "$output" "$language" "$appearance" "$@"
        rm -rf "$scratch"
    done
done
