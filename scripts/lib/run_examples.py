"""Runs the examples without and with the agent and shows both in one table.

Usage: run_examples.py BUILD_FOLDER

A layer below the agent's writes down what reaches the OpenCL runtime, so the
table shows what was really launched, not what was meant to be.
"""

import collections
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

EXAMPLES = ("matmul", "blur", "vector", "columns")

# One example program: what it said, what was launched, and how it ended.
Run = collections.namedtuple("Run", "results launches warnings log exit_code")

# One row of equal launches of one example.
Launch = collections.namedtuple("Launch", "kernel global_size local_size")


class DemoError(Exception):
    """Something that makes the table impossible, in words for the user."""


def example_command(build, name):
    command = [str(build / "examples" / name)]
    if name == "blur":
        command += ["--output", str(build / "demo")]
    return command


def clean_environment():
    """The caller's settings must not change what the demo shows."""
    return {name: value for name, value in os.environ.items()
            if not name.startswith(("CORV", "AGENT_", "OPENCL_LAYERS"))}


def parse_results(text):
    """The lines "result key=value ..." as dictionaries, in order."""
    return [dict(word.split("=", 1) for word in line.split()[1:])
            for line in text.splitlines() if line.startswith("result ")]


def parse_launches(text):
    pattern = re.compile(r"launch kernel=(\S+) global=(\S+) local=(\S+)")
    return [Launch(*pattern.fullmatch(line).groups())
            for line in text.splitlines()]


def read_text(path):
    return path.read_text(encoding="utf-8") if path.exists() else ""


def run_example(build, name, layers):
    """`layers` are named from the runtime up to the application."""
    with tempfile.TemporaryDirectory(prefix="demo-") as folder:
        observed, log = Path(folder, "launches"), Path(folder, "log")
        environment = clean_environment()
        environment["OPENCL_LAYERS"] = ":".join(map(str, layers))
        environment["LAUNCH_OBSERVER_FILE"] = str(observed)
        environment["CORVANE_DUMP_LOG"] = str(log)
        done = subprocess.run(example_command(build, name), env=environment,
                              capture_output=True, text=True, check=False)
        return Run(parse_results(done.stdout),
                   parse_launches(read_text(observed)),
                   done.stderr.splitlines(), read_text(log), done.returncode)


def split_launches(name, run):
    """What was launched for each result, which must be one thing only."""
    launches, rows = list(run.launches), []
    for result in run.results:
        count = int(result["launches"])
        row, launches = launches[:count], launches[count:]
        if len(row) != count or len(set(row)) != 1:
            raise DemoError(f"{name}, launch {result['launch']}: "
                            f"{count} equal launches were expected, "
                            f"but these were seen: {sorted(set(row))}")
        rows.append(row[0])
    if launches:
        raise DemoError(f"{name}: {len(launches)} launches too many were seen")
    return rows


def size_text(launch):
    return f"{launch.global_size} / {launch.local_size}"


def time_text(result):
    return f"{float(result['mean_us']) / 1000:.2f} ms"


def table_rows(name, plain, layered):
    """Rows of the table and, for each, whether both results were right."""
    names = [result["launch"] for result in plain.results]
    if not names or names != [r["launch"] for r in layered.results]:
        said = (plain.warnings + layered.warnings + ["without a word"])[0]
        raise DemoError(f"{name} did not come to its end: {said}")
    rows = []
    for before, after, asked, launched in zip(
            plain.results, layered.results,
            split_launches(name, plain), split_launches(name, layered)):
        right = before["wrong"] == "0" and after["wrong"] == "0"
        ratio = float(before["mean_us"]) / float(after["mean_us"])
        rows.append((name, before["launch"], size_text(asked), launched.kernel,
                     size_text(launched), time_text(before), time_text(after),
                     f"{ratio:.2f}x", "yes" if right else "NO"))
    return rows


HEADINGS = ("example", "launch", "ND range asked", "kernel launched",
            "ND range launched", "without", "with", "ratio", "right")
RIGHT_ALIGNED = {5, 6, 7}


def print_table(rows, headings, right_aligned):
    widths = [max(len(row[i]) for row in (headings, *rows))
              for i in range(len(headings))]

    def line(cells):
        return "  ".join(
            cell.rjust(width) if i in right_aligned else cell.ljust(width)
            for i, (cell, width) in enumerate(zip(cells, widths))).rstrip()

    print(line(headings))
    print("  ".join("-" * width for width in widths))
    for row in rows:
        print(line(row))


def report_words(name, layered):
    """What the agent itself said while the example ran."""
    said = layered.log.count("Corvane's generated kernel will be launched\n")
    print(f"  {name}: the agent's log tells of {said} launches of a generated "
          "kernel")
    # It closes with the length of its log, which would tell nothing here.
    length = str(len(layered.log.encode()))
    for text, count in collections.Counter(layered.warnings).items():
        if text != length:
            print(f"    and {count} times it warned:\n      {text}")


def show(build):
    layer = build / "libCorvaneLayer.so"
    observer = build / "examples" / "libLaunchObserver.so"
    (build / "demo").mkdir(parents=True, exist_ok=True)

    rows, failed = [], []
    for name in EXAMPLES:
        print(f"  {name}: without the agent ...", flush=True)
        plain = run_example(build, name, [observer])
        print(f"  {name}: with the agent ...", flush=True)
        layered = run_example(build, name, [observer, layer])
        report_words(name, layered)
        failed += [f"{name}: {line}" for line in plain.warnings]
        rows += table_rows(name, plain, layered)
        if plain.exit_code or layered.exit_code:
            failed.append(f"{name} ended with exit codes {plain.exit_code} "
                          f"without and {layered.exit_code} with the agent")

    print("\nAn ND range is global size / local size. Launched is what really "
          "reached the\nOpenCL runtime. Times, without and with the agent, are "
          "the mean of one launch.\n")
    print_table(rows, HEADINGS, RIGHT_ALIGNED)
    print(f"\nThe pictures: {build / 'demo'}/blur-before.png, blur-after.png")
    if not any("_coarsed_" in row[3] for row in rows):
        failed.append("no generated kernel was launched at all")
    failed += [f"{row[0]}, launch {row[1]}: wrong result"
               for row in rows if row[-1] != "yes"]
    return failed


def main():
    if len(sys.argv) != 2:
        sys.exit("Usage: run_examples.py BUILD_FOLDER")
    try:
        failed = show(Path(sys.argv[1]).resolve())
    except (DemoError, OSError) as error:
        sys.exit(f"demo: {error}")
    if failed:
        sys.exit("\n".join(f"demo: {line}" for line in failed))
    print("All results were right.")


if __name__ == "__main__":
    main()
