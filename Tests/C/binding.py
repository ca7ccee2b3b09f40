"""Compares flarebox.py, what Python knows of the interface for C, with flarebox.h: each struct, constant and function.

    python3 binding.py REPOSITORY
"""

import ctypes
import pathlib
import re
import sys

repository = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(repository / "Examples/PythonGame"))
import flarebox  # noqa: E402

header = re.sub(r"/\*.*?\*/", "", (repository / "Flarebox/C/flarebox.h").read_text(), flags=re.S)
header = re.sub(r"^#(.*\\\n)*.*$", "", header, flags=re.M)
header = re.sub(r"\s+", " ", header)

KNOWN = {"void": None, "bool": ctypes.c_bool, "float": ctypes.c_float, "double": ctypes.c_double, "size_t": ctypes.c_size_t,
         "int32_t": ctypes.c_int32, "uint32_t": ctypes.c_uint32, "uint64_t": ctypes.c_uint64,
         "flarebox_result": ctypes.c_int32, "char*": ctypes.c_char_p, "char**": ctypes.POINTER(ctypes.c_char_p),
         "void*": ctypes.c_void_p, "flarebox_host*": ctypes.c_void_p, "flarebox_tab*": ctypes.c_void_p}
faults = []


def type_of(text):
    """What Python has for a type of C, with or without a name behind it."""
    text = re.sub(r"\bconst\b", "", text).strip()
    base, stars, _ = re.fullmatch(r"(\w+)\s*((?:\*\s*)*)(\w*)", text).groups()
    spelling = base + stars.replace(" ", "")
    if spelling in KNOWN:
        return KNOWN[spelling]
    named = KNOWN.get(base) or getattr(flarebox, "".join(part.capitalize() for part in base.split("_")[1:]))
    return ctypes.POINTER(named) if "*" in stars else named


def types_of(parameters):
    return [] if parameters.strip() == "void" else [type_of(each) for each in parameters.split(",")]


def fields_of(body):
    for field in filter(None, map(str.strip, body.split(";"))):
        if callback := re.fullmatch(r"(.+?)\(\*(\w+)\)\((.*)\)", field):
            result, name, parameters = callback.groups()
            yield name, ctypes.CFUNCTYPE(type_of(result), *types_of(parameters))
        else:
            yield re.search(r"\w+$", field)[0], type_of(field)


def expect(what, found, wanted):
    if found != wanted:
        faults.append(f"{what}: Python has {found}, C {wanted}")


for result, name, parameters in re.findall(r"typedef (\w+) \(\*flarebox_(\w+)\)\(([^)]*)\);", header):
    wanted = ctypes.CFUNCTYPE(type_of(result), *types_of(parameters))
    expect(name, getattr(flarebox, "".join(map(str.capitalize, name.split("_")))), wanted)
structs = re.findall(r"typedef struct (flarebox_\w+) \{(.*?)\} \1;", header)
for name, body in structs:
    expect(name, type_of(name)._fields_, list(fields_of(body)))
constants = re.findall(r"\bFLAREBOX_(\w+) = (-?\d+)", header)
for name, value in constants:
    expect(name, getattr(flarebox, name, None), int(value))
functions = {name: (type_of(result), types_of(parameters))
             for result, name, parameters in re.findall(r"FLAREBOX_API ([^()]*?)(flarebox_\w+)\(([^)]*)\);", header)}
expect("functions", sorted(flarebox.FUNCTIONS), sorted(functions))
for name, signature in functions.items():
    expect(name, flarebox.FUNCTIONS.get(name), signature)
if len(structs) < 8 or len(constants) < 30 or len(functions) != header.count("FLAREBOX_API "):
    faults.append("flarebox.h cannot be read")
sys.exit("\n".join(faults) or 0)
