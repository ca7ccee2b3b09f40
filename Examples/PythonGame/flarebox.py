"""flarebox.h for Python, with nothing but the standard library: all of its structs, callbacks, constants and functions.
They mean what is said there, and only the functions keep "flarebox_" before their names."""

import ctypes
from ctypes import (CFUNCTYPE, POINTER, c_bool, c_char_p, c_double, c_float, c_int32, c_size_t, c_uint32, c_uint64,
                    c_void_p)

OK, INVALID_ARGUMENT, INVALID_HANDLE, WRONG_THREAD, FAILED = range(5)
NETWORK_SYSTEM, NETWORK_UNKNOWN, NETWORK_NONE, NETWORK_MOBILE, NETWORK_WIFI = range(-2, 3)
PORTRAIT, PORTRAIT_UPSIDE_DOWN, LANDSCAPE_LEFT, LANDSCAPE_RIGHT = range(1, 5)
PRESS_UP, PRESS_DOWN, PRESS_LEFT, PRESS_RIGHT, PRESS_SELECT, PRESS_BACK, PRESS_PLAY_PAUSE = range(7)
PRESS_PAGE_UP, PRESS_PAGE_DOWN = 30, 31
ROLE_TEXT, ROLE_BUTTON, ROLE_IMAGE, ROLE_ADJUSTABLE, ROLE_VIDEO, ROLE_PROGRESS = range(1, 7)
ROLE_LIST, ROLE_LIST_ITEM, ROLE_ALERT = range(7, 10)
STATE_DISABLED, STATE_SELECTED, STATE_FOCUSED = 1, 2, 4
MODE_2D, MODE_3D, MODE_VIDEO = range(3)


class Configuration(ctypes.Structure):
    """Texts are bytes in UTF-8, or None."""
    _fields_ = [("struct_size", c_size_t), ("game_uid", c_char_p), ("game_version", c_char_p), ("api_url", c_char_p),
                ("resources", c_char_p), ("documents", c_char_p), ("device_id", c_char_p), ("first_name", c_char_p),
                ("last_name", c_char_p), ("sex", c_char_p), ("state", c_char_p), ("city", c_char_p),
                ("country", c_char_p), ("age", c_int32), ("refresh_seconds", c_int32), ("enable_logging", c_bool),
                ("log_level", c_uint32)]
    starting_values = {"enable_logging": True, "log_level": 2}


class Clock(ctypes.Structure):
    Time = CFUNCTYPE(c_double, c_void_p)
    _fields_ = [("struct_size", c_size_t), ("context", c_void_p), ("uptime", Time), ("time_since_1970", Time)]


class UrlOpener(ctypes.Structure):
    Open = CFUNCTYPE(c_bool, c_void_p, c_char_p)
    _fields_ = [("struct_size", c_size_t), ("context", c_void_p), ("can_open", Open), ("open", Open)]


class Rect(ctypes.Structure):
    _fields_ = [("x", c_double), ("y", c_double), ("width", c_double), ("height", c_double)]


class Quad(ctypes.Structure):
    _fields_ = [("texture", c_uint32), ("source_x", c_int32), ("source_y", c_int32), ("source_width", c_int32),
                ("source_height", c_int32), ("destination", Rect), ("clip", Rect), ("opacity", c_float)]


class Renderer(ctypes.Structure):
    CreateTexture = CFUNCTYPE(c_uint32, c_void_p, c_int32, c_int32)
    UpdateTexture = CFUNCTYPE(None, c_void_p, c_uint32, c_int32, c_int32, c_int32, c_int32, POINTER(c_uint32), c_int32)
    DestroyTexture = CFUNCTYPE(None, c_void_p, c_uint32)
    DrawQuad = CFUNCTYPE(None, c_void_p, POINTER(Quad))
    Frame = CFUNCTYPE(None, c_void_p)
    _fields_ = [("struct_size", c_size_t), ("context", c_void_p), ("create_texture", CreateTexture),
                ("update_texture", UpdateTexture), ("destroy_texture", DestroyTexture), ("draw_quad", DrawQuad),
                ("begin_frame", Frame), ("end_frame", Frame), ("maximum_texture_size", c_int32),
                ("straight_alpha", c_bool)]


class Element(ctypes.Structure):
    _fields_ = [("struct_size", c_size_t), ("id", c_uint64), ("name", c_char_p), ("value", c_char_p),
                ("role", c_int32), ("state", c_uint32), ("frame", Rect)]


class Observer(ctypes.Structure):
    Tab = CFUNCTYPE(None, c_void_p, c_void_p)
    Asset = CFUNCTYPE(None, c_void_p, c_void_p, c_char_p, c_char_p)
    Mode = CFUNCTYPE(None, c_void_p, c_void_p, c_int32)
    Coupon = CFUNCTYPE(None, c_void_p, c_void_p, c_char_p)
    Link = CFUNCTYPE(c_bool, c_void_p, c_void_p, c_char_p)
    Failure = CFUNCTYPE(None, c_void_p, c_void_p, c_char_p, c_int32, c_char_p)
    _fields_ = [("struct_size", c_size_t), ("context", c_void_p), ("opened", Tab), ("closed", Tab),
                ("asset_selected", Asset), ("mode_changed", Mode), ("coupon_saved", Coupon), ("should_open_link", Link),
                ("load_failed", Failure)]


LogSink = CFUNCTYPE(None, c_void_p, c_int32, c_char_p)
ElementVisitor = CFUNCTYPE(None, c_void_p, POINTER(Element))

FUNCTIONS = {
    "flarebox_last_error": (c_char_p, []),
    "flarebox_version": (c_char_p, []),
    "flarebox_configure": (c_int32, [POINTER(Configuration)]),
    "flarebox_set_log_sink": (c_int32, [LogSink, c_void_p]),
    "flarebox_set_theme": (c_int32, [c_char_p]),
    "flarebox_set_muted": (c_int32, [c_bool]),
    "flarebox_is_muted": (c_bool, []),
    "flarebox_set_languages": (c_int32, [POINTER(c_char_p), c_size_t]),
    "flarebox_set_tracking_allowed": (c_int32, [c_bool]),
    "flarebox_set_url_opener": (c_int32, [POINTER(UrlOpener)]),
    "flarebox_set_schemes": (c_int32, [POINTER(c_char_p), c_size_t]),
    "flarebox_open_link": (c_int32, [c_char_p]),
    "flarebox_set_picture": (c_int32, [c_char_p, c_int32, c_int32, c_int32, POINTER(c_uint32)]),
    "flarebox_set_clock": (c_int32, [POINTER(Clock)]),
    "flarebox_set_network": (c_int32, [c_int32]),
    "flarebox_host_create": (c_void_p, [c_double, c_double, c_double, POINTER(Renderer)]),
    "flarebox_host_destroy": (c_int32, [c_void_p]),
    "flarebox_host_set_screen": (c_int32, [c_void_p, c_double, c_double, c_double]),
    "flarebox_host_set_orientation": (c_int32, [c_void_p, c_int32]),
    "flarebox_host_pointer_down": (c_bool, [c_void_p, c_int32, c_double, c_double]),
    "flarebox_host_pointer_moved": (c_bool, [c_void_p, c_int32, c_double, c_double]),
    "flarebox_host_pointer_up": (c_bool, [c_void_p, c_int32, c_double, c_double]),
    "flarebox_host_pointer_hovered": (c_bool, [c_void_p, c_double, c_double]),
    "flarebox_host_pointer_cancelled": (c_int32, [c_void_p, c_int32]),
    "flarebox_host_pointer_left": (c_int32, [c_void_p]),
    "flarebox_host_scrolled": (c_bool, [c_void_p, c_double, c_double, c_double, c_double]),
    "flarebox_host_take_focus": (c_int32, [c_void_p]),
    "flarebox_host_give_back_focus": (c_int32, [c_void_p]),
    "flarebox_host_has_focus": (c_bool, [c_void_p]),
    "flarebox_host_press": (c_bool, [c_void_p, c_int32]),
    "flarebox_host_key_down": (c_bool, [c_void_p, c_char_p]),
    "flarebox_host_stick_moved": (c_bool, [c_void_p, c_double, c_double]),
    "flarebox_host_set_interface_scale": (c_int32, [c_void_p, c_double]),
    "flarebox_host_set_safe_area": (c_int32, [c_void_p, c_double, c_double, c_double, c_double]),
    "flarebox_host_set_reduce_motion": (c_int32, [c_void_p, c_bool]),
    "flarebox_host_visit_elements": (c_size_t, [c_void_p, ElementVisitor, c_void_p]),
    "flarebox_host_activate_element": (c_bool, [c_void_p, c_uint64]),
    "flarebox_host_adjust_element": (c_bool, [c_void_p, c_uint64, c_int32]),
    "flarebox_host_update": (c_int32, [c_void_p, c_double]),
    "flarebox_host_needs_display": (c_bool, [c_void_p]),
    "flarebox_host_draw": (c_int32, [c_void_p]),
    "flarebox_host_release_textures": (c_int32, [c_void_p]),
    "flarebox_host_set_turn_budget": (c_int32, [c_void_p, c_double]),
    "flarebox_host_longest_turn": (c_double, [c_void_p]),
    "flarebox_host_reset_longest_turn": (c_int32, [c_void_p]),
    "flarebox_tab_create": (c_void_p, []),
    "flarebox_tab_destroy": (c_int32, [c_void_p]),
    "flarebox_tab_set_observer": (c_int32, [c_void_p, POINTER(Observer)]),
    "flarebox_tab_show": (c_int32, [c_void_p]),
    "flarebox_tab_remove": (c_int32, [c_void_p]),
    "flarebox_tab_open": (c_int32, [c_void_p, c_bool]),
    "flarebox_tab_close": (c_int32, [c_void_p, c_bool]),
    "flarebox_tab_is_open": (c_bool, [c_void_p]),
    "flarebox_tab_show_button": (c_int32, [c_void_p, c_bool]),
    "flarebox_tab_is_button_visible": (c_bool, [c_void_p]),
    "flarebox_tab_set_button_alpha": (c_int32, [c_void_p, c_double]),
    "flarebox_tab_asset": (c_char_p, [c_void_p]),
    "flarebox_tab_mode": (c_int32, [c_void_p]),
    "flarebox_tab_set_mode": (c_int32, [c_void_p, c_int32]),
    "flarebox_tab_set_refresh": (c_int32, [c_void_p, c_int32]),
    "flarebox_tab_reload": (c_int32, [c_void_p]),
}


def make(struct, **values):
    """A struct with its starting values, which knows its own size, and with the given fields."""
    starting = getattr(struct, "starting_values", {})
    return struct(struct_size=ctypes.sizeof(struct), **{**starting, **values})


def load(path):
    """The shared library, its functions ready to be called."""
    library = ctypes.CDLL(path)
    for name, (result, arguments) in FUNCTIONS.items():
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    return library
