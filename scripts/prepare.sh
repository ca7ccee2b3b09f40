# Sourced by ./run, ./test, ./bench, ./fuzz and ./faults: installs what is missing and builds a preset. Needs bash.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else
        echo "Missing packages can be installed by root or with sudo only: $*" >&2
        return 1
    fi
}

# install_packages [LIST...]: installs the packages of scripts/packages.txt and of further lists that this machine lacks; does
# nothing when none is missing.
install_packages() {
    command -v dpkg-query >/dev/null || { echo "Not a Debian system: install the counterparts of scripts/packages.txt yourself." >&2; return; }
    local missing=() package
    while read -r package; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done < <(grep -hv '^#' scripts/packages.txt "$@")
    [ ${#missing[@]} = 0 ] && return
    echo "Installing: ${missing[*]}" >&2
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]: configures when needed and builds; quiet unless something fails.
build() {
    local preset=$1; shift
    local log="build/$preset.log"
    mkdir -p build
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${*:+--target "$@"}; } >"$log" 2>&1; then
        grep -E 'error|Error|FAILED' "$log" | head -n 40 >&2 || true
        tail -n 20 "$log" >&2
        echo "The build failed; all of its output is in $log" >&2
        return 1
    fi
}
