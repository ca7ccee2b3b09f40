#!/usr/bin/env bash
# Makes the clips of the catalogue's products: make_videos.sh [FOLDER]
# Needs ffmpeg with libx264, libvpx and libopus, the Inter fonts, and the local service for the products' pictures. The
# clips are checked in, so this runs only after a change to how they are made.
set -euo pipefail
cd "$(dirname "$0")/../../.."
service=${SERVICE:-build/release/Examples/Service/flarebox-service}
out=$(realpath -m "${1:-Examples/Service/Content/videos}")
fonts=/usr/share/fonts/opentype/inter
work=$(mktemp -d)
port=18099
"$service" --port $port >/dev/null &
trap 'kill %1 2>/dev/null; rm -rf "$work"' EXIT
until curl -sf -o /dev/null "http://127.0.0.1:$port/media/icons/halo-one.png"; do sleep 0.1; done
mkdir -p "$out"

seconds=6 rate=25
frames=$((seconds * rate))
# A share of the way through, from 0 to 1, that starts and ends softly; and one that is there after two seconds.
slow="(0.5-0.5*cos(PI*on/$frames))"
soon="(0.5-0.5*cos(PI*min(on/(2.2*$rate)\,1)))"
# How near the camera is, and which point of the picture stays where it is, as parts of its sides.
declare -A zoom=([push]="1+0.13*$slow" [pull]="2.0-0.98*$soon+0.05*$slow" [glide]="1.15")
declare -A across=([push]="0.72" [pull]="0.76" [glide]="0.75*$slow")
declare -A down=([push]="0.5" [pull]="0.42" [glide]="0.5")

# clip NAME SUFFIX MOVE ROOT-HERTZ "BRAND" "TITLE" "LINE"
clip() {
    local name=$1 suffix=$2 move=$3 root=$4
    printf '%s' "$5" >"$work/brand"; printf '%s' "$6" >"$work/title"; printf '%s' "$7" >"$work/line"
    curl -sf -o "$work/picture.png" "http://127.0.0.1:$port/media/images/$name.png"
    # Texts rise and appear one after the other, and stay: the first and the last frame are looked at the longest.
    local text="expansion=none:x=36:fontcolor=white"
    appear() { echo "alpha='clip((t-$1)/0.7\,0\,1)':y=$2+18*(1-clip((t-$1)/0.7\,0\,1))"; }
    # Room for the words: the left edge of the studio goes on, and the light falls off there.
    local studio="scale=2160:-1:flags=lanczos,split[a][b];[b]crop=40:ih:0:0,scale=900:ih:flags=bicubic[room];[room][a]hstack,crop=2808:1580:0:0"
    local picture="$studio,scale=5616:3160,zoompan=z='${zoom[$move]}':x='(iw-iw/zoom)*${across[$move]}':y='(ih-ih/zoom)*${down[$move]}':d=$frames:s=640x360:fps=$rate"
    local light="(1-0.58*pow(1-X/W\,1.5))"
    local shade="format=gbrp,geq=r='r(X,Y)*$light':g='g(X,Y)*$light':b='b(X,Y)*$light',noise=alls=2:allf=t"
    local words="drawtext=fontfile=$fonts/Inter-SemiBold.otf:textfile=$work/brand:fontsize=15:$text:$(appear 1.6 138)"
    words+=",drawtext=fontfile=$fonts/Inter-Bold.otf:textfile=$work/title:fontsize=32:$text:$(appear 1.8 158)"
    words+=",drawtext=fontfile=$fonts/Inter-Regular.otf:textfile=$work/line:fontsize=16:$text:$(appear 2.1 200)"
    # A chord that swells, each voice a little out of time with the others.
    local sound=""
    for factor in 1 1.25 1.5 2 3; do
        sound+="+0.022*sin(2*PI*$root*$factor*t)*(0.7+0.3*sin(2*PI*t*0.$((RANDOM % 5 + 2))))/sqrt($factor)"
    done
    local codecs
    if [[ $suffix == mp4 ]]; then
        codecs=(-c:v libx264 -profile:v main -preset veryslow -crf 27 -c:a aac -b:a 64k -movflags +faststart)
    else
        codecs=(-c:v libvpx-vp9 -crf 38 -b:v 0 -row-mt 1 -cpu-used 2 -c:a libopus -b:a 40k)
    fi
    ffmpeg -hide_banner -loglevel error -y -i "$work/picture.png" -f lavfi -i "aevalsrc=0${sound}:s=48000:d=$seconds:c=stereo" \
        -filter_complex "[0:v]$picture,$shade,$words,format=yuv420p[v];[1:a]afade=in:d=1.2,afade=out:st=$((seconds - 2)):d=2[a]" \
        -map '[v]' -map '[a]' -r $rate -g $((2 * rate)) -t $seconds -map_metadata -1 -fflags +bitexact "${codecs[@]}" "$out/$name.$suffix"
    stat -c '%n: %s bytes' "$out/$name.$suffix"
}

RANDOM=7
clip halo-one mp4 push 110 "OVALUNE" "Halo One" "Forty hours of quiet."
clip volt-runner mp4 glide 146.8 "KESTROVA" "Volt Runner" "Gives back what you put in."
clip nightberry webm pull 130.8 "ZINGFALL" "Nightberry" "The last level, at 2 a.m."
clip meridian-40 mp4 pull 98 "MERROWICK" "Meridian 40" "Hear it when the house sleeps."
clip driftline webm glide 123.5 "PLANKEROO" "Driftline 8.25" "Seven plies of maple."
clip apex-wheel webm push 87.3 "GRIPTHORNE" "Apex R1" "Eight newton metres."
clip fieldpack webm pull 116.5 "THISTLEPEAK" "Fieldpack 22" "For the train, for the trail."
clip arc-lamp webm push 103.8 "LUMIQUILL" "Arc" "Evening begins at a touch."
clip solstice webm glide 138.6 "SUNDRELLA" "Solstice" "Made of recycled nets."
clip matchday webm push 155.6 "KESTROVA" "Matchday" "Keeps its line in the rain."
