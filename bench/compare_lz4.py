#!/usr/bin/env python3
"""Runs the compression of configuration streams side by side with the lz4 program on the same 64 MiB.

    bench/compare_lz4.py BUILD_DIRECTORY [--rounds N] [--directory /dev/shm]

Both cut the data into blocks of 1 MiB that decode by themselves, at the same level (1), without a checksum over the
content. Processor time counts, in the program and in the kernel; the programs take turns and the best run counts. The
data are the real configuration images of the examples, one behind the other until there is enough, what
"imagewright-cmd sample" invents, and, as a dense design, the machine code of this program. Ends with 1 when a figure misses its target."""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile

from compare_formats import MIB, Report, race

SIZE = 64 * MIB


def repeat(names, path):
    """The files one behind the other, again and again."""
    content = b""
    for name in names:
        with open(name, "rb") as file:
            content += file.read()
    with open(path, "wb") as file:
        left = SIZE
        while left > 0:
            left -= file.write(content[: min(left, len(content))])


def example_images():
    """The raw configuration images of the examples."""
    folder = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "examples", "images")
    return [os.path.join(folder, name) for name in sorted(os.listdir(folder)) if name.endswith((".bin", ".bit"))]


def sample_data(build, path):
    """The core of an invented bitstream."""
    command = os.path.join(build, "bin", "imagewright-cmd")
    whole = path + ".sof"
    subprocess.run([command, "--quiet", "sample", "--device", "ZR9A041", "-o", whole], check=True)
    subprocess.run([command, "--quiet", "inspect", whole, "--extract", "core", "-o", path], check=True)
    os.truncate(path, SIZE)
    os.remove(whole)


def compare(report, title, tool, data, rounds, at):
    ours, theirs, stream, packed = at("ours"), at("theirs"), at("stream"), at("packed.sof")
    subprocess.run([tool, "pack", packed, data], check=True)
    commands = {
        "compressed frames": [tool, "lz4", ours, data],
        "lz4 -1 -B6": ["lz4", "-q", "-f", "-1", "-B6", "--no-frame-crc", data, theirs],
        "whole stream, with digests": [tool, "rbf", stream, packed, "--stream", "--lz4"],
    }
    best = race(commands, rounds, [ours, theirs, stream])
    print(f"\n{title}")
    for name, (seconds, _) in best.items():
        print(f"  {name:<28} {seconds * 1000:9.1f} ms")
    for command in commands.values():
        subprocess.run(command, check=True)
    sizes = {name: os.path.getsize(path) for name, path in (("frames", ours), ("lz4", theirs), ("stream", stream))}
    print("  bytes: " + ", ".join(f"{name} {size}" for name, size in sizes.items()))
    report.target("speed of the lz4 program", best["lz4 -1 -B6"][0] / best["compressed frames"][0], 0.8, True)
    report.target("size of the stream", sizes["stream"] / sizes["lz4"], 1.02)
    for path in (ours, theirs, stream, packed):
        os.remove(path)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--directory", default="/dev/shm")
    arguments = parser.parse_args()
    tool = os.path.join(arguments.build, "bin", "format_tool")
    folder = tempfile.mkdtemp(dir=arguments.directory)
    report = Report()

    def at(name):
        return os.path.join(folder, name)

    try:
        repeat(example_images(), at("images"))
        compare(report, "configuration images of the examples", tool, at("images"), arguments.rounds, at)
        sample_data(arguments.build, at("sample"))
        compare(report, "sample", tool, at("sample"), arguments.rounds, at)
        repeat([tool, os.path.join(arguments.build, "lib", "libimagewright_backend.so")], at("code"))
        compare(report, "machine code of this program", tool, at("code"), arguments.rounds, at)
    finally:
        shutil.rmtree(folder)
    sys.exit(1 if report.missed else 0)


if __name__ == "__main__":
    main()
