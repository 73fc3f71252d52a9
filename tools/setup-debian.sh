#!/usr/bin/env bash
# Installs the Debian 12 packages that building, testing and running Varnholt need.
# Idempotent and non-interactive; uses sudo when not run as root.
set -euo pipefail
packages=(
    build-essential cmake ninja-build pkg-config ccache git openssl
    qt6-base-dev qt6-base-dev-tools qt6-declarative-dev qt6-declarative-dev-tools
    qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts
    qml6-module-qtquick-templates qml6-module-qtquick-window qml6-module-qtqml-workerscript
    qml6-module-qttest qml6-module-qtquick-shapes qml6-module-qtqml-models qml6-module-qtquick-dialogs
    qt6-svg-dev libqt6svg6 libicu-dev libmd4c-dev libgl-dev libvulkan-dev fonts-noto-cjk fonts-noto-color-emoji
    xvfb xauth
    desktop-file-utils appstream dpkg-dev lintian
    qtkeychain-qt6-dev libsecret-1-0 qt6-translations-l10n dbus-daemon gnome-keyring
    libgit2-dev
)
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
