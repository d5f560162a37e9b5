#!/usr/bin/env bash
# Installs what is missing, builds the library and the jar, and places demands on a real backbone or
# on the network given.
set -euo pipefail

usage() {
    echo "usage: ./scripts/demo.sh [NETWORK DEMANDS...]"
    echo "Builds tarnex and places the demands, by default those of examples/abilene."
}

case "${1:-}" in
-h | --help)
    usage
    exit 0
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
[ $# -gt 0 ] || set -- "$PWD"/examples/abilene/abilene.{network,demands}

install_missing "${build_packages[@]}"
echo "Building..."
configure release -DTARNEX_TESTS=OFF
quietly build/demo.log cmake --build --preset release
classes=$PWD/build/examples
mkdir -p "$classes"
quietly build/demo.log javac --release 17 -cp build/tarnex.jar -d "$classes" \
    $(find examples/java -name '*.java')
class_path=$PWD/build/tarnex.jar:$classes
cd "$started_in"
java -cp "$class_path" org.kestro.examples.PlaceDemands "$@"
