#!/usr/bin/env bash
# Installs what is missing and checks the formatting of the C++ code (clang-format), the syntax of the
# page's scripts (node) and, of src/, jni/ and api/, what static analysis finds (clang-tidy).
set -euo pipefail

usage() {
    echo "usage: ./scripts/check-style.sh [--format] [--changed [COMMIT]]"
    echo "Checks all files; --format leaves out the static analysis, --changed the files that are as"
    echo "they were in COMMIT (the last one)."
}

analyse=true
since=
while [ $# -gt 0 ]; do
    case "$1" in
    --format) analyse=false ;;
    --changed)
        since=HEAD
        if [[ ${2:--} != -* ]]; then
            since=$2
            shift
        fi
        ;;
    -h | --help)
        usage
        exit 0
        ;;
    *)
        usage >&2
        exit 2
        ;;
    esac
    shift
done
source "$(dirname "$0")/lib.sh"

# files_to_check NAMES FOLDER...: the files to check, with such names (a regular expression).
files_to_check() {
    local names=$1
    shift
    if [ -n "$since" ]; then
        git diff --name-only --diff-filter=d "$since" -- "$@" &&
            git ls-files --others --exclude-standard -- "$@"
    else
        find "$@" -path './build*' -prune -o -type f -print
    fi | sed -nE "/$names$/p"
}

# note_version TOOL: says so if it is not of the version that the rules are for.
note_version() {
    local version
    version=$("$1" --version | grep -o 'version [0-9]*')
    [ "$version" = "version 14" ] ||
        echo "note: the rules are for $1 14; $version may judge otherwise" >&2
}

install_missing clang-format
note_version clang-format
to_format=$(files_to_check '\.(cpp|h)' .)
xargs -r clang-format --dry-run -Werror <<<"$to_format"

# The scripts of a page see each other's names; those of the two pages do not.
install_missing node-typescript
check_scripts() {
    tsc --noEmit --allowJs --checkJs --target es2022 --lib es2022,dom --noUnusedLocals \
        --noUnusedParameters --noImplicitReturns --noFallthroughCasesInSwitch "$@"
}
shopt -s extglob
check_scripts report/page/!(compare).js report/page/*.d.ts
check_scripts report/page/!(main|charts).js report/page/*.d.ts

if $analyse; then
    install_missing "${build_packages[@]}" clang-tidy
    note_version clang-tidy
    if [ -f build/CMakeCache.txt ]; then
        configure release
    else
        configure release -DTARNEX_TESTS=OFF
    fi
    quietly build/style.log cmake --build --preset release --target tarnex_classes # the JNI header
    # Headers get their turn with the files that include them, or if they changed themselves.
    to_analyse=$(files_to_check "\.(cpp${since:+|h})" src jni api)
    xargs -r -P "$(nproc)" -n 1 clang-tidy -p build --quiet <<<"$to_analyse" 2>&1 |
        { grep -vE 'warnings? generated\.$' || true; }
fi
echo "style: ok"
