#!/usr/bin/env bash
# Builds what is portable of the kit, without any library (Examples/BarePort), for other compilers and machines: with clang, as 32-bit
# and for Windows; runs it wherever that works here, and ends with a table. Not one warning is let pass.
#   scripts/portability.sh                  all of them
#   scripts/portability.sh clang windows    these only: gcc, clang, 32-bit, windows
# Programs for Windows run where Wine is installed.
source "$(dirname "$0")/prepare.sh"
install_packages scripts/packages-portability.txt

options_of() {
    case $1 in
        gcc) echo -DCMAKE_CXX_COMPILER=g++ ;;
        clang) echo -DCMAKE_CXX_COMPILER=clang++-16 ;;
        32-bit) echo -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_FLAGS=-m32 ;;
        windows) echo -DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_EXE_LINKER_FLAGS=-static ;;
        *) echo "There is no target \"$1\": gcc, clang, 32-bit, windows." >&2; return 2 ;;
    esac
}

run() {
    if [ "$1" != windows ]; then
        "build/bare-$1/bareport"
    elif command -v wine >/dev/null; then
        WINEDEBUG=-all wine "build/bare-$1/bareport.exe"
    else
        return 77
    fi
}

targets=("$@")
[ $# -gt 0 ] || targets=(gcc clang 32-bit windows)
failures=0 table=""
for target in "${targets[@]}"; do
    options=$(options_of "$target")
    folder=build/bare-$target log=build/bare-$target.log
    mkdir -p build
    built=failed ran="not tried"
    # shellcheck disable=SC2086
    if cmake -S Examples/BarePort -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER_LAUNCHER=ccache $options >"$log" 2>&1 &&
        cmake --build "$folder" >>"$log" 2>&1; then
        built="without warnings" status=0
        run "$target" >>"$log" 2>&1 || status=$?
        case $status in
            0) ran="as it should" ;;
            77) ran="not here" ;;
            *) ran=failed ;;
        esac
    fi
    [ "$built" != failed ] && [ "$ran" != failed ] || { failures=$((failures + 1)); tail -n 20 "$log" >&2; }
    table+=$(printf '%-10s %-18s %s' "$target" "$built" "$ran")$'\n'
done
printf '%-10s %-18s %s\n%s' target builds runs "$table"
exit $((failures > 0))
