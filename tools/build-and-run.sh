#!/usr/bin/env bash
# Configures, builds and starts the application. Usage: tools/build-and-run.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" --parallel "$(nproc)" --target varnholt
exec "$build/src/shell/varnholt"
