#!/usr/bin/env python3
"""Compares the start of the command-line program with that of an empty program: bench/compare_start.py BUILD_DIRECTORY

The two take turns and the fastest run of each counts. Ends with 1 when the target is missed.
"""

import os
import subprocess
import sys
import time

TARGET = 2.0
RUNS = 60


def seconds(command):
    """The time of one run from fork to exit."""
    begin = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return time.perf_counter() - begin


def main():
    programs = os.path.join(sys.argv[1] if len(sys.argv) > 1 else "build/release", "bin")
    version = [os.path.join(programs, "imagewright-cmd"), "--version"]
    empty = [os.path.join(programs, "empty_core_application")]
    times = [(seconds(version), seconds(empty)) for _ in range(RUNS)]
    ours, theirs = (min(column) for column in zip(*times))
    print(f"imagewright-cmd --version  {ours * 1000:6.2f} ms")
    print(f"empty QCoreApplication     {theirs * 1000:6.2f} ms")
    print(f"ratio {ours / theirs:.2f}, target at most {TARGET}")
    libraries = subprocess.run(["ldd", version[0]], check=True, capture_output=True, text=True).stdout
    print("Qt libraries of imagewright-cmd:", "some" if "libQt5" in libraries else "none")
    return 0 if ours <= TARGET * theirs and "libQt5Gui" not in libraries else 1


if __name__ == "__main__":
    sys.exit(main())
