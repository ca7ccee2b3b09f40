#!/usr/bin/env bash
# Builds the release libraries with and without their optional pieces, strips them, and writes Docs/sizes.md. Fails when the kit
# without 3D and video takes more than 2.5 MB.
#   scripts/sizes.sh [JOBS]
source "$(dirname "$0")/prepare.sh"
install_packages
limit=2500000

# libraries NAME OPTION...: builds a shared release in build/sizes-NAME and strips what it would install into its folder `lib`.
libraries() {
    local folder=build/sizes-$1; shift
    cmake -S . -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Release -DFLAREBOX_SHARED=ON -DFLAREBOX_BUILD_TESTS=OFF \
        -DFLAREBOX_BUILD_EXAMPLES=OFF -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache)" "$@" >"$folder.log"
    cmake --build "$folder" ${jobs:+--parallel "$jobs"} >>"$folder.log"
    rm -rf "$folder/stripped"
    cmake --install "$folder" --prefix "$folder/stripped" --strip >>"$folder.log"
}
# bytes NAME LIBRARY
bytes() { stat -Lc %s build/sizes-"$1"/stripped/lib/lib"$2".so; }
# needs NAME LIBRARY: what it is linked with beyond the compiler's own libraries and the kit's.
needs() {
    objdump -p build/sizes-"$1"/stripped/lib/lib"$2".so | awk '/NEEDED/ { print $2 }' |
        grep -vE '^(libc|libm|libstdc\+\+|libgcc_s|ld-linux.*|libFlarebox)\.so' | sed -E 's/^lib|\.so.*$//g; s/-[0-9.]+$//' | sort |
        paste -sd, | sed "s/,/, /g"
}
row() { printf '| %s | %d | %s |\n' "$1" $((($2 + 500) / 1000)) "$3"; }

jobs=${1:-}
mkdir -p build
libraries core -DFLAREBOX_3D=OFF -DFLAREBOX_VIDEO=OFF
libraries 3d -DFLAREBOX_3D=ON -DFLAREBOX_VIDEO=OFF
libraries video -DFLAREBOX_3D=OFF -DFLAREBOX_VIDEO=ON
core=$(bytes core Flarebox)
# what_is_new NAME: libraries that the variant needs and the core does not.
what_is_new() {
    comm -13 <(needs core Flarebox | sed 's/, /\n/g') <(needs "$1" Flarebox | sed 's/, /\n/g') | paste -sd, | sed 's/,/, /g'
}
{
    echo "# Sizes"
    echo
    echo "Shared libraries, built with \`CMAKE_BUILD_TYPE=Release\` by $(c++ -dumpfullversion | sed 's/^/g++ /') for $(uname -m), stripped; in"
    echo "kilobytes of 1,000 bytes. Written by \`scripts/sizes.sh\`, which fails when the first row exceeds 2,500."
    echo
    echo "| Piece | KB | Linked with |"
    echo "|---|---|---|"
    row "\`libFlarebox.so\` without 3D and video" "$core" "$(needs core Flarebox)"
    row "3D (\`FLAREBOX_3D\`) adds" $(($(bytes 3d Flarebox) - core)) "$(what_is_new 3d)"
    row "Video (\`FLAREBOX_VIDEO\`) adds" $(($(bytes video Flarebox) - core)) "$(what_is_new video)"
    row "\`libFlareboxSDL.so\`, the host adapter for SDL2" "$(bytes core FlareboxSDL)" "$(needs core FlareboxSDL)"
    row "\`libFlareboxOpenGL.so\`, the one for OpenGL" "$(bytes core FlareboxOpenGL)" "nothing: the game brings its functions"
    row "\`libFlareboxHeadless.so\`, the one without a screen" "$(bytes core FlareboxHeadless)" "$(needs core FlareboxHeadless)"
    echo
    echo "The kit's layouts and texts are part of the first row. The libraries that it is linked with are the system's, or shipped beside it:"
    echo "[shipping.md](shipping.md) lists them with their licences."
} >Docs/sizes.md
sed -n '/^|/p' Docs/sizes.md
[ "$core" -le "$limit" ] || { echo "libFlarebox.so takes $core bytes, more than $limit" >&2; exit 1; }
