#!/usr/bin/env bash
# Installs what is missing, builds the program and starts it on a demo store
# of its own (filled with a realistic month on first use, kept apart from
# your real calendar). With a display it opens a window; without one it runs
# headless and writes a screenshot. Extra arguments go to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target mirodate mirodate_lang_files mirodate_skins

demo="${MIRODATE_DEMO_STORE:-${XDG_DATA_HOME:-$HOME/.local/share}/mirodate-demo}"
build/mirodate --store "$demo" --demo   # leaves a store that has items alone

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    shot="$PWD/build/mirodate-demo.png"
    build/mirodate --store "$demo" --headless --screenshot "$shot" "$@"
    echo "No display: rendered headless to $shot"
else
    exec build/mirodate --store "$demo" "$@"
fi
