#!/usr/bin/env bash
# Rewrites the formatter's golden files (tests/sqlformat/data/reference) from the inputs
# beside them with varnholt-fmt, and drops references whose input is gone. Review the result
# with `git diff tests/sqlformat/data` before committing it.
#
# Usage: tools/update-formatter-references.sh [path/to/varnholt-fmt]
#        (default: build/src/sqlformat/varnholt-fmt)
set -euo pipefail
cd "$(dirname "$0")/.."
fmt="${1:-build/src/sqlformat/varnholt-fmt}"
if [ ! -x "$fmt" ]; then
    echo "no varnholt-fmt at $fmt: build the target varnholt-fmt or give its path" >&2
    exit 2
fi
data=tests/sqlformat/data
mkdir -p "$data/reference"
for input in "$data"/input/*.sql; do
    "$fmt" "$input" > "$data/reference/$(basename "$input")"
done
for reference in "$data"/reference/*.sql; do
    [ -e "$data/input/$(basename "$reference")" ] || rm -v "$reference"
done
