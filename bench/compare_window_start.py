#!/usr/bin/env python3
"""Starts the tool's window and an empty Qt window in turns, without a display, up to the first painting.

    bench/compare_window_start.py BUILD_DIRECTORY [--rounds N]

The fastest start of each counts, in CPU time; the time on the clock, with the start and the end of the process, is told
beside it. Ends with 1 when the window takes more than twice the CPU time of the empty one."""

import argparse
import os
import statistics
import subprocess
import sys
import tempfile
import time

TARGET = 2.0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build_directory")
    parser.add_argument("--rounds", type=int, default=20)
    arguments = parser.parse_args()
    best = {}
    clock = {"window_start_empty": [], "window_start": []}
    with tempfile.TemporaryDirectory() as settings:
        environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_CONFIG_HOME=settings,
                           XDG_RUNTIME_DIR=settings)
        for _ in range(arguments.rounds):
            for name, times in clock.items():
                program = os.path.join(arguments.build_directory, "bin", name)
                begin = time.perf_counter()
                run = subprocess.run([program], env=environment, check=True, capture_output=True)
                times.append((time.perf_counter() - begin) * 1e3)
                best[name] = min(float(run.stdout), best.get(name, float("inf")))
    ratio = best["window_start"] / best["window_start_empty"]
    print(f"empty window {best['window_start_empty']:.1f} ms, Imagewright {best['window_start']:.1f} ms, "
          f"ratio {ratio:.2f} (at most {TARGET})")
    empty, whole = (statistics.median(clock[name]) for name in ("window_start_empty", "window_start"))
    print(f"on the clock, medians: {empty:.1f} ms, {whole:.1f} ms, ratio {whole / empty:.2f}")
    return 0 if ratio <= TARGET else 1


if __name__ == "__main__":
    sys.exit(main())
