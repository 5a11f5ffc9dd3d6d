"""Autotunes the examples and shows which version of each kernel is fastest.

Usage: autotune_examples.py BUILD_FOLDER

Every number comes from the tables that the agent wrote; whether the results are
right comes from the examples, which compare with the processor's own.
"""

import collections
import csv
import shutil
import statistics
import subprocess
import sys
from pathlib import Path

from run_examples import (EXAMPLES, DemoError, clean_environment,
                          example_command, parse_results, print_table)

LAUNCHES = 6

# One version of a kernel in one configuration; times in microseconds.
Version = collections.namedtuple("Version", "name samples mean speedup")


def autotune(build, name, folder):
    """Runs one example with autotuning on; its result lines."""
    environment = clean_environment()
    environment["OPENCL_LAYERS"] = str(build / "libCorvaneLayer.so")
    environment["CORVANE_AUTOTUNE"] = str(folder)
    environment["CORVANE_INSTALL_LOCATION"] = str(build / "share" / "corvane")
    command = example_command(build, name) + ["--iterations", str(LAUNCHES)]
    done = subprocess.run(command, env=environment, capture_output=True,
                          text=True, check=False)
    if done.returncode:
        said = (done.stderr.splitlines() + ["without a word"])[0]
        raise DemoError(f"{name}: autotuning ended with exit code "
                        f"{done.returncode}: {said}")
    return parse_results(done.stdout)


def title(row):
    """A configuration in words, as in the report's index."""
    sizes = [f"{axis}:{row[axis + '_global']}/{row[axis + '_local']}"
             for axis in "xyz" if row[axis + "_global"]]
    return f"{row['kernel']} [ {', '.join(sizes)} ]"


def read_table(path):
    """For each configuration, its versions from the fastest to the slowest."""
    times = collections.defaultdict(lambda: collections.defaultdict(list))
    with open(path, encoding="utf-8", newline="") as file:
        for row in csv.DictReader(file):
            times[title(row)][row["coarsed_kernel"]].append(float(row["time"]))
    return {name: rank(versions) for name, versions in times.items()}


def rank(versions):
    means = {name: statistics.fmean(samples)
             for name, samples in versions.items()}
    return [Version(name, len(versions[name]), means[name],
                    means["baseline"] / means[name])
            for name in sorted(means, key=means.get)]


def table_rows(configuration, versions):
    for place, version in enumerate(versions, 1):
        yield (configuration if place == 1 else "", str(place), version.name,
               str(version.samples), f"{version.mean / 1000:.3f} ms",
               f"{version.speedup:.2f}x")


def show(build):
    results = build / "demo" / "autotune"
    shutil.rmtree(results, ignore_errors=True)
    results.mkdir(parents=True)

    rows, failed, reports = [], [], []
    for name in EXAMPLES:
        print(f"  {name}: {LAUNCHES} launches of every version ...", flush=True)
        folder = results / name
        for result in autotune(build, name, folder):
            if result["wrong"] != "0":
                failed.append(f"{name}, launch {result['launch']}: wrong result")
        for configuration, versions in read_table(folder / "autotune.csv").items():
            rows += table_rows(configuration, versions)
        if not (folder / "main.html").exists():
            failed.append(f"{name}: no report was written")
        reports.append(folder / "main.html")

    print()
    print_table(rows,
                ("configuration", "rank", "version", "samples", "mean", "speedup"),
                right_aligned={1, 3, 4, 5})
    if not failed:
        print("\nAll results were right again. "
              "The reports, to open in a browser:")
        for report in reports:
            print(f"  {report}")
    return failed


def main():
    if len(sys.argv) != 2:
        sys.exit("Usage: autotune_examples.py BUILD_FOLDER")
    try:
        failed = show(Path(sys.argv[1]).resolve())
    except (DemoError, OSError, KeyError) as error:
        sys.exit(f"demo: {error}")
    if failed:
        sys.exit("\n".join(f"demo: {line}" for line in failed))


if __name__ == "__main__":
    main()
