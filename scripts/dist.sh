#!/usr/bin/env bash
# Makes the jars to give away, with libraries for x86-64 and aarch64, in build-dist/dist/.
set -euo pipefail

if [ $# -gt 0 ]; then
    echo "usage: ./scripts/dist.sh"
    echo "Tests the library for aarch64 under QEMU, then makes the jar with the libraries for both"
    echo "machines, its sources, its Javadoc and its pom, in build-dist/dist/."
    [ "$1" = --help ] || [ "$1" = -h ] || exit 2
    exit 0
fi
"$(dirname "$0")/cross-aarch64.sh"
source "$(dirname "$0")/lib.sh"

echo "== dist =="
configure dist
quietly build-dist/dist.log cmake --build --preset dist
ls build-dist/dist
