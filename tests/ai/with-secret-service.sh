#!/bin/sh
# Runs a test in a D-Bus session of its own, with GNOME Keyring's secret service unlocked on a
# scratch home, so that it never meets the user's keyring. Without dbus-run-session or
# gnome-keyring-daemon it runs the test with VARNHOLT_NO_SECRET_SERVICE=1, which then skips.
set -u
if ! command -v dbus-run-session >/dev/null 2>&1 || ! command -v gnome-keyring-daemon >/dev/null 2>&1; then
    VARNHOLT_NO_SECRET_SERVICE=1 exec "$@"
fi
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
HOME=$home XDG_DATA_HOME=$home/data XDG_CONFIG_HOME=$home/config XDG_RUNTIME_DIR=$home \
    dbus-run-session -- sh -c 'printf %s varnholt | gnome-keyring-daemon --unlock --components=secrets >/dev/null && "$@"' \
    sh "$@"
