#!/usr/bin/env bash
# Draws every state of the tab on four screens into one sheet, Docs/states.png, and every model of the sample products
# into another, Docs/models.png, both in 256 colours, which makes them a third as large. Needs no display. Another folder may be named instead.
source "$(dirname "$0")/prepare.sh"
install_packages scripts/packages-pictures.txt
build release flarebox-hostgame flarebox-contactsheet
examples="$PWD/build/release/Examples"
scripts="$PWD/Examples/ContactSheet"
out=$(realpath "${1:-Docs}")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for size in 667x375 375x667 1024x768 1366x1024; do
    mkdir "$folder/$size"
    cd "$folder/$size"
    for script in states tracking; do
        options=()
        [[ $script == tracking ]] && options=(--tracking off)
        "$examples/HostGame/flarebox-hostgame" --headless --clock virtual --no-logging --size "$size" --scale 1 --script "$scripts/$script.script" "${options[@]}" >/dev/null
    done
done
mkdir "$folder/Models"
cd "$folder/Models"
"$examples/HostGame/flarebox-hostgame" --headless --clock virtual --no-logging --size 667x375 --scale 1 --script "$scripts/models.script" >/dev/null
"$examples/ContactSheet/flarebox-contactsheet" "$out/states.png" "$folder"/{667x375,375x667,1024x768,1366x1024}
"$examples/ContactSheet/flarebox-contactsheet" "$out/models.png" "$folder/Models"
pngquant --force --ext .png --nofs --speed 1 256 "$out/states.png" "$out/models.png"
