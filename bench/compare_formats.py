#!/usr/bin/env python3
"""Runs format_tool side by side with cp, objcopy, srec_cat and genimage on the same input, all files in a tmpfs.

    bench/compare_formats.py BUILD_DIRECTORY [--rounds N] [--directory /dev/shm]

Processor time counts, in the program and in the kernel: nothing waits for a device here, and a busy machine hardly
changes it. The programs take turns and the best run of each counts. Ends with 1 when a figure misses its target."""

import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile

MIB = 1 << 20


def run(command):
    """Seconds of processor time and peak memory in KiB of one run."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    errors = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    seconds = usage.ru_utime + usage.ru_stime
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(command)}\n{errors.decode()}")
    return seconds, usage.ru_maxrss


def race(commands, rounds, output):
    """The best time and the largest memory of each named command."""
    best = {}
    for number in range(rounds):
        for name, command in commands.items():
            if name == "srec_cat" and number > 0:
                continue  # minutes, not milliseconds
            for path in output:
                if os.path.exists(path):
                    os.remove(path)
            seconds, memory = run(command)
            old = best.get(name, (seconds, memory))
            best[name] = (min(seconds, old[0]), max(memory, old[1]))
    return best


class Report:
    def __init__(self):
        self.missed = False

    def show(self, title, best):
        print(f"\n{title}")
        for name, (seconds, memory) in best.items():
            print(f"  {name:<28} {seconds * 1000:9.1f} ms  {memory / 1024:7.1f} MiB")

    def target(self, text, value, limit, at_least=False):
        held = value >= limit if at_least else value <= limit
        self.missed = self.missed or not held
        print(f"  {text}: {value:.2f} ({'at least' if at_least else 'at most'} {limit}) {'held' if held else 'MISSED'}")


def compare_text(report, tool, rounds, at):
    """How fast the text of the JTAG formats is written and checked."""
    with open(at("small.bin"), "wb") as file, open(at("stream.bin"), "rb") as stream:
        for _ in range(32):
            file.write(stream.read(MIB))
    out = at("out")
    for format in ("svf", "jam"):
        command = [tool, format, out, at("small.bin")]
        run(command)
        text = os.path.getsize(out) / 1e6
        best = race({format: command, format + " --verify": command + ["--verify"]}, rounds, [out])
        report.show(f"32 MiB stream to {format.upper()}, {text:.0f} MB", best)
        report.target("MB/s of text, written", text / best[format][0], 500, True)
        report.target("MB/s of text, written and read back", text / best[format + " --verify"][0], 500, True)


def compare_checks(report, tool, rounds, at):
    """What reading back adds to a whole generation from a bitstream file on."""
    run([tool, "pack", at("top.sof"), at("stream.bin")])
    out = at("out")
    for format in ("rbf", "hex", "ttf", "svf", "jam", "jbc"):
        command = [tool, format, out, at("top.sof"), "--stream"]
        best = race({format: command, format + " --verify": command + ["--verify"]}, rounds, [out])
        report.show(f"64 MiB bitstream to {format.upper()}", best)
        report.target("% added by reading back", 100 * (best[format + " --verify"][0] / best[format][0] - 1), 30)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--directory", default="/dev/shm")
    parser.add_argument("--only", choices=("hex", "ttf", "rpd", "text", "check"))
    parser.add_argument("--without-srec-cat", action="store_true")
    arguments = parser.parse_args()
    tool = os.path.join(arguments.build, "bin", "format_tool")
    report = Report()

    with tempfile.TemporaryDirectory(dir=arguments.directory) as directory:
        def at(name):
            return os.path.join(directory, name)

        generator = random.Random(1)
        with open(at("stream.bin"), "wb") as file:
            for _ in range(64):
                file.write(generator.randbytes(MIB))

        for format, limit in (("hex", 1.6), ("ttf", 2.0)):
            if arguments.only not in (None, format):
                continue
            result = at("result." + format)
            run([tool, format, result, at("stream.bin")])
            copy = at("copy")
            out = at("out")
            commands = {"imagewright " + format: [tool, format, out, at("stream.bin")],
                        "imagewright " + format + " --verify": [tool, format, out, at("stream.bin"), "--verify"],
                        "cp of the result": ["cp", result, copy]}
            if format == "hex":
                commands["objcopy"] = ["objcopy", "-I", "binary", "-O", "ihex", at("stream.bin"), out]
                if not arguments.without_srec_cat:
                    commands["srec_cat"] = ["srec_cat", at("stream.bin"), "-binary", "-o", out, "-intel",
                                            "-line-length=44"]
            best = race(commands, arguments.rounds, [out, copy])
            report.show(f"64 MiB stream to {format.upper()}", best)
            mine = best["imagewright " + format][0]
            report.target("times cp", mine / best["cp of the result"][0], limit)
            if format == "hex":
                report.target("times as fast as objcopy", best["objcopy"][0] / mine, 2.3, True)
                if "srec_cat" in best:
                    report.target("times as fast as srec_cat", best["srec_cat"][0] / mine, 20, True)
            checked = best["imagewright " + format + " --verify"][0]
            print(f"  verification adds {100 * (checked / mine - 1):.0f} %")
            for path in (result, out, copy):
                if os.path.exists(path):
                    os.remove(path)

        if arguments.only in (None, "text"):
            compare_text(report, tool, arguments.rounds, at)
        if arguments.only in (None, "check"):
            compare_checks(report, tool, arguments.rounds, at)
        for name in os.listdir(directory):
            os.remove(at(name))
        if arguments.only not in (None, "rpd"):
            return 1 if report.missed else 0
        inputs = []
        for number in range(8):
            inputs.append(at(f"input{number}.bin"))
            with open(inputs[-1], "wb") as file:
                for _ in range(32):
                    file.write(generator.randbytes(MIB))
        out = at("image.rpd")
        result = at("result.rpd")
        copy = at("copy")
        run([tool, "rpd", result] + inputs)
        commands = {"imagewright rpd, map": [tool, "rpd", out] + inputs,
                    "imagewright rpd, map --verify": [tool, "rpd", out, "--verify"] + inputs,
                    "imagewright rpd --bitswap": [tool, "rpd", out, "--bitswap"] + inputs,
                    "cp of the result": ["cp", result, copy],
                    "dd of the result": ["dd", "if=" + result, "of=" + copy, "bs=128K", "status=none"]}
        if shutil.which("genimage"):
            with open(at("genimage.cfg"), "w") as file:
                file.write("flash nor { pebsize = 64K numpebs = 4096 minimum-io-unit-size = 1 }\n")
                file.write('image image.rpd { flash {} flashtype = "nor"\n')
                for number in range(8):
                    file.write(f'partition p{number} {{ image = "input{number}.bin" size = 32M }}\n')
                file.write("}\n")
            os.mkdir(at("root"))
            commands["genimage"] = ["genimage", "--config", at("genimage.cfg"), "--inputpath", directory,
                                    "--outputpath", directory, "--rootpath", at("root"), "--tmppath", at("scratch")]
        best = race(commands, arguments.rounds, [out, copy])
        report.show("256 MiB flash image from eight inputs", best)
        mine, memory = best["imagewright rpd, map"]
        report.target("times cp", mine / best["cp of the result"][0], 1.5)
        report.target("peak memory in MiB", max(memory, best["imagewright rpd, map --verify"][1]) / 1024, 64)
        print(f"  verification adds {100 * (best['imagewright rpd, map --verify'][0] / mine - 1):.0f} %")
    return 1 if report.missed else 0


if __name__ == "__main__":
    sys.exit(main())
