#!/usr/bin/env python3
"""Puts what ./faults, ./fuzz, ./soak and scripts/endurance.sh have left in build/reliability into the table of Docs/reliability.md.

Rows of tests that have not run here since are left as they are.
"""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "Docs" / "reliability.md"
COLUMNS = ("Test", "Cases", "Faults survived", "Failures", "Peak of memory, MiB")


def rows_of_page(page):
    """Name to row, in the order of the page."""
    rows = {}
    for line in page.splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if len(cells) == len(COLUMNS) and re.fullmatch(r"[\d,]+", cells[1]):
            rows[cells[0]] = cells
    return rows


def rows_of_runs():
    for file in sorted((ROOT / "build" / "reliability").glob("*.tsv")):
        for line in file.read_text().splitlines():
            cells = line.split("\t")
            if len(cells) != len(COLUMNS) or not cells[1].isdigit():
                continue
            yield [cells[0]] + [f"{int(float(cell)):,}" for cell in cells[1:]]


def main():
    page = PAGE.read_text()
    rows = rows_of_page(page)
    for row in rows_of_runs():
        rows[row[0]] = row
    table = [f"| {' | '.join(COLUMNS)} |", "|---|" + "---:|" * (len(COLUMNS) - 1)]
    table += [f"| {' | '.join(row)} |" for row in rows.values()]
    start, end = page.index("| Test |"), page.index("\n\n", page.index("| Test |"))
    PAGE.write_text(page[:start] + "\n".join(table) + page[end:])


if __name__ == "__main__":
    main()
