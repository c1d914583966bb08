#!/usr/bin/env python3
"""Changes single places of the library at random and tells the share that the tests catch.

    tests/mutate_library.py [COUNT [SEED]]

Works in a copy of the sources, build/mutants. The same seed changes the same places of the same
sources, so that two states of the tests can be compared. A change that does not compile, or gives
the same program, does not count.
"""

import pathlib
import random
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
COPY = ROOT / "build" / "mutants" / "source"
SWAPS = {"==": "!=", "!=": "==", "<": "<=", ">": ">=", "<=": "<", ">=": ">", "&&": "||",
         "||": "&&", "+": "-", "-": "+", "+=": "-=", "-=": "+=", "true": "false", "false": "true",
         "continue;": "break;", "break;": "continue;", "kOk;": "kFailed;"}
WORDS = re.compile(r"(?<= )(?:[=!<>]=|&&|\|\||[-+]=|[-+<>])(?= )|\b(?:true|false)\b|"
                   r"\b(?:continue|break|kOk);|(?<![\w.'\"])\d+(?![\w.'\"])")
CONDITION = re.compile(r"(.*\b(?:if|while) \()(.*)(\) (?:\{|return.*;|continue;|break;))")
STATEMENT = re.compile(r"\s+[\w.>()\[\]*:-]+(\(.*\)| [-+|&]?= .*|\+\+);")


def changes_of_line(line):
    """Other lines that could stand in the place of a line."""
    if re.match(r"\s*(//|#|static_assert|friend|using|template)", line):
        return
    code = line.split("//")[0].rstrip()
    for word in WORDS.finditer(code):
        changed = SWAPS.get(word[0]) or str(int(word[0]) + 1)
        yield code[:word.start()] + changed + code[word.end():]
    if condition := CONDITION.fullmatch(code):
        yield f"{condition[1]}!({condition[2]}){condition[3]}"
    if STATEMENT.fullmatch(code):
        yield ""


def run(*command):
    """Whether a command succeeds in a minute of processor time."""
    limits = 'ulimit -t 60 -v 6000000; timeout 900 "$@"'
    return not subprocess.run(["bash", "-c", limits, "", *command], capture_output=True).returncode


def main():
    count, seed = (int(text) for text in (sys.argv[1:] + ["80", "1"][len(sys.argv) - 1:])[:2])
    shutil.rmtree(COPY.parent, ignore_errors=True)
    shutil.copytree(ROOT, COPY, ignore=shutil.ignore_patterns("build", ".git"))
    (COPY.parent / "shared").symlink_to(ROOT.parent / "shared")
    program = COPY / "build/tests/bscan_tests"
    run("cmake", "-S", COPY, "-B", COPY / "build", "-G", "Ninja", "-DCMAKE_CXX_FLAGS=-O1",
        "-DCMAKE_BUILD_TYPE=None", "-DBSCAN_TOOLS=OFF", "-DBSCAN_EXAMPLES=OFF")
    build = ["cmake", "--build", COPY / "build", "--parallel", "2", "--target", "bscan_tests"]
    test = [program, "--gtest_fail_fast"]
    if not run(*build) or not run(*test):
        sys.exit("the tests do not pass as they are")
    unchanged = program.read_bytes()
    changes = [(COPY / folder / path.name, at, changed)
               for folder in ("parser", "model", "support")
               for path in sorted((ROOT / folder).glob("*.*"))
               for at, line in enumerate(path.read_text().splitlines())
               for changed in changes_of_line(line)]
    random.Random(seed).shuffle(changes)
    counted = caught = 0
    for path, at, changed in changes:
        if counted == count:
            break
        original = path.read_text()
        lines = original.splitlines()
        lines[at] = changed
        path.write_text("\n".join(lines) + "\n")
        if run(*build) and program.read_bytes() != unchanged:
            counted += 1
            if run(*test):
                print(f"not caught: {path.relative_to(COPY)}:{at + 1}: {changed.strip()}", flush=True)
            else:
                caught += 1
        path.write_text(original)
    print(f"{caught} of {counted} changes caught")


if __name__ == "__main__":
    main()
