#!/usr/bin/env python3
"""Runs fuzzers that are built, tells how far they are, and sums up.

Usage: run_fuzzers.py [TARGET...] [--minutes N | --seconds N | --minimise]
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/fuzz"
KEPT = ROOT / "tests/fuzz/corpus"
FOUND = BUILD / "findings"
LOGS = BUILD / "logs"

# Longer inputs cost more than they bring; a try takes milliseconds.
LIMITS = ["-max_len=600", "-timeout=20", "-rss_limit_mb=2048"]
SECONDS_BETWEEN_LINES = 10


def program(target):
    return BUILD / f"tests/fuzz/fuzz_{target}"


def all_targets():
    names = (path.name for path in (BUILD / "tests/fuzz").glob("fuzz_*"))
    return sorted(name.removeprefix("fuzz_") for name in names)


class Run:
    """What one fuzzer has said of itself so far."""

    def __init__(self, target):
        self.target = target
        self.runs = 0
        self.branches = 0
        self.all_branches = 0
        self.inputs = 0
        self.seconds = 0.0
        self.findings = []

    def read(self, line):
        if total := re.match(r"INFO: Loaded \d+ PC tables? +\((\d+) PCs\)", line):
            self.all_branches = int(total[1])
        if state := re.match(r"#(\d+)\s.*\bcov: (\d+) .*\bcorp: (\d+)", line):
            self.runs, self.branches, self.inputs = map(int, state.groups())
        if runs := re.match(r"stat::number_of_executed_units: +(\d+)", line):
            self.runs = int(runs[1])
        if finding := re.search(r"Test unit written to (\S+)", line):
            self.findings.append(Path(finding[1]))

    def progress(self):
        return (f"  {self.target}: {self.seconds:.0f} s, {self.runs} inputs tried, "
                f"{self.branches} of {self.all_branches} branches")

    def row(self):
        rate = self.runs / max(self.seconds, 1)
        return [self.target, str(self.runs), f"{rate:.0f}",
                f"{self.branches} of {self.all_branches}", str(self.inputs),
                str(len(self.findings)) if self.findings else "nothing"]


def environment(folder):
    """Temporary files go where files cost least, and are gone with the folder."""
    return {**os.environ, "TMPDIR": folder}


def temporary_folder():
    memory = Path("/dev/shm")
    return tempfile.TemporaryDirectory(
        prefix="corvane-fuzz-", dir=memory if os.access(memory, os.W_OK) else None)


def options_of(target):
    dictionary = ROOT / f"tests/fuzz/{target}.dict"
    return LIMITS + ([f"-dict={dictionary}"] if dictionary.exists() else [])


def fuzz(target, seconds):
    run = Run(target)
    corpus = BUILD / "corpus" / target
    corpus.mkdir(parents=True, exist_ok=True)
    command = [program(target), *options_of(target), "-print_final_stats=1",
               f"-max_total_time={seconds}", f"-artifact_prefix={FOUND}/{target}-",
               corpus, KEPT / target]
    begin = told = time.monotonic()
    with (temporary_folder() as folder,
          open(LOGS / f"{target}.log", "w", encoding="utf-8") as log,
          subprocess.Popen(command, env=environment(folder), text=True, errors="replace",
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as process):
        for line in process.stdout:
            log.write(line)
            run.read(line)
            run.seconds = time.monotonic() - begin
            if time.monotonic() - told > SECONDS_BETWEEN_LINES:
                told = time.monotonic()
                print(run.progress(), flush=True)
    if process.returncode != 0 and not run.findings:
        run.findings.append(LOGS / f"{target}.log")
    print(run.progress(), flush=True)
    return run


def minimise(target):
    """Puts the smallest set of inputs that reaches as much in the place of the
    inputs that are kept."""
    corpus = BUILD / "corpus" / target
    corpus.mkdir(parents=True, exist_ok=True)
    with temporary_folder() as folder, tempfile.TemporaryDirectory() as smallest:
        log = LOGS / f"{target}.minimise.log"
        with open(log, "w", encoding="utf-8") as out:
            subprocess.run([program(target), *LIMITS, "-set_cover_merge=1",
                            "-use_counters=0", smallest,
                            KEPT / target, corpus], env=environment(folder), check=True,
                           stdout=out, stderr=subprocess.STDOUT)
        shutil.rmtree(KEPT / target, ignore_errors=True)
        shutil.copytree(smallest, KEPT / target)
    sizes = [path.stat().st_size for path in (KEPT / target).iterdir()]
    print(f"  {target}: {len(sizes)} inputs of {sum(sizes)} bytes are kept", flush=True)


def print_table(rows):
    widths = [max(map(len, column)) for column in zip(*rows)]
    for number, row in enumerate(rows):
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        print("  ".join(cells))
        if number == 0:
            print("  ".join("-" * width for width in widths))


def read_arguments():
    parser = argparse.ArgumentParser(prog="scripts/fuzz")
    parser.add_argument("targets", nargs="*", metavar="TARGET")
    length = parser.add_mutually_exclusive_group()
    length.add_argument("--minutes", type=float, default=10)
    length.add_argument("--seconds", type=float)
    length.add_argument("--minimise", action="store_true")
    arguments = parser.parse_args()
    known = all_targets()
    for target in arguments.targets:
        if target not in known:
            parser.error(f"there is no target {target}; there are {', '.join(known)}")
    arguments.targets = arguments.targets or known
    return arguments


def main():
    arguments = read_arguments()
    for folder in (FOUND, LOGS):
        folder.mkdir(parents=True, exist_ok=True)
    if arguments.minimise:
        for target in arguments.targets:
            minimise(target)
        return

    seconds = max(1, round(arguments.seconds or 60 * arguments.minutes))
    runs = [fuzz(target, seconds) for target in arguments.targets]
    print()
    print_table([["target", "tried", "a second", "branches", "inputs", "found"]] +
                [run.row() for run in runs])
    findings = [finding for run in runs for finding in run.findings]
    for finding in findings:
        print(f"Found: {finding.relative_to(ROOT)}; "
              f"the log beside it says what: {LOGS.relative_to(ROOT)}")
    sys.exit(1 if findings else 0)


if __name__ == "__main__":
    main()
