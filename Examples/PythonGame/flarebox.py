"""flarebox.h for Python, with nothing but the standard library: the structs, callbacks and functions that a game needs."""

import ctypes
from ctypes import CFUNCTYPE, POINTER, c_bool, c_char_p, c_double, c_float, c_int32, c_size_t, c_uint32, c_void_p


class Configuration(ctypes.Structure):
    """Texts are bytes in UTF-8, or None."""
    _fields_ = [("struct_size", c_size_t), ("game_uid", c_char_p), ("game_version", c_char_p), ("api_url", c_char_p),
                ("resources", c_char_p), ("documents", c_char_p), ("device_id", c_char_p), ("first_name", c_char_p),
                ("last_name", c_char_p), ("sex", c_char_p), ("state", c_char_p), ("city", c_char_p),
                ("country", c_char_p), ("age", c_int32), ("refresh_seconds", c_int32), ("enable_logging", c_bool),
                ("log_level", c_uint32)]


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


FUNCTIONS = {
    "flarebox_last_error": (c_char_p, []),
    "flarebox_version": (c_char_p, []),
    "flarebox_configure": (c_int32, [POINTER(Configuration)]),
    "flarebox_host_create": (c_void_p, [c_double, c_double, c_double, POINTER(Renderer)]),
    "flarebox_host_destroy": (c_int32, [c_void_p]),
    "flarebox_host_pointer_down": (c_bool, [c_void_p, c_int32, c_double, c_double]),
    "flarebox_host_pointer_up": (c_bool, [c_void_p, c_int32, c_double, c_double]),
    "flarebox_host_update": (c_int32, [c_void_p, c_double]),
    "flarebox_host_needs_display": (c_bool, [c_void_p]),
    "flarebox_host_draw": (c_int32, [c_void_p]),
    "flarebox_tab_create": (c_void_p, []),
    "flarebox_tab_destroy": (c_int32, [c_void_p]),
    "flarebox_tab_set_observer": (c_int32, [c_void_p, POINTER(Observer)]),
    "flarebox_tab_show": (c_int32, [c_void_p]),
    "flarebox_tab_is_open": (c_bool, [c_void_p]),
}


def make(struct, **values):
    """A struct that knows its own size, with the given fields."""
    return struct(struct_size=ctypes.sizeof(struct), **values)


def load(path):
    """The shared library, its functions ready to be called."""
    library = ctypes.CDLL(path)
    for name, (result, arguments) in FUNCTIONS.items():
        function = getattr(library, name)
        function.restype, function.argtypes = result, arguments
    return library
