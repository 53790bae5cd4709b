#!/usr/bin/env bash
# Lays out every C++ file of the tree with the checked-in .clang-format.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' | xargs clang-format -i
