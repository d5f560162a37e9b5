#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all tests: as released, and under the address
# and undefined-behaviour sanitizers. Arguments name other presets to test (release, dev, asan).
set -euo pipefail
source "$(dirname "$0")/lib.sh"

for preset in "$@"; do
    case "$preset" in
    release | dev | asan) ;;
    *)
        echo "usage: ./scripts/test.sh [release|dev|asan]..." >&2
        exit 2
        ;;
    esac
done
presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(release asan)
install_missing "${build_packages[@]}" libgtest-dev junit5
for preset in "${presets[@]}"; do
    echo "== $preset =="
    configure "$preset" -DTARNEX_TESTS=ON
    cmake --build --preset "$preset" -- --quiet
    ctest --preset "$preset"
done
