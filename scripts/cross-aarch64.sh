#!/usr/bin/env bash
# Builds the library for aarch64, runs the tests of the core and of engines under QEMU, and holds
# what they compute against this machine, bit by bit.
set -euo pipefail

if [ $# -gt 0 ]; then
    echo "usage: ./scripts/cross-aarch64.sh"
    echo "Builds build-aarch64/libtarnex.so, and tests it here under QEMU."
    [ "$1" = --help ] || [ "$1" = -h ] || exit 2
    exit 0
fi
source "$(dirname "$0")/lib.sh"

install_missing "${build_packages[@]}" libgtest-dev junit5 g++-aarch64-linux-gnu qemu-user
for preset in release aarch64; do
    echo "== $preset =="
    configure "$preset" -DTARNEX_TESTS=ON
done
cmake --build --preset release --target bits -- --quiet
cmake --build --preset aarch64 --target all bits -- --quiet
ctest --preset aarch64 -j "$(nproc)"

echo "== the same bits =="
build/tests/bits >build-aarch64/bits.here
qemu-aarch64 -L /usr/aarch64-linux-gnu build-aarch64/tests/bits >build-aarch64/bits.there
diff build-aarch64/bits.here build-aarch64/bits.there | head -5
echo "$(wc -l <build-aarch64/bits.here) lines of paths, scores and reservations are equal"
