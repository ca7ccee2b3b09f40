#!/usr/bin/env bash
# Builds what is portable of the kit, without any library, for other compilers and machines: with clang, as 32-bit and for Windows;
# runs the small program of Examples/BarePort and its own tests (Tests/Portable) wherever they run here, and ends with a table. Not
# one warning is let pass.
#   scripts/portability.sh                  all of them
#   scripts/portability.sh clang windows    these only: gcc, clang, 32-bit, windows
# Programs for Windows run where Wine is installed (Debian: wine64 and wine).
source "$(dirname "$0")/prepare.sh"
install_packages scripts/packages-portability.txt
export WINEDEBUG=-all WINEPREFIX="$PWD/build/wine"

options_of() {
    case $1 in
        gcc) echo -DCMAKE_CXX_COMPILER=g++ ;;
        clang) echo -DCMAKE_CXX_COMPILER=clang++-16 ;;
        32-bit) echo -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_FLAGS=-m32 ;;
        windows) echo -DCMAKE_C_COMPILER=x86_64-w64-mingw32-gcc-posix -DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix \
            -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_EXE_LINKER_FLAGS=-static -DCMAKE_CROSSCOMPILING_EMULATOR=wine ;;
        *) echo "There is no target \"$1\": gcc, clang, 32-bit, windows." >&2; return 2 ;;
    esac
}

targets=("$@")
[ $# -gt 0 ] || targets=(gcc clang 32-bit windows)
failures=0 table=""
for target in "${targets[@]}"; do
    options=$(options_of "$target")
    folder=build/portable-$target log=build/portable-$target.log
    mkdir -p build
    built=failed ran="not tried"
    # shellcheck disable=SC2086
    if cmake -S Tests/Portable -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER_LAUNCHER=ccache $options >"$log" 2>&1 &&
        cmake --build "$folder" -- -k 0 >>"$log" 2>&1; then
        built="without warnings"
        if [ "$target" = windows ] && ! command -v wine >/dev/null; then
            ran="not here"
        elif ctest --test-dir "$folder" --verbose >>"$log" 2>&1; then
            ran="program and $(awk '/\[  PASSED  \]/ { passed += $(NF - 1) } END { print passed }' "$log") tests pass"
        else
            ran=failed
        fi
    fi
    [ "$built" != failed ] && [ "$ran" != failed ] || { failures=$((failures + 1)); tail -n 20 "$log" >&2; }
    table+=$(printf '%-10s %-18s %s' "$target" "$built" "$ran")$'\n'
done
printf '%-10s %-18s %s\n%s' target builds runs "$table"
exit $((failures > 0))
