#!/usr/bin/env bash
# Tries Docs/first-steps.md as somebody would to whom all of it is new: in a Debian 12 with nothing installed it makes the page's files, runs the
# page's commands, and plays the game that comes of it on a screen in memory. Fails when the tab is not on the screen, closed and then open.
# Prints how long it took; the pictures and the log are in build/first-steps. Tries the last commit. Needs root, as a chroot does.
#   scripts/first-steps.sh
# The empty Debian comes from where this machine's own packages come from, and is kept in build/first-steps/base for the next time.
source "$(dirname "$0")/prepare.sh"
[ "$(id -u)" = 0 ] || { echo "scripts/first-steps.sh needs root" >&2; exit 2; }
install_packages scripts/packages-first-steps.txt
out=$PWD/build/first-steps
base=$out/base room=$out/room
mkdir -p "$out"
rm -rf "${room:?}" "$out"/*.png "$out"/*.log

if ! [ -e "$base/complete" ]; then
    rm -rf "$base"
    mirror=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 'Created-By: Packages' | awk '$2 == "bookworm" { print $1; exit }')
    debootstrap --variant=minbase bookworm "$base" "${mirror:?no source of Debian 12 in the configuration of apt}" >"$out/debootstrap.log"
    touch "$base/complete"
fi
cp -a "$base" "$room"
rm -rf "$room"/etc/apt/sources.list*
cp -a /etc/apt/sources.list* "$room/etc/apt/"
echo force-unsafe-io >"$room/etc/dpkg/dpkg.cfg.d/room"  # nobody needs this Debian after a power cut
cp /etc/resolv.conf "$room/etc/"
apt-config dump | { grep -i '^Acquire::.*Proxy' || true; } >"$room/etc/apt/apt.conf.d/proxy"
mkdir -p "$room/repository" "$room/root/my-game"
python3 -B Tests/Docs/pages.py walk Docs/first-steps.md | python3 -B scripts/first_steps.py steps >"$room/steps"

screen=$(mktemp -d)
Xvfb :77 -screen 0 960x540x24 -fbdir "$screen" >"$out/screen.log" 2>&1 &
server=$!
trap 'kill $server; rm -rf "$screen" "$room"' EXIT

# In namespaces of its own: what it mounts and starts ends with it.
unshare --mount --pid --fork --kill-child bash -c '
    mount --bind "$1" "$2/repository"
    mount -t proc proc "$2/proc"
    mount --rbind /dev "$2/dev"
    exec chroot "$2" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DISPLAY=:77 DEBIAN_FRONTEND=noninteractive \
        FLAREBOX_REPOSITORY=/repository bash /steps' - "$PWD" "$room" >"$out/steps.log" 2>&1 &
newcomer=$!
python3 -B scripts/first_steps.py play "$room" "$screen/Xvfb_screen0" "$out" "$newcomer" || { tail -n 30 "$out/steps.log" >&2; kill "$newcomer" 2>/dev/null; exit 1; }
wait "$newcomer" || { tail -n 30 "$out/steps.log" >&2; exit 1; }
