#!/usr/bin/env bash
# Installs what is missing, builds the program and starts it. Extra arguments
# go to the program. Without a display it runs headless.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target mirodate

args=("$@")
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    args=(--headless "${args[@]}")
fi
exec build/mirodate "${args[@]}"
