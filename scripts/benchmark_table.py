#!/usr/bin/env python3
"""Turns the results of Google Benchmark into the page Docs/benchmarks.md.

benchmark_table.py FOLDER reads FOLDER/NAME.json of each program and Benchmarks/NAME/targets.json, and prints Markdown.

targets.json: "title", "counters" to be listed with every benchmark that has them (optional), and "rows" of
    what     words for the table
    of       the benchmark that is judged
    against  benchmarks of the same program; the fastest of them is the peer
    counter  judge this counter instead of the time, against that of the peer where there is one
    reach    the largest ratio to the peer; without a peer the largest counter, or microseconds
Times are medians of the CPU time over all repetitions, divided by the counter "items" where a benchmark has it.
"""

import json
import os
import pathlib
import platform
import statistics
import subprocess
import sys


class Program:
    """What one program has measured, by the name of the benchmark."""

    def __init__(self, path):
        report = json.loads(path.read_text())
        self.date = report["context"]["date"][:10]
        self.runs = {}
        for run in report["benchmarks"]:
            if run.get("run_type") == "iteration":
                self.runs.setdefault(self.plain_name(run), []).append(run)

    @staticmethod
    def plain_name(run):
        parts = run["run_name"].split("/")
        return "/".join(part for part in parts if not part.startswith(("iterations:", "manual_time", "real_time")))

    def values(self, name, counter=None):
        return [self.value(run, counter) for run in self.runs.get(name, []) if not run.get("error_occurred")]

    @staticmethod
    def value(run, counter):
        if counter:
            return run[counter]
        time = "real_time" if run["run_name"].endswith(("manual_time", "real_time")) else "cpu_time"
        nanoseconds = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
        return run[time] * nanoseconds / run.get("items", 1)

    def median(self, name, counter=None):
        values = self.values(name, counter)
        return statistics.median(values) if values else None


def readable(nanoseconds):
    for unit, factor in (("ns", 1), ("µs", 1e3), ("ms", 1e6), ("s", 1e9)):
        if nanoseconds < 1000 * factor or unit == "s":
            return f"{nanoseconds / factor:.3g} {unit}"


def judged_row(program, row):
    """The cells: what, measured, peer, ratio, target, reached."""
    counter = row.get("counter")
    text = "{:.3g}".format if counter else readable
    value = program.median(row["of"], counter)
    peers = [(program.median(name, counter), name) for name in row.get("against", [])]
    if value is None or any(time is None for time, _ in peers):
        return [row["what"], "not measured", "", "", f"{row['reach']:g}", "no"]
    if peers:
        time, name = min(peers)
        judged, cells = value / time, [text(value), f"{name.split('/', 1)[1]}: {text(time)}", f"{value / time:.2f}"]
    else:
        judged, cells = value if counter else value / 1000, [text(value), "", ""]
    return [row["what"], *cells, f"{row['reach']:g}", "yes" if judged <= row["reach"] else "**no**"]


def counter_text(program, name, counter):
    """The median, empty where the benchmark has no such counter."""
    return f"{program.median(name, counter):.4g}" if counter in program.runs[name][0] else ""


def print_table(header, rows):
    print("| " + " | ".join(header) + " |")
    print("|" + "---|" * len(header))
    for row in rows:
        print("| " + " | ".join(row) + " |")
    print()


def print_program(path, targets):
    program = Program(path)
    print(f"## {targets['title']}\n\nMeasured on {program.date}.\n")
    header = ["What", "Measured", "Fastest peer", "Ratio", "Reach", "Reached"]
    print_table(header, [judged_row(program, row) for row in targets["rows"]])
    rows, counters = [], targets.get("counters", [])
    for name in program.runs:
        times = program.values(name)
        if times:
            listed = [counter_text(program, name, counter) for counter in counters]
            rows.append([name, readable(statistics.median(times)), readable(min(times)), readable(max(times)), *listed, str(len(times))])
    print_table(["Benchmark", "Median", "Least", "Most", *(counter.replace("_", " ") for counter in counters), "Repetitions"], rows)


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def main():
    folder = pathlib.Path(sys.argv[1])
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]
    print("# Benchmarks\n")
    print("Written by `./bench`; what the figures mean and how to keep them stands in [performance.md](performance.md).\n")
    print(f"- Machine: {processor()}, {os.cpu_count()} processors, {platform.system()} {platform.machine()}")
    print(f"- Compiler: {compiler}, release mode (`-O3`)")
    print("- Times: CPU time per item, median of all repetitions; a ratio compares medians of one run, whose repetitions took turns\n")
    for path in sorted(folder.glob("*.json")):
        targets = pathlib.Path(__file__).parent.parent / "Benchmarks" / path.stem / "targets.json"
        print_program(path, json.loads(targets.read_text()))


main()
