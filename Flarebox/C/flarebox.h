/* Flarebox for C, and for every language that can call C.
 *
 *     flarebox_configuration configuration = FLAREBOX_CONFIGURATION;
 *     configuration.game_uid = "my-game";
 *     configuration.game_version = "1.0";
 *     flarebox_host *host = flarebox_host_create(960, 540, 2.0, &my_renderer);
 *     flarebox_configure(&configuration);
 *     flarebox_tab *tab = flarebox_tab_create();
 *     flarebox_tab_show(tab);
 *     ...each frame:
 *     if (flarebox_host_pointer_down(host, 0, x, y)) ...the panel's, not the game's
 *     flarebox_host_update(host, 0.004);
 *     flarebox_host_draw(host);
 *     ...at the end:
 *     flarebox_tab_destroy(tab);
 *     flarebox_host_destroy(host);
 *
 * The thread that makes the host is the main thread: all functions are for it, unless they say "any thread". Texts are
 * UTF-8 and end in a zero byte; those handed in are copied, those handed to a callback are gone after it. Null and
 * handles that have been destroyed are refused, never followed. No C++ exception leaves a function. */
#ifndef FLAREBOX_H
#define FLAREBOX_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "flarebox_version.h"

#if !defined(_WIN32)
/* Marks what the library shows. */
#define FLAREBOX_API __attribute__((visibility("default")))
#elif defined(FLAREBOX_STATIC)
#define FLAREBOX_API
#elif defined(FLAREBOX_BUILDING)
#define FLAREBOX_API __declspec(dllexport)
#else
#define FLAREBOX_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* How a call went. */
typedef enum flarebox_result {
    FLAREBOX_OK = 0,
    FLAREBOX_INVALID_ARGUMENT = 1, /* null, a struct of a size that never was, a number out of range */
    FLAREBOX_INVALID_HANDLE = 2,   /* null, or destroyed */
    FLAREBOX_WRONG_THREAD = 3,
    FLAREBOX_FAILED = 4 /* flarebox_last_error says why */
} flarebox_result;

/* Why the last function of this thread that did not succeed did not; "" before. Valid until the next call. Any thread.
 */
FLAREBOX_API const char* flarebox_last_error(void);
/* The version of the library, as "0.1.0". Any thread. */
FLAREBOX_API const char* flarebox_version(void);

/* --- Configuration ------------------------------------------------------------------------------------------------ */

/* Texts may be null: then the service is told null, or the kit decides. Later versions add fields at the end. */
typedef struct flarebox_configuration {
    size_t struct_size;       /* set by FLAREBOX_CONFIGURATION */
    const char* game_uid;     /* names the game to the service; without it nothing is loaded */
    const char* game_version; /* the same */
    /* The service's address, of http or https; null: that of the resources' Info.plist. Fixed by the first request. */
    const char* api_url;
    /* Folder of files in place of the kit's own; null: see FlareboxBundle.h. Fixed by the first call, or tab. */
    const char* resources;
    const char* documents;   /* folder for models, the kit's alone; null: the application's documents folder */
    const char* device_id;   /* advertising identifier; null: the kit makes one where the player allows it */
    const char* first_name;  /* of the player, as far as the game knows and may tell; so are those that follow */
    const char* last_name;   /* family name */
    const char* sex;         /* as the service wants it written */
    const char* state;       /* part of the country */
    const char* city;        /* where the player lives */
    const char* country;     /* as the service wants it written */
    int32_t age;             /* in years, not less than 0; 0: unknown */
    int32_t refresh_seconds; /* between two lists, not less than 0; 0: 180 */
    bool enable_logging;     /* false: nothing is logged, whatever the level */
    uint32_t log_level;      /* 1 everything, 2 warnings and errors, 3 errors */
} flarebox_configuration;

/* Starting values: nothing known, warnings and errors logged. */
#define FLAREBOX_CONFIGURATION \
    { sizeof(flarebox_configuration), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, true, 2 }

/* Before the first tab; a later call replaces everything that an earlier one said, fields that are null included. One
 * that says otherwise of what is fixed fails, and like one that is refused it changes nothing. Does not take the struct
 * over. */
FLAREBOX_API flarebox_result flarebox_configure(const flarebox_configuration* configuration);

/* Takes all messages from now on, in place of standard error; null: standard error again. Called on any thread, one
 * call at a time; levels as above. Any thread. */
typedef void (*flarebox_log_sink)(void* context, int32_t level, const char* message);
/* `context` is handed to the sink. The former sink is not called any more once this returns. */
FLAREBOX_API flarebox_result flarebox_set_log_sink(flarebox_log_sink sink, void* context);

/* The look of a brand, from a theme file; null: the kit's own. Tabs follow at once. A file that cannot be read fails
 * and changes nothing; of one that can, what is wrong is left out and told in the log. */
FLAREBOX_API flarebox_result flarebox_set_theme(const char* file);

/* The switch for the sound of all videos. */
FLAREBOX_API flarebox_result flarebox_set_muted(bool muted);
/* False also where the call was refused. */
FLAREBOX_API bool flarebox_is_muted(void);

/* The player's languages in order of preference, such as "de-DE" or "en", before the first tab: texts that were looked
 * up stay as they are. None: those of the process's locale. */
FLAREBOX_API flarebox_result flarebox_set_languages(const char* const* languages, size_t count);

/* Whether the player lets the kit make an identifier of the device for advertising, in place of what the kit keeps
 * itself (true at first); for this process, from the next load on. Without it and without a device_id nothing is
 * loaded. */
FLAREBOX_API flarebox_result flarebox_set_tracking_allowed(bool allowed);

/* --- Links -------------------------------------------------------------------------------------------------------- */

/* Who opens links outside the game. Both are called on the main thread and must not block. */
typedef struct flarebox_url_opener {
    size_t struct_size;                               /* set by FLAREBOX_URL_OPENER */
    void* context;                                    /* handed to both */
    bool (*can_open)(void* context, const char* url); /* whether something is installed that takes such links */
    bool (*open)(void* context, const char* url);     /* true: it was handed on */
} flarebox_url_opener;

/* Starting values; both functions are needed. */
#define FLAREBOX_URL_OPENER \
    { sizeof(flarebox_url_opener), 0, 0, 0 }

/* Null: the desktop's own way. Lasts longer than a host; the former opener is not called any more once this returns. */
FLAREBOX_API flarebox_result flarebox_set_url_opener(const flarebox_url_opener* opener);
/* The only schemes that links may have, in lower case, in place of "http", "https" and "app-prefs". None: no link is
 * opened. */
FLAREBOX_API flarebox_result flarebox_set_schemes(const char* const* schemes, size_t count);
/* Opens a link as the panel does, without asking should_open_link: for one that was refused there, once the game has
 * paused. Fails where such links are not opened, or nothing opens this one. */
FLAREBOX_API flarebox_result flarebox_open_link(const char* url);

/* --- What the game has itself ------------------------------------------------------------------------------------- */

/* The picture of an address, decoded by the game: it is shown wherever a product names the address, and nothing is
 * downloaded. Pixels are 0xAARRGGBB in the machine's byte order, the colour multiplied by the alpha, in rows of
 * `stride` pixels from the top; both sides from 1 to 4096. They are copied, and kept until the host goes. Null pixels:
 * taken back. */
FLAREBOX_API flarebox_result flarebox_set_picture(const char* address, int32_t width, int32_t height, int32_t stride,
                                                  const uint32_t* pixels);

/* The game's own time for timers, animations and dates: it may stand still in a pause, or be moved by a test. Both are
 * called on any thread, also several at once. The budget of an update is real time nevertheless. */
typedef struct flarebox_clock {
    size_t struct_size;                       /* set by FLAREBOX_CLOCK */
    void* context;                            /* handed to both */
    double (*uptime)(void* context);          /* seconds since any moment; never goes back */
    double (*time_since_1970)(void* context); /* seconds since 1970-01-01 00:00:00 UTC */
} flarebox_clock;

/* Starting values; both functions are needed. */
#define FLAREBOX_CLOCK \
    { sizeof(flarebox_clock), 0, 0, 0 }

/* Null: the machine's own clock. What waits keeps the time that it has left; animations that run keep the moment at
 * which they began on the former clock, so set it before the first tab. The former clock is not called any more once
 * this returns. Not inside a function of a clock. */
FLAREBOX_API flarebox_result flarebox_set_clock(const flarebox_clock* clock);

/* How the network can be reached. */
typedef enum flarebox_network {
    FLAREBOX_NETWORK_SYSTEM = -2,  /* what the machine says */
    FLAREBOX_NETWORK_UNKNOWN = -1, /* not known yet: nothing is asked either */
    FLAREBOX_NETWORK_NONE = 0,     /* nothing is asked of the service */
    FLAREBOX_NETWORK_MOBILE = 1,   /* through a modem */
    FLAREBOX_NETWORK_WIFI = 2      /* or a cable */
} flarebox_network;

/* The network's state as the game knows it, in place of the kit's own look; again with each change: saying the same
 * again does nothing. Lasts until the host goes. */
FLAREBOX_API flarebox_result flarebox_set_network(int32_t network);

/* --- Host: screen, input, frames ---------------------------------------------------------------------------------- */

/* The game, as the kit sees it: one at a time. */
typedef struct flarebox_host flarebox_host;

/* A rectangle from its upper left corner; its right and lower edge are outside. */
typedef struct flarebox_rect {
    double x;      /* pixels to the right */
    double y;      /* pixels downwards */
    double width;  /* pixels */
    double height; /* pixels */
} flarebox_rect;

/* A rectangle to draw. All in pixels of the target; the part `source` of the texture is scaled into `destination` with
 * linear filtering and multiplied by the opacity, 0 to 1; nothing is drawn outside `clip`. */
typedef struct flarebox_quad {
    uint32_t texture;          /* as create_texture named it */
    int32_t source_x;          /* the part of the texture that is shown, in its pixels */
    int32_t source_y;          /* the same */
    int32_t source_width;      /* the same */
    int32_t source_height;     /* the same */
    flarebox_rect destination; /* where it goes; may lie between pixels */
    flarebox_rect clip;        /* what of it may be seen */
    float opacity;             /* 0 to 1 */
} flarebox_quad;

/* How the panel is drawn: textures and rectangles. The first four functions are needed, the others may be null. Called
 * only inside flarebox_host_draw, flarebox_host_release_textures and flarebox_host_destroy. */
typedef struct flarebox_renderer {
    size_t struct_size; /* set by FLAREBOX_RENDERER */
    void* context;      /* handed to every function */
    /* A texture of that many pixels; 0 when it cannot be made. */
    uint32_t (*create_texture)(void* context, int32_t width, int32_t height);
    /* Copies pixels into a part of a texture: 0xAARRGGBB in the machine's byte order, rows of `stride` pixels. */
    void (*update_texture)(void* context, uint32_t texture, int32_t x, int32_t y, int32_t width, int32_t height,
                           const uint32_t* pixels, int32_t stride);
    /* Gives a texture back; no rectangle names it any more. */
    void (*destroy_texture)(void* context, uint32_t texture);
    /* Over what was drawn before. The rectangle is gone after the call. */
    void (*draw_quad)(void* context, const flarebox_quad* quad);
    void (*begin_frame)(void* context); /* before the first rectangle of a frame, after its textures; may be null */
    void (*end_frame)(void* context);   /* after the last one; may be null */
    int32_t maximum_texture_size;       /* longest side in pixels; 0: 4096 */
    bool straight_alpha;                /* pixels carry their colour as it is; false: multiplied by their alpha */
} flarebox_renderer;

/* Starting values: no functions yet. */
#define FLAREBOX_RENDERER \
    { sizeof(flarebox_renderer), 0, 0, 0, 0, 0, 0, 0, 0, false }

/* How a device is held. */
typedef enum flarebox_orientation {
    FLAREBOX_PORTRAIT = 1,
    FLAREBOX_PORTRAIT_UPSIDE_DOWN = 2,
    FLAREBOX_LANDSCAPE_LEFT = 3,
    FLAREBOX_LANDSCAPE_RIGHT = 4
} flarebox_orientation;

/* Size in points, at most 16384 pixels to a side; scale in pixels per point, at most 16. The renderer's functions and
 * context have to outlive the host. Null, with flarebox_last_error, when an argument is wrong or there is a host
 * already. */
FLAREBOX_API flarebox_host* flarebox_host_create(double width, double height, double scale,
                                                 const flarebox_renderer* renderer);
/* Gives all textures back and stops the kit's threads, within 200 ms. Fails inside any callback. Null: nothing. */
FLAREBOX_API flarebox_result flarebox_host_destroy(flarebox_host* host);
/* The window has another size, in points, or another scale, in pixels per point; bounds as above. The orientation
 * stays. */
FLAREBOX_API flarebox_result flarebox_host_set_screen(flarebox_host* host, double width, double height, double scale);
/* A flarebox_orientation, for a game that knows it; others are refused. */
FLAREBOX_API flarebox_result flarebox_host_set_orientation(flarebox_host* host, int32_t orientation);

/* Input, in points. True: the panel used it; false: it is the game's, or the call was refused, and flarebox_last_error
 * says why. `pointer`, 0 or more, tells fingers apart; the mouse is 0. */
FLAREBOX_API bool flarebox_host_pointer_down(flarebox_host* host, int32_t pointer, double x, double y);
/* While it is down. */
FLAREBOX_API bool flarebox_host_pointer_moved(flarebox_host* host, int32_t pointer, double x, double y);
/* What it pressed is performed, if it still lies under it. */
FLAREBOX_API bool flarebox_host_pointer_up(flarebox_host* host, int32_t pointer, double x, double y);
/* The mouse moved without a button pressed. */
FLAREBOX_API bool flarebox_host_pointer_hovered(flarebox_host* host, double x, double y);
/* The press ends without performing anything: its end was lost, as the window lost the focus. */
FLAREBOX_API flarebox_result flarebox_host_pointer_cancelled(flarebox_host* host, int32_t pointer);
/* The mouse left the window. */
FLAREBOX_API flarebox_result flarebox_host_pointer_left(flarebox_host* host);
/* The wheel over a point: points by which the content moves on, to its right end and to its bottom. */
FLAREBOX_API bool flarebox_host_scrolled(flarebox_host* host, double x, double y, double dx, double dy);

/* Keys and game controllers. They are the game's until it gives them to the panel with the key that it has for that;
 * while the panel shows an alert or a video over everything, they are the panel's anyway. Closing the tab, and a touch
 * on the game's own picture, give them back. */
typedef enum flarebox_press {
    FLAREBOX_PRESS_UP = 0,
    FLAREBOX_PRESS_DOWN = 1,
    FLAREBOX_PRESS_LEFT = 2,
    FLAREBOX_PRESS_RIGHT = 3,
    FLAREBOX_PRESS_SELECT = 4,     /* A: activates what has the ring */
    FLAREBOX_PRESS_BACK = 5,       /* B */
    FLAREBOX_PRESS_PLAY_PAUSE = 6, /* X */
    FLAREBOX_PRESS_PAGE_UP = 30,   /* the left shoulder: the previous mode */
    FLAREBOX_PRESS_PAGE_DOWN = 31  /* the right shoulder */
} flarebox_press;
/* Gives them to the panel: with the key that the game has for it, after opening the tab for example. */
FLAREBOX_API flarebox_result flarebox_host_take_focus(flarebox_host* host);
/* They are the game's again, and the ring goes. */
FLAREBOX_API flarebox_result flarebox_host_give_back_focus(flarebox_host* host);
/* Whether they are the panel's now. */
FLAREBOX_API bool flarebox_host_has_focus(flarebox_host* host);
/* A button of a game controller, a flarebox_press. */
FLAREBOX_API bool flarebox_host_press(flarebox_host* host, int32_t press);
/* In lower case: "left", "right", "up", "down", "return", "space", "escape", "pageup" and "pagedown" are presses; "tab"
 * and "backtab" go on to the next and the previous element. */
FLAREBOX_API bool flarebox_host_key_down(flarebox_host* host, const char* key);
/* Where the right stick is, from -1 to 1 to the right and down, whenever it moves. */
FLAREBOX_API bool flarebox_host_stick_moved(flarebox_host* host, double x, double y);

/* How many times as large as on a phone everything is shown, 1 to 3, for a television across the room. */
FLAREBOX_API flarebox_result flarebox_host_set_interface_scale(flarebox_host* host, double scale);
/* What a notch or a television's edge covers, in points, not less than 0: text and controls keep away from it. */
FLAREBOX_API flarebox_result flarebox_host_set_safe_area(flarebox_host* host, double top, double left, double bottom,
                                                         double right);
/* Nothing slides, fades or turns by itself. */
FLAREBOX_API flarebox_result flarebox_host_set_reduce_motion(flarebox_host* host, bool reduce);

/* What assistive technology can tell of the panel. */
typedef enum flarebox_role {
    FLAREBOX_ROLE_TEXT = 1,
    FLAREBOX_ROLE_BUTTON = 2,
    FLAREBOX_ROLE_IMAGE = 3,
    FLAREBOX_ROLE_ADJUSTABLE = 4,
    FLAREBOX_ROLE_VIDEO = 5,
    FLAREBOX_ROLE_PROGRESS = 6, /* something is under way */
    FLAREBOX_ROLE_LIST = 7,     /* its items follow */
    FLAREBOX_ROLE_LIST_ITEM = 8,
    FLAREBOX_ROLE_ALERT = 9 /* its texts and buttons follow, and there is nothing else */
} flarebox_role;

enum { FLAREBOX_STATE_DISABLED = 1, FLAREBOX_STATE_SELECTED = 2, FLAREBOX_STATE_FOCUSED = 4 };

/* Later versions add fields at the end; struct_size says how much of it this version fills. */
typedef struct flarebox_element {
    size_t struct_size;  /* of what the library has filled */
    uint64_t id;         /* of no other element; kept as long as it is there */
    const char* name;    /* for people, in their language */
    const char* value;   /* what it stands at; "" for nothing */
    int32_t role;        /* flarebox_role; take those that you do not know for text */
    uint32_t state;      /* FLAREBOX_STATE_..., in bits */
    flarebox_rect frame; /* in points of the host, not in pixels */
} flarebox_element;
/* The element and its texts are gone after the call. */
typedef void (*flarebox_element_visitor)(void* context, const flarebox_element* element);
/* Tells of everything that is in sight, in reading order, frames in points of the host. Returns how many; the visitor
 * may be null. */
FLAREBOX_API size_t flarebox_host_visit_elements(flarebox_host* host, flarebox_element_visitor visitor, void* context);
/* Does what a tap on the element does. False, with flarebox_last_error, where nothing can be done, or it is not there
 * any more. */
FLAREBOX_API bool flarebox_host_activate_element(flarebox_host* host, uint64_t id);
/* Moves what an adjustable element stands at by steps, back where negative. False as above. */
FLAREBOX_API bool flarebox_host_adjust_element(flarebox_host* host, uint64_t id, int32_t steps);

/* Once a frame: everything that is due on the main thread, for at most about `budget` seconds. Does nothing inside a
 * callback, as flarebox_host_draw does. */
FLAREBOX_API flarebox_result flarebox_host_update(flarebox_host* host, double budget);
/* Whether the picture differs from the one last drawn. */
FLAREBOX_API bool flarebox_host_needs_display(flarebox_host* host);
/* Over the game's picture. */
FLAREBOX_API flarebox_result flarebox_host_draw(flarebox_host* host);
/* The renderer has lost its textures, or is about to: all are given back and made again by the next drawing. Fails
 * inside any callback. */
FLAREBOX_API flarebox_result flarebox_host_release_textures(flarebox_host* host);

/* Seconds for which one of these calls may hold the main thread: of one that takes longer, the log tells at level 1
 * what took the time. 0, as at first: nothing is measured. INFINITY: everything is, and nothing logged. */
FLAREBOX_API flarebox_result flarebox_host_set_turn_budget(flarebox_host* host, double seconds);
/* Seconds of the longest call that was measured, since the last reset; 0 for none. */
FLAREBOX_API double flarebox_host_longest_turn(flarebox_host* host);
/* Begins the search for the longest call anew. */
FLAREBOX_API flarebox_result flarebox_host_reset_longest_turn(flarebox_host* host);

/* --- Tab ---------------------------------------------------------------------------------------------------------- */

/* The panel with its open button. */
typedef struct flarebox_tab flarebox_tab;

/* What the content area shows. */
typedef enum flarebox_mode { FLAREBOX_MODE_2D = 0, FLAREBOX_MODE_3D = 1, FLAREBOX_MODE_VIDEO = 2 } flarebox_mode;

/* What a game can follow; any function may be null. Called on the main thread, after each change; of a
 * link before it is opened. */
typedef struct flarebox_observer {
    size_t struct_size;                               /* set by FLAREBOX_OBSERVER */
    void* context;                                    /* handed to every function */
    void (*opened)(void* context, flarebox_tab* tab); /* it starts to slide in */
    void (*closed)(void* context, flarebox_tab* tab); /* it starts to slide out, or was removed */
    /* Another product is shown, by the player's choice or as the first of a list. */
    void (*asset_selected)(void* context, flarebox_tab* tab, const char* uid, const char* title);
    /* The content area shows another of the product's sides: a flarebox_mode. */
    void (*mode_changed)(void* context, flarebox_tab* tab, int32_t mode);
    /* The service has it, now or from an earlier time. */
    void (*coupon_saved)(void* context, flarebox_tab* tab, const char* uid);
    /* The player is about to leave the game. False: the link is not opened. */
    bool (*should_open_link)(void* context, flarebox_tab* tab, const char* url);
    /* A session or a list could not be had, for want of a network or of an identifier of the device, or by the
     * service's fault; the tab tries again with its next refresh. `code` is one of `domain`. */
    void (*load_failed)(void* context, flarebox_tab* tab, const char* domain, int32_t code, const char* reason);
} flarebox_observer;

/* Starting values: no functions yet. */
#define FLAREBOX_OBSERVER \
    { sizeof(flarebox_observer), 0, 0, 0, 0, 0, 0, 0, 0 }

/* Starts to load. Null, with flarebox_last_error, without the kit's resources. */
FLAREBOX_API flarebox_tab* flarebox_tab_create(void);
/* Removes the tab and lets it go; its observer is not called any more. Null: nothing. */
FLAREBOX_API flarebox_result flarebox_tab_destroy(flarebox_tab* tab);
/* Copies the observer; null: nobody observes any more. */
FLAREBOX_API flarebox_result flarebox_tab_set_observer(flarebox_tab* tab, const flarebox_observer* observer);
/* Attaches the tab, closed, to the host's window 0.1 seconds from now. Fails without a host. */
FLAREBOX_API flarebox_result flarebox_tab_show(flarebox_tab* tab);
/* Takes it out of the window; it can be shown again. */
FLAREBOX_API flarebox_result flarebox_tab_remove(flarebox_tab* tab);
/* Over 0.3 seconds, or at once. An open tab stays as it is. Fails as long as the tab is not attached. */
FLAREBOX_API flarebox_result flarebox_tab_open(flarebox_tab* tab, bool animated);
/* The same the other way; a tab that is not attached is closed. */
FLAREBOX_API flarebox_result flarebox_tab_close(flarebox_tab* tab, bool animated);
/* False also for a tab that was not shown yet. */
FLAREBOX_API bool flarebox_tab_is_open(flarebox_tab* tab);
/* The open button at the tab's edge. Hiding it closes the tab. */
FLAREBOX_API flarebox_result flarebox_tab_show_button(flarebox_tab* tab, bool show);
/* As said last, whether the tab is attached or not. */
FLAREBOX_API bool flarebox_tab_is_button_visible(flarebox_tab* tab);
/* 0, invisible, to 1. */
FLAREBOX_API flarebox_result flarebox_tab_set_button_alpha(flarebox_tab* tab, double alpha);
/* The uid of the product that is shown, "" while there is none; null, with flarebox_last_error, where the call was
 * refused. Valid until the next call of this function, or the tab's end. */
FLAREBOX_API const char* flarebox_tab_asset(flarebox_tab* tab);
/* What the content area shows, a flarebox_mode; -1, with flarebox_last_error, where the call was refused. */
FLAREBOX_API int32_t flarebox_tab_mode(flarebox_tab* tab);
/* Shows the product in another flarebox_mode. Fails where there is no product, or nothing of it to show so. */
FLAREBOX_API flarebox_result flarebox_tab_set_mode(flarebox_tab* tab, int32_t mode);
/* Seconds between two lists, not less than 0; 0: 180. Holds for all tabs, as the configuration's does. */
FLAREBOX_API flarebox_result flarebox_tab_set_refresh(flarebox_tab* tab, int32_t seconds);
/* Starts anew with what is configured now. */
FLAREBOX_API flarebox_result flarebox_tab_reload(flarebox_tab* tab);

#ifdef __cplusplus
}
#endif

#endif
