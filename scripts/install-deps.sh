#!/usr/bin/env bash
# Installs every Debian package Mirodate needs to build, test and benchmark.
# Idempotent: packages already present are skipped, and `apt-get update` runs
# only when something is missing. Nothing is fetched from anywhere but apt.
set -euo pipefail

PACKAGES=(
    build-essential cmake ninja-build pkg-config ccache clang clang-format
    libsdl2-dev libcairo2-dev libpango1.0-dev fonts-dejavu-core
    libical-dev tzdata libicu-dev
    zlib1g-dev libminizip-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    xvfb xdotool imagemagick
    khal libpcre2-dev
    libnotify-dev dbus-daemon dbus-bin dunst
    radicale vdirsyncer python3
)

missing=()
for pkg in "${PACKAGES[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$pkg")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
