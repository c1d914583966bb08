#!/usr/bin/env python3
"""Prints the table of ratios from the results (JSON) of the benchmark programs.

    summary.py [--markdown] FILE...
"""

import json
import sys

SMALL, LARGE = "1000", "100000"


class Results:
    def __init__(self, paths):
        self.runs = {}
        for path in paths:
            with open(path, encoding="utf-8") as file:
                for run in json.load(file)["benchmarks"]:
                    # The median of repetitions comes behind them and counts in their place.
                    if run.get("aggregate_name", "median") == "median":
                        self.runs[run["run_name"].removesuffix("/manual_time")] = run

    def get(self, name, counter):
        return self.runs.get(name, {}).get(counter)

    def nanoseconds(self, name):
        seconds = self.get(name, "per_call")
        return None if seconds is None else seconds * 1e9

    def growth(self, name, counter):
        small, large = self.get(f"{name}/{SMALL}", counter), self.get(f"{name}/{LARGE}", counter)
        return large / small if small and large else None


def total(values):
    values = list(values)
    return None if None in values else sum(values)


def rows(results):
    """Yields (what, value, bound); a row without a bound is for information."""
    for files in ("devices", "examples"):
        bound = 6 if files == "devices" else None
        yield f"{files}: reading, in times of the fgets floor", \
            results.get(f"{files}/whole", "times_floor"), bound
    yield "devices: description with checks and filling, in times of the fgets floor", \
        results.get("devices/description", "times_floor"), 5
    yield "scaled device, 1,000 ports: in times of the floor", \
        results.get(f"scaled/whole/{SMALL}", "times_floor"), None
    yield "scaled device, 100,000 ports: in times of the floor", \
        results.get(f"scaled/whole/{LARGE}", "times_floor"), None
    yield None

    grow = "time at 100,000 ports against 1,000, per "
    yield grow + "cell: whole reading", results.growth("scaled/whole", "ns_per_cell"), 1.5
    yield grow + "cell: description", results.growth("scaled/description", "ns_per_cell"), 1.5
    for reader, unit in (("port clause", "port"), ("package pass", "port"), ("pin map", "port"),
                         ("boundary register", "cell"), ("grouping with completion", "port")):
        yield f"{grow}{unit}: {reader}", \
            results.growth(f"readers/{reader}", f"ns_per_{unit}"), None
    for order in ("as declared", "by number"):
        yield f"{grow}call: setPort of every pin {order}", \
            results.growth(f"pins/setPort {order}", "per_call"), None
    yield None

    for name, files in (("scaled device", f"scaled/whole/{LARGE}"), ("devices", "devices/whole")):
        yield f"{name}: allocations, as a part of 4 a port element and 1 a cell", \
            results.get(files, "allocs_of_allowed"), None
    of_ports = ("port clause", "package pass", "pin map", "grouping with completion")
    yield "allocations per port element, readers of ports", \
        total(results.get(f"readers/{reader}/{LARGE}", "allocs_per_port") for reader in of_ports), None
    yield "allocations per cell, boundary register with the cell lists of the ports", \
        results.get(f"readers/boundary register/{LARGE}", "allocs_per_cell"), None
    yield "allocations per line", results.get(f"scaled/whole/{LARGE}", "allocs_per_line"), 0
    yield "peak memory, in times of the largest device file", \
        results.get("devices/whole", "peak_per_byte"), 10
    yield "peak memory of a description, in times of the largest device file", \
        results.get("devices/description", "peak_per_byte"), 12
    yield None

    for call in ("setPort as declared", "GetPortValue as declared",
                 "setPort by number", "GetPortValue by number"):
        for size in (SMALL, LARGE):
            yield f"{call}, {int(size):,} ports: ns a call", \
                results.nanoseconds(f"pins/{call}/{size}"), \
                25 if call == "setPort as declared" else None
    for key in ("port name", "port name that PortName tells", "port name and index", "pin name",
                "pin number", "cell name"):
        for size in (SMALL, LARGE):
            yield f"lookup by {key}, {int(size):,} ports: ns", \
                results.nanoseconds(f"pins/by {key}/{size}"), None
    yield "lookup by port name that GetPortName gave out, 1,000 ports: ns", \
        results.nanoseconds(f"pins/by port name that GetPortName gave out/{SMALL}"), None


def main():
    paths = sys.argv[1:]
    markdown = "--markdown" in paths
    if markdown:
        paths.remove("--markdown")
    line = "| {:<82} | {:>8} | {:>12} |" if markdown else "{:<82} {:>8} {:>12}"
    print(line.format("", "measured", "at most"))
    if markdown:
        print(line.format("---", "---:", "---:"))
    for row in rows(Results(paths)):
        if row is None:
            if not markdown:
                print()
            continue
        what, value, bound = row
        measured = "-" if value is None else f"{value:.2f}"
        # What rounds to its bound is at it.
        above = value is not None and bound is not None and round(value, 2) > bound
        print(line.format(what, measured, ("" if bound is None else str(bound)) +
                          (" (above)" if above else "")).rstrip())


if __name__ == "__main__":
    main()
