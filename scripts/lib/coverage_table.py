"""Prints how much of each folder the tests reached, and what they did not.

Usage: coverage_table.py FOLDER

FOLDER holds summary.json and lines.json by gcovr. The exit status is 1 if a limit
is not kept.
"""

import collections
import json
import sys
from pathlib import Path

from run_examples import print_table

# In percent of what gcovr counts, all folders together that run within
# applications.
LIMITS = {"line": 97, "branch": 90}
PROGRAMS = ("tools",)
GUESTS = "in applications"


def read(path):
    return json.loads(path.read_text(encoding="utf-8"))["files"]


def folder_of(file):
    return file["filename"].split("/")[0]


def sums(files):
    """By folder, and together, how many there are and how many were reached."""
    folders = sorted({folder_of(file) for file in files})
    counts = {name: collections.Counter() for name in (*folders, GUESTS, "all")}
    for file in files:
        folder = folder_of(file)
        together = ("all",) if folder in PROGRAMS else (GUESTS, "all")
        for name in (folder, *together):
            counts[name].update({key: value for key, value in file.items()
                                 if key.endswith(("_total", "_covered"))})
    return counts


def percent(count, kind):
    return 100 * count[f"{kind}_covered"] / max(count[f"{kind}_total"], 1)


def row(name, count):
    cells = [name]
    for kind in LIMITS:
        cells += [f"{count[f'{kind}_covered']} of {count[f'{kind}_total']}",
                  f"{percent(count, kind):.1f} %"]
    return cells


def ranges(numbers):
    """1, 2, 3, 7 as "1-3, 7"."""
    spans = []
    for number in numbers:
        if spans and number == spans[-1][1] + 1:
            spans[-1][1] = number
        else:
            spans.append([number, number])
    return ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in spans)


def print_unreached(files):
    for file in files:
        missed = [line["line_number"] for line in file["lines"]
                  if not line["count"] and not line.get("gcovr/noncode")]
        if missed:
            print(f"not reached: {file['file']}: {ranges(missed)}")


def main():
    folder = Path(sys.argv[1])
    counts = sums(read(folder / "summary.json"))
    print()
    print_table([row(name, count) for name, count in counts.items()],
                ("folder", "lines", "", "branches", ""), {1, 2, 3, 4})
    print()
    print_unreached(read(folder / "lines.json"))
    print(f"\nIn the sources: {folder}/index.html")

    broken = [f"{percent(counts[GUESTS], kind):.1f} % of the {name} {GUESTS} were "
              f"reached, {LIMITS[kind]} % are wanted"
              for kind, name in (("line", "lines"), ("branch", "branches"))
              if percent(counts[GUESTS], kind) < LIMITS[kind]]
    if broken:
        sys.exit("\n".join(broken))


if __name__ == "__main__":
    main()
