#!/usr/bin/env bash
# Draws the pictures of Docs/ anew: the open tab over the sample game on three screens, in a theme, with the ring of a game controller and
# with the inspector. Needs no display.
source "$(dirname "$0")/prepare.sh"
install_packages
build release flarebox-hostgame

# picture NAME OPTION...: after the commands of a script, if there are some on standard input.
picture() {
    local name=$1 script; shift
    script=$(mktemp)
    { echo "await idle 60"; echo "call open"; echo "wait 0.5"; echo "await idle 60"; cat; echo "screenshot Docs/$name.png"; } >"$script"
    build/release/Examples/HostGame/flarebox-hostgame --headless --clock virtual --no-logging --scale 2 --script "$script" "$@"
    rm "$script"
}

for size in 667x375 375x667 1024x768; do picture "tab-$size" --size "$size" </dev/null; done
picture theme --size 667x375 --scale 1.5 --theme Examples/Themes/daylight.xml </dev/null
picture inspector --size 667x375 --scale 1.5 --inspect </dev/null
picture focus --size 667x375 --scale 1.5 <<'SCRIPT'
call takeFocus
wait 0.3
key down
key right
SCRIPT
