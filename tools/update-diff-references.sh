#!/usr/bin/env bash
# Rewrites the comparison's golden files (tests/versions/data/reference/*.diff): each of the
# formatter's golden inputs compared with its formatted reference. Review the result with
# `git diff tests/versions/data` before committing it.
#
# Usage: tools/update-diff-references.sh [path/to/tst_textdiff]
#        (default: build/tests/versions/tst_textdiff)
set -euo pipefail
cd "$(dirname "$0")/.."
test_binary="${1:-build/tests/versions/tst_textdiff}"
if [ ! -x "$test_binary" ]; then
    echo "no tst_textdiff at $test_binary: build the target tst_textdiff or give its path" >&2
    exit 2
fi
mkdir -p tests/versions/data/reference
rm -f tests/versions/data/reference/*.diff
VARNHOLT_UPDATE_REFERENCES=1 "$test_binary" goldenPairs > /dev/null
echo "written: $(ls tests/versions/data/reference | wc -l) references"
