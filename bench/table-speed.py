#!/usr/bin/env python3
"""How fast a table of numbers is read, beside the C engine of pandas (Debian package python3-pandas), in turn.

table-speed.py PROGRAM [MEGABYTES]: PROGRAM is opening_time of the release preset. The file is in the page cache."""
import math
import os
import random
import re
import subprocess
import sys
import tempfile
import time

import pandas

RUNS = 5


def write_table(path, size):
    noise = random.Random(1)
    with open(path, "w") as file:
        file.write("time (s),a,b,c,d\n")
        row = 0
        while file.tell() < size:
            rows = []
            for row in range(row, row + 20000):
                rows.append("%.4f,%.5f,%.4f,%d,%.6f\n" % (row / 1000, 3 * math.sin(row / 100) + 0.1 * noise.random(),
                                                          noise.gauss(0, 50), noise.randint(-3000, 3000), noise.random()))
            row += 1
            file.write("".join(rows))


def ours(program, path):
    report = subprocess.run([program, "1000", path], check=True, capture_output=True, text=True).stdout
    opening = float(re.search(r"opening ([\d.]+) ms", report).group(1)) / 1000
    return opening + float(re.search(r"reading on: \d+ steps in ([\d.]+) s", report).group(1))


def theirs(path):
    start = time.perf_counter()
    pandas.read_csv(path, engine="c")
    return time.perf_counter() - start


def main():
    program = sys.argv[1]
    megabytes = int(sys.argv[2]) if len(sys.argv) > 2 else 160
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "table.csv")
        write_table(path, megabytes * 1000000)
        size = os.path.getsize(path) / 1e6
        print("%.0f MB, load %.1f, pandas %s" % (size, os.getloadavg()[0], pandas.__version__))
        for run in range(RUNS):
            print("run %d: ours %.0f MB/s, pandas %.0f MB/s" % (run + 1, size / ours(program, path), size / theirs(path)))


if __name__ == "__main__":
    main()
