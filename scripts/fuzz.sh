#!/usr/bin/env bash
# Fuzzes the core (libFuzzer, under sanitizers) and then the native methods (in a JVM under
# -Xcheck:jni, the library under sanitizers), some minutes each.
set -euo pipefail
source "$(dirname "$0")/lib.sh"

minutes=${1:-3}
if [[ ! $minutes =~ ^[0-9]+$ ]]; then
    echo "usage: ./scripts/fuzz.sh [MINUTES]" >&2
    exit 2
fi
install_missing "${build_packages[@]}" libgtest-dev junit5 clang libclang-rt-dev

echo "== core, $minutes min =="
configure fuzz
cmake --build --preset fuzz -- --quiet
mkdir -p build-fuzz/corpus
for n in {1..32}; do # long sequences to start from
    [ -f build-fuzz/corpus/start$n ] || head -c 1500 /dev/urandom >build-fuzz/corpus/start$n
done
# What the engine prints on standard output is not looked at; its lines on standard error are left
# out.
ASAN_OPTIONS=malloc_context_size=3 build-fuzz/tests/fuzz/core_fuzz -max_total_time=$((60 * minutes)) \
    -max_len=2000 -len_control=0 -close_fd_mask=1 -print_final_stats=1 -verbosity=0 \
    -artifact_prefix=build-fuzz/ build-fuzz/corpus 2>&1 |
    sed -E '/protection path found|ecommended dictionary|# Uses:/d'
