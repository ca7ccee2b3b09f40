#!/usr/bin/env bash
# Draws the pictures of Docs/ anew: the open tab over the sample game on three screens. Needs no display.
source "$(dirname "$0")/prepare.sh"
install_packages
build release flarebox-hostgame
for size in 667x375 375x667 1024x768; do
    build/release/Examples/HostGame/flarebox-hostgame --headless --clock virtual --no-logging \
        --size "$size" --scale 2 --screenshot "Docs/tab-$size.png"
done
