#!/usr/bin/env python3
"""Makes the models of the catalogue's products: make_models.py [--into FOLDER] [NAME...]

Needs nothing but Python 3. The models are checked in, so this runs only after a change to how they are made; the same
code makes the same bytes."""

import argparse
import pathlib

from products import MODELS

HERE = pathlib.Path(__file__).resolve().parent


def main():
    parser = argparse.ArgumentParser(description="Makes the models of the catalogue's products.")
    parser.add_argument("--into", type=pathlib.Path, default=HERE / "models", metavar="FOLDER")
    parser.add_argument("names", nargs="*", choices=[[], *MODELS], metavar="NAME")
    options = parser.parse_args()
    options.into.mkdir(parents=True, exist_ok=True)
    for name in options.names or MODELS:
        data = MODELS[name]().glb()
        (options.into / f"{name}.glb").write_bytes(data)
        print(f"{name}.glb: {len(data) // 1024} KiB")


if __name__ == "__main__":
    main()
