#!/usr/bin/env bash
# Builds the Debian package of the application and checks it. Usage: tools/build-package.sh [build-dir]
# Then install it with: sudo apt install ./<build-dir>/varnholt_<version>_<arch>.deb
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build-package}"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVARNHOLT_BUILD_TESTS=OFF -DVARNHOLT_BUILD_BENCH=OFF
cmake --build "$build" --parallel "$(nproc)"
rm -f "$build"/varnholt_*.deb
(cd "$build" && cpack -G DEB)
package="$(ls "$build"/varnholt_*.deb)"
dpkg-deb --info "$package" >/dev/null
contents="$(dpkg-deb --contents "$package")"
for file in ./usr/bin/varnholt ./usr/bin/varnholt-fmt ./usr/share/applications/org.varnholt.Varnholt.desktop \
    ./usr/share/metainfo/org.varnholt.Varnholt.metainfo.xml \
    ./usr/share/icons/hicolor/scalable/apps/org.varnholt.Varnholt.svg \
    ./usr/share/icons/hicolor/256x256/apps/org.varnholt.Varnholt.png \
    ./usr/share/man/man1/varnholt-fmt.1.gz ./usr/share/doc/varnholt/copyright; do
    grep -q " $file\$" <<<"$contents" || { echo "missing from the package: $file" >&2; exit 1; }
done
# lintian refuses to run some checks as root, but says so and goes on.
lintian --fail-on error --tag-display-limit 0 "$package"
echo "$package"
