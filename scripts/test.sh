#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all tests: as released, compiled with clang,
# and under the sanitizers; and checks the style. Arguments ask for less.
set -euo pipefail

usage() {
    echo "usage: ./scripts/test.sh [--quick | release|clang|dev|asan|tsan...]"
    echo "Tests the presets named, by default all but dev, and then checks the style as well."
    echo "--quick tests as released and checks the formatting: for the daily round."
}

quick=false
presets=()
for argument in "$@"; do
    case "$argument" in
    release | clang | dev | asan | tsan) presets+=("$argument") ;;
    --quick) quick=true ;;
    -h | --help)
        usage
        exit 0
        ;;
    *)
        usage >&2
        exit 2
        ;;
    esac
done
if $quick && [ ${#presets[@]} -gt 0 ]; then
    usage >&2
    exit 2
fi
source "$(dirname "$0")/lib.sh"

# The style comes first: it takes less time to know than the tests.
check_style() {
    echo "== style =="
    ./scripts/check-style.sh "$@"
}

if $quick; then
    presets=(release)
    check_style --format
elif [ ${#presets[@]} -eq 0 ]; then
    presets=(release clang asan tsan)
    check_style
fi
packages=("${build_packages[@]}" libgtest-dev junit5 parallel procps
    python3-jsonschema chromium chromium-driver python3-selenium)
[[ " ${presets[*]} " != *" clang "* ]] || packages+=(clang)
install_missing "${packages[@]}"
for preset in "${presets[@]}"; do
    echo "== $preset =="
    configure "$preset" -DTARNEX_TESTS=ON
    cmake --build --preset "$preset" -- --quiet
    ctest --preset "$preset" -j "$(nproc)"
done
