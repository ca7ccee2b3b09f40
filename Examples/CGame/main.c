/* A game in C with the tab in it, drawn by a small software renderer: no window, one picture at the end.
 *
 *     flarebox-cgame SERVICE PICTURE.ppm */

#include <flarebox.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

enum {
    WIDTH = 667,
    HEIGHT = 375,
    SCALE = 2,
    PIXELS_WIDE = WIDTH * SCALE,
    PIXELS_HIGH = HEIGHT * SCALE,
    TEXTURES = 256
};

typedef struct texture {
    uint32_t *pixels;
    int32_t width, height;
} texture;

typedef struct game {
    texture textures[TEXTURES];
    uint32_t picture[PIXELS_WIDE * PIXELS_HIGH];
    bool is_open;
    int products, failures;
} game;

static game the_game;

/* --- The renderer --- */

static uint32_t create_texture(void *context, int32_t width, int32_t height) {
    game *g = context;
    for (uint32_t id = 1; id < TEXTURES; ++id) {
        if (g->textures[id].pixels) continue;
        uint32_t *pixels = calloc((size_t)width * (size_t)height, sizeof *pixels);
        if (!pixels) return 0;
        g->textures[id] = (texture){pixels, width, height};
        return id;
    }
    return 0;
}

static void update_texture(void *context, uint32_t id, int32_t x, int32_t y, int32_t width, int32_t height,
                           const uint32_t *pixels, int32_t stride) {
    texture *t = &((game *)context)->textures[id];
    for (int32_t row = 0; row < height; ++row)
        memcpy(t->pixels + (y + row) * t->width + x, pixels + row * stride, (size_t)width * sizeof *pixels);
}

static void destroy_texture(void *context, uint32_t id) {
    texture *t = &((game *)context)->textures[id];
    free(t->pixels);
    *t = (texture){0};
}

static int32_t between(double value, int32_t least, int32_t most) {
    return value < least ? least : value > most ? most : (int32_t)value;
}

/* A pixel with its colour multiplied by its alpha over another, `opacity` from 0 to 256. */
static uint32_t over(uint32_t above, uint32_t below, uint32_t opacity) {
    const uint32_t rest = 256 - ((above >> 24) * opacity + 127) / 255;
    uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const uint32_t sum = ((above >> shift & 255) * opacity + (below >> shift & 255) * rest) >> 8;
        result |= (sum > 255 ? 255 : sum) << shift;
    }
    return result;
}

/* The nearest pixel is enough for bitmaps that are as large as they are shown. */
static void draw_quad(void *context, const flarebox_quad *quad) {
    game *g = context;
    const texture *t = &g->textures[quad->texture];
    const flarebox_rect to = quad->destination, clip = quad->clip;
    const int32_t left = between(to.x > clip.x ? to.x : clip.x, 0, PIXELS_WIDE);
    const int32_t top = between(to.y > clip.y ? to.y : clip.y, 0, PIXELS_HIGH);
    const double right = to.x + to.width < clip.x + clip.width ? to.x + to.width : clip.x + clip.width;
    const double bottom = to.y + to.height < clip.y + clip.height ? to.y + to.height : clip.y + clip.height;
    for (int32_t y = top; y < between(bottom, 0, PIXELS_HIGH); ++y) {
        for (int32_t x = left; x < between(right, 0, PIXELS_WIDE); ++x) {
            const int32_t u = between((x + 0.5 - to.x) / to.width * quad->source_width, 0, quad->source_width - 1);
            const int32_t v = between((y + 0.5 - to.y) / to.height * quad->source_height, 0, quad->source_height - 1);
            uint32_t *pixel = &g->picture[y * PIXELS_WIDE + x];
            *pixel = over(t->pixels[(quad->source_y + v) * t->width + quad->source_x + u], *pixel,
                          (uint32_t)(quad->opacity * 256));
        }
    }
}

/* --- The game --- */

static void opened(void *context, flarebox_tab *tab) {
    (void)tab;
    ((game *)context)->is_open = true;
}

static void asset_selected(void *context, flarebox_tab *tab, const char *uid, const char *title) {
    (void)tab;
    ++((game *)context)->products;
    printf("%s: %s\n", uid, title);
}

static void load_failed(void *context, flarebox_tab *tab, const char *domain, int32_t code, const char *reason) {
    (void)tab;
    ++((game *)context)->failures;
    fprintf(stderr, "nothing to show (%s %d): %s\n", domain, (int)code, reason);
}

static void draw_frame(game *g, flarebox_host *host) {
    flarebox_host_update(host, 0.004);
    /* Nothing of this game moves: the picture is made anew when the panel has changed. */
    if (flarebox_host_needs_display(host)) {
        for (size_t i = 0; i < sizeof g->picture / sizeof *g->picture; ++i) g->picture[i] = 0xFF284678;
        flarebox_host_draw(host);
    }
    nanosleep(&(struct timespec){0, 16000000}, NULL);
}

static bool write_picture(const game *g, const char *path) {
    FILE *file = fopen(path, "wb");
    if (!file) return false;
    fprintf(file, "P6\n%d %d\n255\n", PIXELS_WIDE, PIXELS_HIGH);
    for (size_t i = 0; i < sizeof g->picture / sizeof *g->picture; ++i) {
        const uint32_t pixel = g->picture[i];
        fputc((int)(pixel >> 16 & 255), file);
        fputc((int)(pixel >> 8 & 255), file);
        fputc((int)(pixel & 255), file);
    }
    return fclose(file) == 0;
}

static int play(game *g, flarebox_host *host, const char *picture) {
    flarebox_tab *tab = flarebox_tab_create();
    flarebox_observer observer = FLAREBOX_OBSERVER;
    observer.context = g;
    observer.opened = opened;
    observer.asset_selected = asset_selected;
    observer.load_failed = load_failed;
    flarebox_tab_set_observer(tab, &observer);
    if (flarebox_tab_show(tab) != FLAREBOX_OK) {
        fprintf(stderr, "no tab: %s\n", flarebox_last_error());
        return 1;
    }
    for (int frame = 0; frame < 3600 && !g->products && !g->failures; ++frame) draw_frame(g, host);
    for (int frame = 0; frame < 30; ++frame) draw_frame(g, host);
    /* A touch on the open button, which sticks out of the left edge. */
    flarebox_host_pointer_down(host, 0, 10, HEIGHT / 2.0);
    flarebox_host_pointer_up(host, 0, 10, HEIGHT / 2.0);
    for (int frame = 0; frame < 120; ++frame) draw_frame(g, host);
    const bool is_written = write_picture(g, picture);
    flarebox_tab_destroy(tab);
    return g->is_open && g->products && is_written ? 0 : 1;
}

int main(int count, char **arguments) {
    if (count != 3) {
        fprintf(stderr, "usage: flarebox-cgame SERVICE PICTURE.ppm\n");
        return 2;
    }
    flarebox_renderer renderer = FLAREBOX_RENDERER;
    renderer.context = &the_game;
    renderer.create_texture = create_texture;
    renderer.update_texture = update_texture;
    renderer.destroy_texture = destroy_texture;
    renderer.draw_quad = draw_quad;
    flarebox_host *host = flarebox_host_create(WIDTH, HEIGHT, SCALE, &renderer);
    if (!host) {
        fprintf(stderr, "no host: %s\n", flarebox_last_error());
        return 1;
    }
    flarebox_configuration configuration = FLAREBOX_CONFIGURATION;
    configuration.game_uid = "c-game";
    configuration.game_version = "1.0";
    configuration.api_url = arguments[1];
    configuration.device_id = "6F9619FF-8B86-D011-B42D-00C04FC964FF";
    flarebox_configure(&configuration);
    const int status = play(&the_game, host, arguments[2]);
    flarebox_host_destroy(host);
    return status;
}
