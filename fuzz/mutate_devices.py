#!/usr/bin/env python3
"""Feeds random mutations of device files to a reader and reports every crash.

    fuzz/mutate_devices.py FOLDER READER...

makes mutations of each file in FOLDER and runs READER with a folder of mutated files as its last
argument, as the replay build of a fuzz target expects; with --each it runs READER once for each
file. A reader fails when a signal or a sanitizer ends it, or when it takes too long. What made it
fail is kept. The same seed gives the same mutations.
"""

import argparse
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

NUMBERS = [b"-1", b"0", b"7", b"255", b"65536", b"2147483647", b"2147483648", b"-2147483649",
           b"4294967296", b"9223372036854775808", b"18446744073709551615"]
MARKS = [b'"', b"&", b";", b"(", b")", b",", b":", b"--", b":=", b"*", b" ", b"\n", b"\r", b"\0",
         b"entity ", b"end ", b"port (", b"attribute ", b"constant ", b" is ", b"bit_vector",
         b"PIN_MAP_STRING", b"BOUNDARY_REGISTER", b"BOUNDARY_LENGTH", b"PORT_GROUPING", b"inout",
         b"Differential_Voltage ((", b"REGISTER_ACCESS", b"control", b"bidir"]


def mutate(text, chance):
    for _ in range(chance.choice([1, 1, 2, 4, 16])):
        start = chance.randrange(len(text) + 1)
        end = min(len(text), start + chance.choice([0, 1, 2, 8, 60, 400]))
        kind = chance.choice(["byte", "mark", "delete", "repeat", "move", "number", "cut"])
        piece = text[start:end]
        rest = text[:start] + text[end:]
        if kind == "byte":
            text = text[:start] + bytes([chance.randrange(256)]) + text[start + 1:]
        elif kind == "mark":
            text = text[:start] + chance.choice(MARKS) + text[min(end, start + 2):]
        elif kind == "delete":
            text = rest
        elif kind == "repeat":
            text = text[:start] + piece * chance.choice([2, 2, 3, 50]) + text[end:]
        elif kind == "move":
            target = chance.randrange(len(rest) + 1)
            text = rest[:target] + piece + rest[target:]
        elif kind == "number" and (number := re.compile(rb"\d+").search(text, start)):
            text = text[:number.start()] + chance.choice(NUMBERS) + text[number.end():]
        elif kind == "cut" and chance.random() < 0.2:
            text = text[:start]
    return text


def run(reader, target, seconds):
    """What is wrong with the reader's work on a target, or nothing."""
    try:
        done = subprocess.run(reader + [str(target)], stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, timeout=seconds, check=False)
    except subprocess.TimeoutExpired:
        return f"took more than {seconds} s"
    errors = done.stderr.decode(errors="replace")
    if done.returncode < 0 or re.search(r"Sanitizer|runtime error:|^fault: ", errors, re.MULTILINE):
        lines = [line for line in errors.splitlines() if re.search("ERROR|error:|fault:", line)]
        return "; ".join(lines[:2]) or f"ended by signal {-done.returncode}"
    return ""


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--mutations", type=int, default=200, help="of each file (200)")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--timeout", type=float, default=20, help="seconds for a file (20)")
    parser.add_argument("--each", action="store_true", help="READER takes files, not folders")
    parser.add_argument("--keep", default="findings", help="folder for what failed (findings)")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("reader", nargs=argparse.REMAINDER, metavar="READER...")
    options = parser.parse_args()
    files = sorted(path for path in options.folder.iterdir() if path.is_file())
    if not files or not options.reader:
        parser.error("a folder with files and a reader are needed")

    failures = 0
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    for path in files:
        chance = random.Random(f"{options.seed} {path.name}")
        text = path.read_bytes()
        with tempfile.TemporaryDirectory(dir=memory) as name:
            # Each file in a folder of its own, so that it can be tried alone.
            targets = [pathlib.Path(name) / str(n) / path.name for n in range(options.mutations)]
            for target in targets:
                target.parent.mkdir()
                target.write_bytes(mutate(text, chance))
            together = options.timeout * options.mutations
            if not options.each and not run(options.reader, name, together):
                continue
            for number, target in enumerate(targets):
                tried = target if options.each else target.parent
                if fault := run(options.reader, tried, options.timeout):
                    failures += 1
                    os.makedirs(options.keep, exist_ok=True)
                    kept = os.path.join(options.keep, f"{path.stem}-{number}.bsd")
                    shutil.copy(target, kept)
                    print(f"{kept}: {fault}", flush=True)
    print(f"{len(files)} files, {len(files) * options.mutations} mutations, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
