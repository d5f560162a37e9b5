#!/usr/bin/env bash
# Fuzzes the core and the readers of files (libFuzzer, under sanitizers) and the native methods (in a
# JVM under -Xcheck:jni, the library under sanitizers), some minutes each.
set -euo pipefail
source "$(dirname "$0")/lib.sh"

formats=(sndlib sndlib-xml graphml gml repetita node-link dot matrix text)
everything=(core "${formats[@]}" documents failures native)
minutes=3
if [[ ${1:-} =~ ^[0-9]+$ ]]; then
    minutes=$1
    shift
fi
targets=("$@")
[ $# -gt 0 ] || targets=("${everything[@]}")
for target in "${targets[@]}"; do
    if [[ " ${everything[*]} " != *" $target "* ]]; then
        echo "usage: ./scripts/fuzz.sh [MINUTES] [${everything[*]}]" >&2
        exit 2
    fi
done
install_missing "${build_packages[@]}" libgtest-dev junit5 clang libclang-rt-dev

# fuzz TARGET PROGRAM OPTION-OR-FOLDER...: runs a program of build-fuzz/fuzz. Inputs that it finds
# are kept in build-fuzz/corpus-TARGET.
fuzz() {
    local target=$1 program=$2
    shift 2
    echo "== $target, $minutes min =="
    mkdir -p "build-fuzz/corpus-$target"
    ASAN_OPTIONS=malloc_context_size=3 "build-fuzz/fuzz/$program" \
        -max_total_time=$((60 * minutes)) -timeout=20 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix="build-fuzz/$target-" "build-fuzz/corpus-$target" "$@" 2>&1 |
        sed -E '/protection path found|ecommended dictionary|# Uses:|NEW_FUNC/d'
}

# The engine's standard output is not looked at, and its lines on standard error are left out.
fuzz_core() {
    local corpus=build-fuzz/corpus-core n
    mkdir -p $corpus
    for n in {1..32}; do # long sequences to start from
        [ -f $corpus/start$n ] || head -c 1500 /dev/urandom >$corpus/start$n
    done
    fuzz core core_fuzz -max_len=2000 -len_control=0 -close_fd_mask=1
}

# A reader starts from the extracts of every format: it is to refuse those of the others.
fuzz_format() {
    fuzz "$1" "fuzz_$1" -max_len=4096 tests/formats/extracts
}

fuzz_native() {
    local seed=${SEED:-$RANDOM} log=build-asan/native_methods.log
    echo "== native methods, $minutes min, SEED=$seed =="
    configure asan -DTARNEX_TESTS=ON
    cmake --build --preset asan --target jvm_tests -- --quiet
    TARNEX_FUZZ_SECONDS=$((60 * minutes)) TARNEX_FUZZ_SEED=$seed \
        ASAN_OPTIONS=handle_segv=0:detect_leaks=0 \
        build-asan/tests/jvm_tests --gtest_filter='Fuzz.Calls*' 2>&1 | tee "$log"
    if grep -qE '(WARNING|FATAL ERROR) in native method|WARNING: JNI' "$log"; then
        echo "the JVM's checks found something: see $log" >&2
        exit 1
    fi
}

configure fuzz
for target in "${targets[@]}"; do
    case $target in
    core)
        cmake --build --preset fuzz --target core_fuzz -- --quiet
        fuzz_core
        ;;
    native) fuzz_native ;;
    failures)
        cmake --build --preset fuzz --target fuzz_failures -- --quiet
        fuzz failures fuzz_failures -max_len=4000 fuzz/seeds/failures
        ;;
    documents)
        cmake --build --preset fuzz --target fuzz_documents -- --quiet
        fuzz documents fuzz_documents -max_len=4000 -dict=fuzz/document.dict fuzz/seeds/documents
        ;;
    *)
        cmake --build --preset fuzz --target "fuzz_$target" -- --quiet
        fuzz_format "$target"
        ;;
    esac
done
