#!/usr/bin/env bash
# package.sh STEP SOURCE BUILD WORK: one test of what other projects get of the kit. `install` puts the kit that lies in BUILD into an
# empty prefix below WORK and moves it, `packages` makes Debian packages and unpacks them beside it; the other steps build games against
# these, out of the tree, and play them.
set -euo pipefail
step=$1 source=$2 build=$3 work=$4
here=$source/Tests/Package
prefix=$work/moved
unpacked=$work/packages/unpacked/usr
export HOME=$work/home XDG_CONFIG_HOME=$work/home/config XDG_DATA_HOME=$work/home/data
mkdir -p "$HOME"

fail() { echo "$*" >&2; exit 1; }
# The commands of Docs/shipping.md that begin with a word, down to the end of their block.
commands_of_page() { sed -n "/^$1 /,/^\`\`\`/p" "$source/Docs/shipping.md" | grep -v '^```'; }
version_part() { awk "/define FLAREBOX_VERSION_$1 / { print \$3 }" "$source/Flarebox/C/flarebox_version.h"; }
version=$(version_part MAJOR).$(version_part MINOR).$(version_part PATCH)
# What versions have in common that stand in for each other: before 1.0 the minor version as well.
interface=$(sed -E 's/^(0\.[0-9]+|[0-9]+)\..*/\1/' <<<"$version")
# the_same WHAT EXPECTED FOUND
the_same() { [ "$2" = "$3" ] || fail "$1 should be \"$2\" and is \"$3\""; }
fresh() { rm -rf "$1" && mkdir -p "$1"; }
quietly() { "$@" >"$work/$step.log" 2>&1 || { cat "$work/$step.log" >&2; fail "failed: $*"; }; }
play() { timeout 300 "$@" | grep -qx 'The tab is open.' || fail "$1 did not get its tab"; }
# options_of_build: the options for CMake by which another build makes the same objects.
options_of_build() { sed -nE 's/^((CMAKE_BUILD_TYPE|FLAREBOX_(3D|VIDEO|SDL|OPENGL)):.*)/-D\1/p' "$build/CMakeCache.txt"; }
# archive FOLDER KIT: makes the static libraries of the kit that is configured in the folder, in its part KIT, which is empty or ends in
# a slash. They are made of the objects in BUILD: compiling those once more takes minutes.
archive() {
    local library objects
    for library in Flarebox FlareboxHeadless FlareboxSDL FlareboxOpenGL; do
        mapfile -t objects < <(ninja -C "$1" -t commands -s "$2lib$library.a" | tr ' ' '\n' | sed -n "s,^$2\(.*\.o\)\$,\1,p")
        (cd "$build" && ar qc "$1/$2lib$library.a" "${objects[@]}")
    done
    strip --strip-debug "$1/$2"libFlarebox*.a
}
# find_package FOLDER PREFIX: builds games in a folder with what find_package finds in the prefix.
find_package() {
    fresh "$1"
    quietly cmake -S "$here/FindPackage" -B "$1" -G Ninja -DCMAKE_PREFIX_PATH="$2" -DGAME="$here/Game" -DEXAMPLES="$source/Examples"
    quietly cmake --build "$1"
    "$1/version" || fail "the library is of another version than flarebox.h"
    play "$1/headless-game"
}

case $step in
install)
    fresh "$work"
    quietly cmake --install "$build" --prefix "$work/first" --strip
    mv "$work/first" "$prefix"
    ! grep -rIl -e "$work" -e "$source" -e "$build" "$prefix" || fail "the files above know where they were built"
    ;;
symbols)
    for library in "$prefix"/lib*/libFlarebox*.so; do
        strangers=$(nm -DC --defined-only "$library" | cut -c 20- |
            grep -vE "^FLAREBOX_$interface\$|^flarebox_|^((non-)?virtual thunk to |(guard variable|VTT|vtable|typeinfo( name)?) for )?flarebox::" || true)
        [ -z "$strangers" ] || fail "$library shows what is not the kit's: $(head -n 5 <<<"$strangers")"
        the_same "the SONAME" "$(basename "$library").$interface" "$(objdump -p "$library" | awk '/SONAME/ { print $2 }')"
    done
    inside=$(nm -DC --defined-only "$prefix"/lib*/libFlarebox.so | grep -cE 'flarebox::(layout|LayerRenderer|CurlTransfer|Transport)' || true)
    fresh "$work/symbols"
    cp -L "$build/libFlarebox.so" "$work/symbols/libFlarebox.so.0.1.0"
    cd "$work/symbols"
    quietly bash -ec "$(commands_of_page objcopy)"
    [ "$(stat -c %s libFlarebox.so.0.1.0)" -lt "$(stat -c %s libFlarebox.so.0.1.0.debug)" ] || fail "stripping took nothing away"
    promised=$(sed -nE 's/^FLAREBOX_API [^(]*(flarebox_[a-z0-9_]+)\(.*/\1/p' "$source/Flarebox/C/flarebox.h" | sort)
    [ "$(wc -l <<<"$promised")" = "$(grep -c '^FLAREBOX_API ' "$source/Flarebox/C/flarebox.h")" ] || fail "flarebox.h cannot be read"
    missing=$(comm -23 <(cat <<<"$promised") <(nm -D --defined-only "$prefix"/lib*/libFlarebox.so | sed -nE 's/.* (flarebox_[a-z0-9_]+).*/\1/p' | sort))
    [ -z "$missing" ] || fail "libFlarebox.so does not show what flarebox.h promises: $missing"
    [ "$inside" = 0 ] || fail "libFlarebox.so shows $inside of its inner functions"
    ;;
packages)
    fresh "$work/packages"
    cd "$work/packages"
    quietly cpack --config "$build/CPackConfig.cmake" -B . -D CPACK_DEBIAN_COMPRESSION_TYPE=none
    runtime=libflarebox${interface}_${version}_$(dpkg --print-architecture).deb
    development=libflarebox-dev_${version}_$(dpkg --print-architecture).deb
    the_same "what cpack has written" "$(printf '%s\n' "$development" "$runtime")" "$(ls -- *.deb)"

    for package in "$runtime" "$development"; do
        dpkg-deb --fsys-tarfile "$package" | tar t | grep -v '/$' >"$package.files"
        the_same "the version of $package" "$version" "$(dpkg-deb -f "$package" Version)"
        dpkg-deb -x "$package" unpacked
    done
    # Each file that is installed is in one of the packages.
    diff <(cd "$prefix" && find . ! -type d | sed 's,^\.,./usr,' | sort) <(sort ./*.files) || fail "the packages hold something else than the prefix"
    misplaced=$(grep -vE "/lib[^/]*\.so\.$interface(\.[0-9]+)?\$|/doc/libflarebox$interface/copyright\$" "$runtime.files" || true)
    [ -z "$misplaced" ] || fail "$runtime holds what only building needs: $misplaced"
    misplaced=$(grep -E "\.so\.[0-9]" "$development.files" || true)
    [ -z "$misplaced" ] || fail "$development holds what running needs: $misplaced"
    ! grep -rl -e "$source" -e "$build" -e "$work" unpacked || fail "the files above know where they were built"
    ! grep -rlI /usr/local unpacked || fail "the files above want something that no package installs"

    depends=$(dpkg-deb -f "$runtime" Depends)
    for library in libc6 libcairo2 libcurl4 libsdl2-2.0-0; do
        grep -qE "(^|, )$library " <<<"$depends" || fail "$runtime does not depend on $library, but on $depends"
    done
    the_same "what $development depends on" "libflarebox$interface (= $version), libsdl2-dev" "$(dpkg-deb -f "$development" Depends)"
    for library in libFlarebox libFlareboxHeadless libFlareboxOpenGL libFlareboxSDL; do
        echo "$library $interface libflarebox$interface (>= $version)"
    done >shlibs
    the_same "shlibs" "$(cat shlibs)" "$(dpkg-deb --ctrl-tarfile "$runtime" | tar xO ./shlibs)"
    ;;
find_package)
    # The packages are the stricter test of the two, where there are such packages.
    if [ -e "$unpacked" ]; then prefix=$unpacked; fi
    find_package "$work/find_package" "$prefix"
    ;;
static)
    fresh "$work/static"
    cd "$work/static"
    mapfile -t options < <(options_of_build)
    quietly cmake -S "$source" -B kit -G Ninja "${options[@]}" -DFLAREBOX_SHARED=OFF -DFLAREBOX_BUILD_TESTS=OFF -DFLAREBOX_BUILD_EXAMPLES=OFF
    archive "$work/static/kit" ""
    quietly cmake --install kit --prefix "$work/static/prefix"
    grep -q 'DEPENDS ".*libsdl2-dev.*libicu-dev' kit/CPackConfig.cmake || fail "the package of a static kit does not depend on what is in it"
    find_package "$work/static/games" "$work/static/prefix"

    PKG_CONFIG_PATH=$(dirname prefix/lib*/pkgconfig/flarebox.pc)
    export PKG_CONFIG_PATH
    # shellcheck disable=SC2046
    quietly gcc -std=c99 "$here/Game/version.c" -o version $(pkg-config --static --cflags --libs flarebox)
    ./version
    # shellcheck disable=SC2046
    quietly g++ "$(find games -name main.cpp.o)" -o game $(pkg-config --libs flarebox-headless)
    play ./game
    ;;
pkg-config)
    fresh "$work/pkg-config"
    cd "$work/pkg-config"
    PKG_CONFIG_PATH=$(dirname "$prefix"/lib*/pkgconfig/flarebox.pc)
    export PKG_CONFIG_PATH
    pkg-config --validate flarebox flarebox-headless flarebox-sdl flarebox-opengl
    # shellcheck disable=SC2046
    g++ -std=c++20 -Wall -Wextra -Werror "$here/Game/main.cpp" -o game $(pkg-config --cflags --libs flarebox-headless) -Wl,-rpath,'$ORIGIN'
    cp "$prefix"/lib*/libFlarebox.so."$interface" "$prefix"/lib*/libFlareboxHeadless.so."$interface" .
    play ./game
    # shellcheck disable=SC2046
    gcc -std=c99 -Wpedantic -Werror "$here/Game/version.c" -o version $(pkg-config --cflags --libs flarebox) -Wl,-rpath,'$ORIGIN'
    ./version
    cp "$source/Examples/HostGame/Integration.cpp" game.cpp
    quietly bash -ec "$(commands_of_page g++)"
    ;;
FetchContent)
    fetched=$work/FetchContent
    fresh "$fetched"
    mapfile -t options < <(options_of_build)
    quietly cmake -S "$here/FetchContent" -B "$fetched" -G Ninja -DFETCHCONTENT_SOURCE_DIR_FLAREBOX="$source" -DGAME="$here/Game" \
        "${options[@]}"
    cd "$fetched"
    if [ "${FLAREBOX_PACKAGE_FULL:-}" ]; then
        quietly ninja game
    else
        ninja -n game >/dev/null || fail "the kit that was fetched cannot be built"
        archive "$fetched" _deps/flarebox-build/
        compile=$(ninja -t commands game | grep -F -e "-c $here/Game/main.cpp")
        ! grep -E -e ' -([Wf]|DFLAREBOX|std=c\+\+[^2])' <<<"$compile" || fail "the kit has brought flags"
        mkdir -p "$(dirname "$(sed -E 's/.* -o ([^ ]+) .*/\1/' <<<"$compile")")"
        quietly bash -c "$compile"
        quietly bash -c "$(ninja -t commands -s game)"
    fi
    play "$fetched/game"
    # Nothing of the kit is installed with the game: it would complain that the kit was not built.
    fresh "$work/installed"
    DESTDIR=$work/installed quietly cmake --install "$fetched" --prefix /
    installed=$(cd "$work/installed" && find . -type f)
    [ "$installed" = ./bin/game ] || fail "the game's installation holds more than the game: $installed"
    ;;
*) fail "unknown step $step" ;;
esac
