"""Prints which tests failed, with the end of what they printed, and what became
of each preset's tests as a table. Fails if any of them failed.

Usage: results_table.py BUILD [PRESET STATUS MINUTES]...

STATUS is the exit status of building and testing the preset. BUILD holds CTest's
results of those that came to their tests, as PRESET.results.xml.
"""

import sys
import xml.etree.ElementTree as xml
from pathlib import Path

# The most failed tests whose output is shown, and the most lines of each.
MOST_OUTPUTS = 10
MOST_LINES = 25
HEAD = ["preset", "passed", "failed", "skipped", "minutes"]


def read_suite(results):
    """The root of CTest's results; None if there are none."""
    try:
        return xml.parse(results).getroot()
    except (OSError, xml.ParseError):
        return None


def counts(suite):
    """How many tests passed, failed and were skipped."""
    tests, failed, skipped, disabled = (
        int(suite.get(name, 0))
        for name in ("tests", "failures", "skipped", "disabled"))
    return tests - failed - skipped - disabled, failed, skipped + disabled


def print_failures(preset, suite):
    """The names of all tests that failed, and the end of what each printed."""
    failed = [test for test in suite.iter("testcase")
              if test.get("status") == "fail"]
    for number, test in enumerate(failed):
        print(f"{preset}: {test.get('name')} failed after {float(test.get('time')):.1f} s")
        if number < MOST_OUTPUTS:
            lines = (test.findtext("system-out") or "").rstrip().splitlines()
            for line in lines[-MOST_LINES:]:
                print(f"    {line}")


def row(suite, preset, status, minutes):
    found = None if suite is None else counts(suite)
    cells = [preset, *map(str, found or ("-", "-", "-")), minutes]
    if status == "0":
        return cells
    reason = "" if found and found[1] else "  failed outside of its tests"
    return cells + [f"  <-- FAILED{reason}"]


def main():
    build, words = Path(sys.argv[1]), sys.argv[2:]
    runs = [words[i:i + 3] for i in range(0, len(words), 3)]
    table = [HEAD]
    for run in runs:
        suite = read_suite(build / f"{run[0]}.results.xml")
        if suite is not None:
            print_failures(run[0], suite)
        table.append(row(suite, *run))
    widths = [max(len(line[i]) for line in table) for i in range(len(HEAD))]
    for line in table:
        cells = [line[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(line[1:5], widths[1:])]
        print("  ".join(cells) + "".join(line[5:]))
    sys.exit(any(status != "0" for _, status, _ in runs))


if __name__ == "__main__":
    main()
