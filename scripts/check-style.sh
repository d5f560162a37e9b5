#!/usr/bin/env bash
# Checks formatting (clang-format) and the static analysis (clang-tidy) of the C++ code; the release
# preset must be configured.
set -euo pipefail
source "$(dirname "$0")/lib.sh"

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
git ls-files 'src/*.cpp' 'jni/*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy -p build --quiet
