"""Draws what the benchmarks have found beside its limits.

Usage: draw_limits.py FOLDER PICTURE; FOLDER holds the results of one run, and
the picture's name says what kind of picture it is (.png, .svg).
"""

import pathlib
import sys

import matplotlib

matplotlib.use("Agg")
# pylint: disable=wrong-import-position
from matplotlib import pyplot

from bench_results import Results, all_checks

MET, OVER = "#3d7dab", "#c8553d"


def main():
    folder, picture = sys.argv[1:]
    checks = list(reversed(list(all_checks(Results(pathlib.Path(folder))))))
    parts = [check.measured / check.limit for check in checks]
    places = range(len(checks))

    figure, axes = pyplot.subplots(figsize=(11, 0.27 * len(checks) + 1))
    axes.barh(places, parts, height=0.7,
              color=[MET if part <= 1 else OVER for part in parts])
    axes.axvline(1, color="black", linewidth=1)
    for place, check, part in zip(places, checks, parts):
        axes.text(part, place, f" {check.measured:.2f} of {check.limit:g} {check.unit}",
                  va="center", fontsize=8)
    axes.set_yticks(places, [check.text for check in checks], fontsize=8)
    axes.set_xlabel("measured, as a part of what is allowed")
    axes.set_xlim(0, 1.25 * max(1, *parts))
    axes.margins(y=0.01)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)
    figure.savefig(picture, dpi=110, bbox_inches="tight")


if __name__ == "__main__":
    main()
