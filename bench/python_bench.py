"""What Python costs beside the library: python_bench.py PROGRAM FOLDER [ROUNDS]

Prints the time of bscan.read over all files of a folder, in one thread and in several, and of taking
all cells of the largest device as dictionaries. The C++ time beside it is that of the program
`read_and_fill` beside this file, which does what bscan.read does below the package.
"""

import concurrent.futures
import pathlib
import subprocess
import sys
import time

import bscan


def milliseconds(action, rounds, clock=time.process_time):
    """The best of some rounds; the processor's time, which other programs disturb least."""
    times = []
    for _ in range(rounds):
        begin = clock()
        action()
        times.append((clock() - begin) * 1e3)
    return min(times)


def read_all(files):
    """One after the other, none of them kept, as the C++ program does."""
    for path in files:
        bscan.read(path)


def main(program, folder, rounds="7"):
    files = sorted(path for path in pathlib.Path(folder).iterdir() if path.is_file())
    count = int(rounds)
    floor = float(subprocess.run([program, rounds, *files], capture_output=True, text=True,
                                 check=True).stdout)
    alone = milliseconds(lambda: read_all(files), count)
    with concurrent.futures.ThreadPoolExecutor() as pool:
        together = milliseconds(lambda: list(pool.map(bscan.read, files)), count,
                                time.perf_counter)
    largest = max(map(bscan.read, files), key=lambda device: device.boundary_length)
    rows = milliseconds(lambda: largest.to_dict()["cells"], count)
    objects = milliseconds(
        lambda: [cell.to_dict() for cell in bscan.read(largest.file).cells], count)
    print(f"C++, {len(files)} files:        {floor:8.1f} ms")
    print(f"bscan.read, one thread:  {alone:8.1f} ms, {alone / floor:.2f} times that")
    print(f"bscan.read, threads:     {together:8.1f} ms")
    print(f"{largest.boundary_length} cells as rows:      {rows:8.1f} ms, as objects after a reading "
          f"{objects:.1f} ms")


if __name__ == "__main__":
    main(*sys.argv[1:])
