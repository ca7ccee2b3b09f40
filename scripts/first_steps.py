"""The newcomer of scripts/first-steps.sh.

    first_steps.py steps                              makes a shell script of a page's steps (standard input, as pages.py walks it)
    first_steps.py play ROOM SCREEN OUT PROCESS       watches the steps in ROOM, and uses the game that they start, by the pictures of SCREEN
"""

import json
import os
import pathlib
import struct
import subprocess
import sys
import time
import zlib

GAME = "./build/my-game"
#: What the page's game draws itself: its background and its square.
OWN_COLORS = {(40, 70, 120), (240, 180, 60)}
PATIENCE = 60

PLAY = f"""until (: >/dev/tcp/127.0.0.1/8080) 2>/dev/null; do sleep 0.1; done
step playing
times | tail -n 1 >/processor
{GAME} 2>&1 | tee /game.log & sleep 0.1
until [ -e /seen ]; do sleep 0.1; done
kill -TERM $(pidof my-game)
wait %%
"""


def steps(walk):
    lines = ["set -euo pipefail", "step() { date +%s.%N >/\"$1\"; }", "cd /root/my-game", "step begun"]
    for part in walk:
        if "file" in part:
            lines += [f"cat >'{part['file']}' <<'END OF FILE'", part["text"] + "END OF FILE"]
            continue
        for line in part["commands"].splitlines():
            if line == GAME:
                lines.append(PLAY)
            else:
                lines += [f"echo '+ {line}'", line, f"step 'after_{len(lines)}'"]
    return "\n".join(lines + ["kill $(jobs -p) || true"])


class Screen:
    """The frame buffer of the X server, a file in XWD's format."""

    def __init__(self, path):
        data = path.read_bytes()
        header = struct.unpack(">25I", data[:100])
        self.width, self.height, self.stride, colors = header[4], header[5], header[12], header[19]
        self.pixels = data[header[0] + colors * 12:]

    def row(self, y):
        line = self.pixels[y * self.stride:y * self.stride + self.width * 4]
        return list(zip(line[2::4], line[1::4], line[0::4]))

    def foreign(self):
        """Places of the pixels that the game has not drawn."""
        return [(x, y) for y in range(self.height) for x, color in enumerate(self.row(y)) if color not in OWN_COLORS]

    def write_png(self, path):
        rows = b"".join(b"\0" + bytes(part for color in self.row(y) for part in color) for y in range(self.height))
        chunks = ((b"IHDR", struct.pack(">2I5B", self.width, self.height, 8, 2, 0, 0, 0)), (b"IDAT", zlib.compress(rows)), (b"IEND", b""))
        path.write_bytes(b"\x89PNG\r\n\x1a\n" + b"".join(
            struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data)) for kind, data in chunks))


def is_alive(process):
    try:
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


def await_screen(path, condition, what):
    """The first picture that fulfils the condition."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        screen = Screen(path)
        if condition(screen):
            return screen
        time.sleep(0.5)
    screen.write_png(OUT / "failed.png")
    raise SystemExit(f"The screen never shows {what}: {OUT}/failed.png")


def shows_button(screen):
    return screen.row(1)[900] in OWN_COLORS and 100 < len(screen.foreign()) < 40_000


def shows_products(screen):
    """The panel, with pictures in it: more colours than a panel without."""
    places = screen.foreign()
    return len(places) > 100_000 and len({screen.row(y)[x] for x, y in places[::37]}) > 500


def play(room, path, process):
    while not (room / "playing").exists():
        if not is_alive(process):
            raise SystemExit("The page's steps do not lead to the game.")
        time.sleep(0.5)
    closed = await_screen(path, shows_button, "the tab's button over the game")
    closed.write_png(OUT / "closed.png")
    places = closed.foreign()
    middle = [sum(place[axis] for place in places) // len(places) for axis in (0, 1)]
    subprocess.run(["xdotool", "mousemove", *map(str, middle), "click", "1"], env={**os.environ, "DISPLAY": ":77"}, check=True)
    await_screen(path, shows_products, "the open tab with its products").write_png(OUT / "open.png")
    ended = time.time()
    (room / "seen").touch()
    report(room, ended)


def report(room, ended):
    times = {step.name: float(step.read_text()) for step in [room / "begun", room / "playing", *room.glob("after_*")]}
    before = times["begun"]
    for name, moment in sorted(times.items(), key=lambda item: item[1]):
        if moment > before:
            print(f"{name:>10}: {moment - before:6.1f} s")
        before = moment
    processor = (room / "processor").read_text().strip()
    print(f"From nothing to the tab: {(ended - times['begun']) / 60:.1f} minutes, of the processors (program, system) {processor}; pictures in {OUT}")


if __name__ == "__main__":
    if sys.argv[1:] == ["steps"]:
        print(steps(json.load(sys.stdin)))
    elif len(sys.argv) == 6 and sys.argv[1] == "play":
        OUT = pathlib.Path(sys.argv[4])
        play(pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]), int(sys.argv[5]))
    else:
        raise SystemExit(__doc__)
