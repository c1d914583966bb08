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
MARKS = [b'"', b"&", b";", b"(", b")", b",", b":", b"--", b":=", b"*", b" ", b"\n", b"\r", b"\0"]
WORDS = [b"entity ", b"end ", b"port (", b"attribute ", b"constant ", b" is ", b"bit_vector",
         b"PIN_MAP_STRING", b"BOUNDARY_REGISTER", b"BOUNDARY_LENGTH", b"PORT_GROUPING", b"inout",
         b"Differential_Voltage ((", b"REGISTER_ACCESS", b"control", b"bidir"]


def span(text, chance, longest):
    start = chance.randrange(len(text) + 1)
    return start, min(len(text), start + chance.randint(1, longest))


def change_byte(text, chance):
    start = chance.randrange(len(text))
    return text[:start] + bytes([chance.randrange(256)]) + text[start + 1:]


def put_mark(text, chance):
    start, end = span(text, chance, 2)
    if chance.random() < 0.5:
        end = start
    return text[:start] + chance.choice(MARKS + WORDS) + text[end:]


def delete(text, chance):
    start, end = span(text, chance, chance.choice([1, 8, 300]))
    return text[:start] + text[end:]


def repeat(text, chance):
    start, end = span(text, chance, chance.choice([4, 60, 600]))
    return text[:start] + text[start:end] * chance.choice([2, 2, 3, 50]) + text[end:]


def move(text, chance):
    start, end = span(text, chance, 400)
    rest = text[:start] + text[end:]
    target = chance.randrange(len(rest) + 1)
    return rest[:target] + text[start:end] + rest[target:]


def change_number(text, chance):
    numbers = list(re.finditer(rb"\d+", text))
    if not numbers:
        return text
    found = chance.choice(numbers)
    return text[:found.start()] + chance.choice(NUMBERS) + text[found.end():]


def swap_lines(text, chance):
    lines = text.split(b"\n")
    first, second = chance.randrange(len(lines)), chance.randrange(len(lines))
    lines[first], lines[second] = lines[second], lines[first]
    return b"\n".join(lines)


def cut(text, chance):
    return text[:chance.randrange(len(text) + 1)]


KINDS = [change_byte, put_mark, delete, repeat, move, change_number, swap_lines] * 3 + [cut]


def mutate(text, chance):
    for _ in range(chance.choice([1, 1, 2, 4, 16])):
        if text:
            text = chance.choice(KINDS)(text, chance)
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
            folder = pathlib.Path(name)
            for number in range(options.mutations):
                (folder / f"{path.stem}-{number}.bsd").write_bytes(mutate(text, chance))
            together = options.timeout * options.mutations
            if not options.each and not run(options.reader, folder, together):
                continue
            for target in sorted(folder.iterdir()):
                alone = folder / "alone"
                if not options.each:
                    alone.mkdir()
                    shutil.copy(target, alone)
                fault = run(options.reader, target if options.each else alone, options.timeout)
                shutil.rmtree(alone, ignore_errors=True)
                if fault:
                    failures += 1
                    os.makedirs(options.keep, exist_ok=True)
                    shutil.copy(target, options.keep)
                    print(f"{os.path.join(options.keep, target.name)}: {fault}", flush=True)
    print(f"{len(files)} files, {len(files) * options.mutations} mutations, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
