#!/usr/bin/env bash
# Fuzzes the core and the readers of JSON documents (libFuzzer, under sanitizers) and then the native
# methods (in a JVM under -Xcheck:jni, the library under sanitizers), some minutes each.
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
ASAN_OPTIONS=malloc_context_size=3 build-fuzz/fuzz/core_fuzz -max_total_time=$((60 * minutes)) \
    -max_len=2000 -len_control=0 -close_fd_mask=1 -print_final_stats=1 -verbosity=0 \
    -artifact_prefix=build-fuzz/ build-fuzz/corpus 2>&1 |
    sed -E '/protection path found|ecommended dictionary|# Uses:/d'

echo "== JSON documents, $minutes min =="
mkdir -p build-fuzz/documents
build-fuzz/fuzz/fuzz_documents -max_total_time=$((60 * minutes)) -max_len=4000 \
    -dict=fuzz/document.dict -print_final_stats=1 -verbosity=0 -artifact_prefix=build-fuzz/ \
    build-fuzz/documents fuzz/seeds/documents 2>&1 | sed -E '/ecommended dictionary|# Uses:/d'

seed=${SEED:-$RANDOM}
echo "== native methods, $minutes min, SEED=$seed =="
configure asan -DTARNEX_TESTS=ON
cmake --build --preset asan --target jvm_tests -- --quiet
log=build-asan/native_methods.log
TARNEX_FUZZ_SECONDS=$((60 * minutes)) TARNEX_FUZZ_SEED=$seed \
    ASAN_OPTIONS=handle_segv=0:detect_leaks=0 \
    build-asan/tests/jvm_tests --gtest_filter='Fuzz.Calls*' 2>&1 | tee "$log"
if grep -qE '(WARNING|FATAL ERROR) in native method|WARNING: JNI' "$log"; then
    echo "the JVM's checks found something: see $log" >&2
    exit 1
fi
