#!/usr/bin/env bash
# Installs what building, running and testing Vonel needs on Debian 12,
# skipping the package manager when everything is already there.
set -euo pipefail
packages=(
  build-essential cmake ccache pkg-config
  qt6-base-dev qt6-base-dev-tools libgl-dev qt6-multimedia-dev
  libgtest-dev libgmock-dev libzip-dev
  clang libclang-rt-dev
  dovecot-pop3d python3-aiosmtpd openssl
  xvfb xauth
  qt6-svg-dev libqt6svg6
  trayer desktop-file-utils xdg-utils appstream dbus-x11
)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo=sudo
echo "Installing: ${missing[*]}"
$sudo apt-get update -q
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
