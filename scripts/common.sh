# Shared by the scripts beside it; sourced, not run.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# What building and testing needs on Debian 12.
build_packages=(g++ cmake ninja-build pkg-config zlib1g-dev libboost-dev liblua5.1-0-dev libcli11-dev libgtest-dev
                libstb-dev libsdl2-dev libimgui-dev libpng-dev libtinyobjloader-dev)

# Installs those of the named Debian packages that are missing; asks nothing of apt when all are there.
need_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing: ${missing[*]}" >&2
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
}

# Configures and builds one preset: build_preset NAME [TARGET ...]. Uses ccache where it is installed.
build_preset() {
    local preset=$1 target targets=()
    shift
    for target in "$@"; do targets+=(--target "$target"); done
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_NOHASHDIR=1
    fi
    local log
    log=$(cmake --preset "$preset" 2>&1) || { printf '%s\n' "$log" >&2; return 1; }
    cmake --build --preset "$preset" "${targets[@]}"
}
