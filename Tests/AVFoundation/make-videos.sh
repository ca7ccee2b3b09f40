#!/usr/bin/env bash
# Makes the videos of Tests/AVFoundation/Media anew. Needs gst-launch-1.0 with the encoders of
# gstreamer1.0-plugins-good, -ugly (x264enc) and -libav (avenc_aac); the tests themselves need none of them.
#
# Each shows red for a second, then green, then blue, 160 x 90 at 15 frames a second, with a tone; so that a test can
# tell from a pixel where in the video it is.
set -euo pipefail
cd "$(dirname "$0")/Media"

readonly size=${SIZE:-width=160,height=90}

# pictures SECONDS-PER-COLOUR: one element chain for each colour, joined.
pictures() {
    for color in 0xffff0000 0xff00ff00 0xff0000ff; do
        echo "videotestsrc num-buffers=15 pattern=solid-color foreground-color=$color !" \
             "video/x-raw,framerate=15/1,$size ! pictures."
    done
}
tone="audiotestsrc num-buffers=130 samplesperbuffer=1024 volume=0.1 ! audio/x-raw,rate=44100,channels=1 ! audioconvert"

# shellcheck disable=SC2046 # the chains are words of the command
make() {
    local file=$1 pictures=$2
    shift 2
    gst-launch-1.0 -q $pictures "$@" ! filesink location="$file"
}

h264="x264enc key-int-max=15 bframes=0 speed-preset=veryslow"
make colors.mp4 "$(pictures)" concat name=pictures ! videoconvert ! video/x-raw,format=I420 ! $h264 ! \
    video/x-h264,profile=main ! mux. $tone ! avenc_aac bitrate=24000 ! mux. mp4mux name=mux faststart=true
# With its table at the end, and so unplayable before the end is there.
make colors-table-last.mp4 "$(pictures)" concat name=pictures ! videoconvert ! video/x-raw,format=I420 ! $h264 ! \
    video/x-h264,profile=main ! mux. mp4mux name=mux
make colors.webm "$(pictures)" concat name=pictures ! videoconvert ! video/x-raw,format=I420 ! \
    vp9enc keyframe-max-dist=15 deadline=1 target-bitrate=64000 ! mux. \
    $tone ! audioresample ! audio/x-raw,rate=48000 ! opusenc bitrate=16000 ! mux. webmmux name=mux
# Only the tone.
gst-launch-1.0 -q $tone ! avenc_aac bitrate=24000 ! mp4mux faststart=true ! filesink location=sound-only.mp4
# Taller than wide, with pixels that are not square, and larger than any picture that is shown.
SIZE="" gst-launch-1.0 -q videotestsrc num-buffers=8 pattern=smpte ! \
    video/x-raw,framerate=8/1,width=90,height=160,pixel-aspect-ratio=2/1 ! videoconvert ! video/x-raw,format=I420 ! \
    $h264 ! mp4mux faststart=true ! filesink location=wide-pixels.mp4
gst-launch-1.0 -q videotestsrc num-buffers=4 pattern=solid-color foreground-color=0xffff0000 ! video/x-raw,framerate=4/1,width=2560,height=1440 ! \
    videoconvert ! video/x-raw,format=I420 ! $h264 ! mp4mux faststart=true ! filesink location=large.mp4
gst-launch-1.0 -q videotestsrc num-buffers=1 pattern=black ! video/x-raw,framerate=1/1,width=4160,height=4160 ! \
    videoconvert ! video/x-raw,format=I420 ! $h264 ! mp4mux faststart=true ! filesink location=too-large.mp4
ls -l
