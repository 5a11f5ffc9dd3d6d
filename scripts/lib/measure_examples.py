"""Tunes the examples, and measures them alone and with their profile.

Usage: measure_examples.py PROGRAMS FOLDER RESULT

PROGRAMS is the folder of the build, FOLDER one for the profiles. RESULT gets,
as JSON, the microseconds of each launch alone and with the profile: medians of
several runs of the example, in turns.
"""

import json
import os
import pathlib
import re
import statistics
import subprocess
import sys

EXAMPLES = ("blur", "columns", "matmul", "vector")
TURNS = 5
LINE = re.compile(r"^result example=(\S+) launch=(\S+) .*mean_us=(\S+) wrong=0 ")


def run_in(folder, command):
    """What the example says; one of them leaves pictures in its folder."""
    return subprocess.run(command, check=True, capture_output=True, text=True,
                          cwd=folder).stdout


def times_of(said):
    """Microseconds by launch, as the example tells them."""
    return {f"{found[1]}/{found[2]}": float(found[3])
            for found in map(LINE.match, said.splitlines()) if found}


def measure(program, command, folder):
    folder.mkdir(parents=True)
    run_in(folder, [command, "tune", "--output", folder, "--", program])
    ways = {"bare": [program],
            "run": [command, "run", "--profile", folder, "--", program]}
    turns = {way: [] for way in ways}
    for _ in range(TURNS):
        for way, words in ways.items():
            turns[way].append(times_of(run_in(folder, words)))
    return {launch: {way: statistics.median(turn[launch] for turn in turns[way])
                     for way in ways}
            for launch in turns["bare"][0]}


def main():
    programs, folder, result = (pathlib.Path(path).resolve()
                                for path in sys.argv[1:])
    for name in [name for name in os.environ if name.startswith("CORV")]:
        del os.environ[name]
    os.environ.pop("OPENCL_LAYERS", None)
    measured = {}
    for example in EXAMPLES:
        measured.update(measure(programs / "examples" / example,
                                programs / "corvane", folder / example))
    result.write_text(json.dumps(measured, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
