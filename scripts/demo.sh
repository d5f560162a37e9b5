#!/usr/bin/env bash
# Installs what is missing, builds everything, and places and protects demands on a real backbone.
set -euo pipefail

usage() {
    echo "usage: ./scripts/demo.sh [--java [NETWORK DEMANDS...]]"
    echo "Builds tarnex, then places and protects the demands of examples/abilene with the command."
    echo "--java does it with the Java example, or places the given demands on the given network."
}

with_java=false
case "${1:-}" in
"") ;;
--java)
    with_java=true
    shift
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
if [ $# -eq 1 ]; then
    usage >&2
    exit 2
fi
for file in "$@"; do
    [ -e "$file" ] || {
        echo "cannot read $file: no such file" >&2
        exit 1
    }
done
started_in=$PWD
source "$(dirname "$0")/lib.sh"

install_missing "${build_packages[@]}"
echo "Building..."
configure release -DTARNEX_TESTS=OFF
quietly build/demo.log cmake --build --preset release

# with_command: places the demands of the example, and says what to try next.
with_command() {
    local place=(place examples/abilene/abilene.network --demands examples/abilene/abilene.demands
        --order given --protect local-or-global --save build/abilene.json) status=0
    echo "\$ build/tarnex ${place[*]}"
    build/tarnex "${place[@]}" || status=$?
    [ "$status" -le 1 ] || exit "$status" # 1: some demands were refused, as is meant here
    cat <<'NEXT'

Try next:
  build/tarnex place examples/abilene/abilene.network --demands examples/abilene/abilene.demands --list refusals
  build/tarnex explain build/abilene.json Seattle Chicago 2G --class data --level gold
  build/tarnex verify build/abilene.json
  build/tarnex help
NEXT
}

# in_java NETWORK DEMANDS...: the same with the Java example.
in_java() {
    local classes=$PWD/build/examples
    [ $# -gt 0 ] || set -- "$PWD"/examples/abilene/abilene.{network,demands}
    mkdir -p "$classes"
    quietly build/demo.log javac --release 17 -cp build/tarnex.jar -d "$classes" \
        $(find examples/java -name '*.java')
    local class_path=$PWD/build/tarnex.jar:$classes
    cd "$started_in"
    java -cp "$class_path" org.kestro.examples.PlaceDemands "$@"
}

if $with_java; then
    in_java "$@"
else
    with_command
fi
