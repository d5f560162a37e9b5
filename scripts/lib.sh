# Shared by the scripts of this folder; sourced, not run.

cd "$(dirname "${BASH_SOURCE[0]}")/.."

# install_missing PACKAGE...: installs the Debian packages that are not there yet.
install_missing() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "Please install, as root: apt-get install ${missing[*]}" >&2
            exit 1
        }
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# configure PRESET OPTION...: configures a build folder, afresh if the checkout was moved.
configure() {
    local preset=$1 folder=build cache fresh=()
    shift
    [ "$preset" = release ] || folder=build-$preset
    cache=$folder/CMakeCache.txt
    if [ -f "$cache" ] && ! [ "$(sed -n 's/^CMAKE_HOME_DIRECTORY:[^=]*=//p' "$cache")" -ef . ]; then
        fresh=(--fresh)
    fi
    cmake "${fresh[@]}" --preset "$preset" "$@" --log-level=WARNING >/dev/null
}

# quietly LOG COMMAND...: runs a command and shows what it printed only if it fails.
quietly() {
    local log=$1
    shift
    "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        exit 1
    }
}

build_packages=(g++ cmake ninja-build libcli11-dev libfmt-dev nlohmann-json3-dev libpugixml-dev
    libxxhash-dev node-d3)
if ! command -v javac >/dev/null; then
    build_packages+=(default-jdk-headless)
fi
