# Sourced by the commands of this folder and the one above: installs what is missing and builds a preset. Needs bash.
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

# export_sanitizer_options: how the presets asan and tsan report. Dynamic thread-local storage is not intercepted: the check for leaks
# guesses its extent from the bytes before it, and when these bytes mean something else, it reads anywhere and crashes.
export_sanitizer_options() {
    export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:intercept_tls_get_addr=0
    export LSAN_OPTIONS=suppressions=$PWD/Tests/lsan.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1
    export TSAN_OPTIONS=suppressions=$PWD/Tests/tsan.supp:halt_on_error=1
}
