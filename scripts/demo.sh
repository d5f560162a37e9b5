#!/usr/bin/env bash
# Installs what is missing, builds the library and the jar, and places demands on a real backbone.
# With two arguments, a network file and a demand file, it places those.
set -euo pipefail
network=$(realpath "${1:-$(dirname "$0")/../examples/abilene/abilene.network}")
demands=$(realpath "${2:-$(dirname "$0")/../examples/abilene/abilene.demands}")
source "$(dirname "$0")/lib.sh"

install_missing "${build_packages[@]}"
cmake --preset release -DTARNEX_TESTS=OFF --log-level=WARNING >/dev/null
cmake --build --preset release -- --quiet

classes=build/examples
mkdir -p "$classes"
javac --release 17 -cp build/tarnex.jar -d "$classes" $(find examples/java -name '*.java')
java -cp "build/tarnex.jar:$classes" org.kestro.examples.PlaceDemands "$network" "$demands"
