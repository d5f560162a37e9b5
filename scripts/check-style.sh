#!/usr/bin/env bash
# Checks formatting (clang-format) and the static analysis (clang-tidy) of the C++ code.
set -euo pipefail
source "$(dirname "$0")/lib.sh"

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
if [ ! -f build/compile_commands.json ]; then
    configure release -DTARNEX_TESTS=OFF
    quietly build/style.log cmake --build --preset release --target tarnex_classes # the JNI header
fi
git ls-files 'src/*.cpp' 'jni/*.cpp' |
    xargs -P "$(nproc)" -n 4 clang-tidy -p build --quiet 2>&1 |
    { grep -vE '^[0-9]+ warnings? generated\.$' || true; }
echo "style: ok"
