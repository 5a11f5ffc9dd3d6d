"""Runs OpenCL programs without the layer and with it, and compares.

Usage: run_transparency.py [PROGRAM...] [options]; scripts/transparency has the help.
"""

import argparse
import concurrent.futures
import os
import re
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass, field
from pathlib import Path

from opencl_programs import PROGRAMS
from opencl_runs import Folders, Way, file_name, run
from run_examples import print_table

ROOT = Path(__file__).resolve().parents[2]
HEADINGS = ("program", "version", "processes", "tests", "equal", "flaky", "different",
            "timed", "reports")

# How often more a program runs alone, before a difference counts as the layer's.
DOUBTS = 4


@dataclass
class Verdicts:
    """What came of some cases; the lists hold names."""

    processes: int = 0
    equal: int = 0
    flaky: list = field(default_factory=list)
    different: list = field(default_factory=list)
    timed: int = 0
    reports: int = 0

    def add(self, other):
        for name, value in vars(other).items():
            setattr(self, name, getattr(self, name) + value)

    def tests(self):
        return self.equal + len(self.flaky) + len(self.different)


def sort_tests(alone, layered):
    """Names of tests: equal in all runs, flaky alone, different with the layer."""
    equal, flaky, different = [], [], []
    for test in dict.fromkeys(name for one in alone + layered for name in one.tests):
        usual = {one.tests.get(test) for one in alone}
        if len(usual) > 1:
            flaky.append(test)
        elif all(one.tests.get(test) in usual for one in layered):
            equal.append(test)
        else:
            different.append(test)
    return equal, flaky, different


def judge(case, ways, folders, keep):
    """Runs a case in all ways and compares."""
    bare, *with_layer = ways
    folder = keep / file_name(case.name)
    shutil.rmtree(folder, ignore_errors=True)
    alone = [run(case, bare, folders, folder / f"{bare.name}-{i}") for i in (1, 2)]
    layered = [run(case, way, folders, folder / way.name) for way in with_layer]
    if sort_tests(alone, layered)[2]:
        alone += [run(case, bare, folders, folder / f"{bare.name}-{i}")
                  for i in range(3, 3 + DOUBTS)]
    equal, flaky, different = sort_tests(alone, layered)
    if any(one.missing for one in layered):
        different.append("there was no agent")
    named = [[f"{case.name}: {test}" for test in tests] for tests in (flaky, different)]
    return Verdicts(1, len(equal), *named, sum(one.timed for one in layered),
                    sum(one.reports for one in layered))


def judge_program(key, options, folders):
    program, began = PROGRAMS[key], time.monotonic()
    cases = [case for case in program.cases(options.whole)
             if re.search(options.cases, case.name)]
    for missing in {case.command[0] for case in cases if not shutil.which(case.command[0])}:
        sys.exit(f"{missing} is missing; on Debian: apt-get install {program.packages[0]}")
    print(f"  {program.name}: {len(cases)} processes, each in all ways ...", flush=True)
    ways = (Way("alone"), Way("normal", options.layer), Way("autotuning", options.layer, True))
    verdicts = Verdicts()
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for one in pool.map(lambda case: judge(case, ways, folders, options.folder / key), cases):
            verdicts.add(one)
    print(f"    {verdicts.equal} equal, {len(verdicts.flaky)} flaky, "
          f"{len(verdicts.different)} different; {time.monotonic() - began:.0f} s",
          flush=True)
    return verdicts


def version_of(package):
    return subprocess.run(
        ("dpkg-query", "--show", "--showformat=${Version}", package),
        check=True, capture_output=True, text=True).stdout


def row(key, verdicts):
    program = PROGRAMS[key]
    numbers = (verdicts.processes, verdicts.tests(), verdicts.equal, len(verdicts.flaky),
               len(verdicts.different), verdicts.timed, verdicts.reports)
    return (program.name, version_of(program.packages[0]), *map(str, numbers))


def print_markdown(rows):
    print("| " + " | ".join(HEADINGS) + " |")
    print("|" + "---|" * 2 + "---:|" * (len(HEADINGS) - 2))
    for cells in rows:
        print("| " + " | ".join(cells) + " |")


def print_lists(found, folders_folder):
    for key, verdicts in found.items():
        for word in ("flaky", "different"):
            for test in getattr(verdicts, word):
                print(f"{word}: {PROGRAMS[key].name}, {test}")
    print(f"\nEverything that was printed: {folders_folder}")


def read_arguments():
    parser = argparse.ArgumentParser(prog="scripts/transparency")
    parser.add_argument("programs", nargs="*", metavar="PROGRAM")
    parser.add_argument("--whole", action="store_true")
    parser.add_argument("--cases", default="", metavar="PATTERN")
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("--packages", action="store_true")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--build", type=Path, default=ROOT / "build/release")
    parser.add_argument("--folder", type=Path, default=ROOT / "build/transparency")
    options = parser.parse_args()
    for name in options.programs:
        if name not in PROGRAMS:
            parser.error(f"there is no {name}; there are {', '.join(PROGRAMS)}")
    options.programs = options.programs or list(PROGRAMS)
    options.layer = options.build.resolve() / "libCorvaneLayer.so"
    options.folder = options.folder.resolve()
    if not options.packages and not options.layer.exists():
        parser.error(f"there is no {options.layer}")
    return options


def main():
    options = read_arguments()
    if options.packages:
        print("\n".join(name for key in options.programs for name in PROGRAMS[key].packages))
        return
    folders = Folders(options.folder, options.build.resolve() / "share/corvane")
    found = {key: judge_program(key, options, folders) for key in options.programs}
    print()
    rows = [row(key, verdicts) for key, verdicts in found.items()]
    print(f"PoCL {version_of('pocl-opencl-icd')}, ocl-icd {version_of('ocl-icd-libopencl1')}\n")
    if options.markdown:
        print_markdown(rows)
    else:
        print_table(rows, HEADINGS, set(range(2, len(HEADINGS))))
    print()
    print_lists(found, options.folder)
    sys.exit(any(verdicts.different or not verdicts.processes for verdicts in found.values()))


if __name__ == "__main__":
    main()
