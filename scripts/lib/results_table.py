"""Prints what became of each preset's tests, and fails if any of them failed.

Usage: results_table.py BUILD [PRESET STATUS MINUTES]...

STATUS is the exit status of building and testing the preset. BUILD holds CTest's
results of those that came to their tests, as PRESET.results.xml.
"""

import sys
import xml.etree.ElementTree as xml
from pathlib import Path

HEAD = ["preset", "passed", "failed", "skipped", "minutes"]


def counts(results):
    """How many tests passed, failed and were skipped; None without results."""
    try:
        suite = xml.parse(results).getroot()
        tests, failed, skipped, disabled = (
            int(suite.get(name, 0))
            for name in ("tests", "failures", "skipped", "disabled"))
    except (OSError, ValueError, xml.ParseError):
        return None
    return tests - failed - skipped - disabled, failed, skipped + disabled


def row(build, preset, status, minutes):
    found = counts(build / f"{preset}.results.xml")
    cells = [preset, *map(str, found or ("-", "-", "-")), minutes]
    if status == "0":
        return cells
    reason = "" if found and found[1] else "  failed outside of its tests"
    return cells + [f"  <-- FAILED{reason}"]


def main():
    build, words = Path(sys.argv[1]), sys.argv[2:]
    runs = [words[i:i + 3] for i in range(0, len(words), 3)]
    table = [HEAD] + [row(build, *run) for run in runs]
    widths = [max(len(line[i]) for line in table) for i in range(len(HEAD))]
    for line in table:
        cells = [line[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(line[1:5], widths[1:])]
        print("  ".join(cells) + "".join(line[5:]))
    sys.exit(any(status != "0" for _, status, _ in runs))


if __name__ == "__main__":
    main()
