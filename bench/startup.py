#!/usr/bin/env python3
"""What does a file cost beyond its parse, when `kelp check` is given many small ones?

    bench/startup.py KELP [FILES]

Compares the processor time of a process that checks 1,000 small files (or FILES) with that of one
that checks a single file of all their objects, in rounds of both; prints the difference for each
file, as median and quartiles.
"""

import os
import statistics
import subprocess
import sys
import tempfile

ROUNDS = 15
SCENE = """Node node_{0} {{
\tlabel = "node number {0}";
\tposition = Vector({0}.5, -3.25, 7);
\tparent = node_{0};
\tgain = (node_{0}.base + 2.5) * 2 - 1 / 3;
}}
"""


def processor_seconds(kelp, files):
    process = subprocess.Popen([kelp, "check", *files])
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{kelp} check failed")
    return usage.ru_utime + usage.ru_stime


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    return path


def microseconds_a_file(kelp, folder, count):
    scenes = [SCENE.format(i) for i in range(count)]
    small = [write(os.path.join(folder, f"{i}.scene"), scene) for i, scene in enumerate(scenes)]
    whole = write(os.path.join(folder, "whole.scene"), "".join(scenes))
    processor_seconds(kelp, small)  # brings the files into memory
    rounds = [processor_seconds(kelp, small) - processor_seconds(kelp, [whole])
              for _ in range(ROUNDS)]
    return [seconds / (count - 1) * 1e6 for seconds in rounds]


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    count = int(sys.argv[2]) if len(sys.argv) == 3 else 1000
    with tempfile.TemporaryDirectory() as folder:
        low, median, high = statistics.quantiles(
            microseconds_a_file(sys.argv[1], folder, count), n=4)
    print(f"start-up: {median:.1f} us a file beyond its parse ({low:.1f} - {high:.1f}), "
          f"{count} files in one process, {ROUNDS} rounds")


main()
