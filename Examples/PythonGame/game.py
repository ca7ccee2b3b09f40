"""A game in Python with the tab in it: no window, one picture at the end.

    python3 game.py libFlarebox.so SERVICE PICTURE.ppm
"""

import ctypes
import sys
import time

import flarebox

WIDTH, HEIGHT = 667, 375
SKY = bytes((0x78, 0x46, 0x28, 0xFF))


class Canvas:
    """The game's renderer. A pixel is four bytes: blue, green, red, alpha, colours multiplied by the alpha."""

    def __init__(self):
        self.textures = {}
        self.picture = bytearray(SKY * (WIDTH * HEIGHT))
        # ctypes forgets callbacks that nobody holds.
        self.renderer = flarebox.make(
            flarebox.Renderer, create_texture=flarebox.Renderer.CreateTexture(self.create),
            update_texture=flarebox.Renderer.UpdateTexture(self.update),
            destroy_texture=flarebox.Renderer.DestroyTexture(self.destroy),
            draw_quad=flarebox.Renderer.DrawQuad(self.draw))

    def create(self, _, width, height):
        texture = max(self.textures, default=0) + 1
        self.textures[texture] = (bytearray(width * height * 4), width)
        return texture

    def update(self, _, texture, x, y, width, height, pixels, stride):
        data, wide = self.textures[texture]
        start = ctypes.addressof(pixels.contents)
        for row in range(height):
            at = ((y + row) * wide + x) * 4
            data[at:at + width * 4] = ctypes.string_at(start + row * stride * 4, width * 4)

    def destroy(self, _, texture):
        del self.textures[texture]

    def draw(self, _, quad):
        quad = quad.contents
        to, clip = quad.destination, quad.clip
        data, wide = self.textures[quad.texture]
        left, top = max(to.x, clip.x, 0), max(to.y, clip.y, 0)
        right, bottom = min(to.x + to.width, clip.x + clip.width, WIDTH), min(to.y + to.height, clip.y + clip.height, HEIGHT)
        for y in range(round(top), round(bottom)):
            v = quad.source_y + min(int((y + 0.5 - to.y) / to.height * quad.source_height), quad.source_height - 1)
            for x in range(round(left), round(right)):
                u = quad.source_x + min(int((x + 0.5 - to.x) / to.width * quad.source_width), quad.source_width - 1)
                self.blend((y * WIDTH + x) * 4, data, (v * wide + u) * 4, quad.opacity)

    def blend(self, to, data, at, opacity):
        alpha = data[at + 3] * opacity
        if alpha == 255:
            self.picture[to:to + 4] = data[at:at + 4]
        elif alpha > 0:
            for channel in range(4):
                below = self.picture[to + channel] * (255 - alpha) / 255
                self.picture[to + channel] = min(round(data[at + channel] * opacity + below), 255)

    def write(self, path):
        with open(path, "wb") as file:
            file.write(b"P6\n%d %d\n255\n" % (WIDTH, HEIGHT))
            rgb = bytearray(WIDTH * HEIGHT * 3)
            for channel in range(3):
                rgb[channel::3] = self.picture[2 - channel::4]
            file.write(rgb)


class Game:
    def __init__(self, kit):
        self.kit = kit
        self.canvas = Canvas()
        self.is_open, self.products, self.failure = False, [], None
        self.observer = flarebox.make(
            flarebox.Observer, opened=flarebox.Observer.Tab(self.opened),
            asset_selected=flarebox.Observer.Asset(self.selected), load_failed=flarebox.Observer.Failure(self.failed))
        self.host = kit.flarebox_host_create(WIDTH, HEIGHT, 1, ctypes.byref(self.canvas.renderer))
        if not self.host:
            sys.exit(f"no host: {kit.flarebox_last_error().decode()}")

    def opened(self, _, tab):
        self.is_open = self.kit.flarebox_tab_is_open(tab)

    def selected(self, _, tab, uid, title):
        self.products.append(title.decode())
        print(f"{uid.decode()}: {title.decode()}")

    def failed(self, _, tab, domain, code, reason):
        self.failure = reason.decode()

    def frames(self, count, is_enough=lambda: False):
        for _ in range(count):
            if is_enough():
                break
            self.kit.flarebox_host_update(self.host, 0.004)
            time.sleep(0.016)

    def play(self, picture):
        kit, host = self.kit, self.host
        tab = kit.flarebox_tab_create()
        kit.flarebox_tab_set_observer(tab, ctypes.byref(self.observer))
        kit.flarebox_tab_show(tab)
        self.frames(3600, lambda: self.products or self.failure)
        self.frames(30)
        # A touch on the open button, which sticks out of the left edge.
        kit.flarebox_host_pointer_down(host, 0, 10, HEIGHT / 2)
        kit.flarebox_host_pointer_up(host, 0, 10, HEIGHT / 2)
        self.frames(120)
        kit.flarebox_host_draw(host)
        self.canvas.write(picture)
        kit.flarebox_tab_destroy(tab)
        kit.flarebox_host_destroy(host)
        if self.failure or not (self.is_open and self.products):
            sys.exit(f"the tab was not there: {self.failure}")
        if self.canvas.textures:
            sys.exit("the panel has left textures behind")


def main():
    if len(sys.argv) != 4:
        sys.exit("usage: game.py libFlarebox.so SERVICE PICTURE.ppm")
    kit = flarebox.load(sys.argv[1])
    game = Game(kit)
    configuration = flarebox.make(flarebox.Configuration, game_uid=b"python-game", game_version=b"1.0",
                                  api_url=sys.argv[2].encode(), device_id=b"6F9619FF-8B86-D011-B42D-00C04FC964FF")
    kit.flarebox_configure(ctypes.byref(configuration))
    game.play(sys.argv[3])


main()
