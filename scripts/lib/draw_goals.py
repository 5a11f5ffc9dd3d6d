"""Draws how what the benchmarks have found stands beside its goals.

Usage: draw_goals.py FOLDER PICTURE; FOLDER holds the results of one run, and
the picture's name says what kind of picture it is (.png, .svg).
"""

import pathlib
import sys

import matplotlib

matplotlib.use("Agg")
# pylint: disable=wrong-import-position
from matplotlib import pyplot

from bench_results import Results, all_goals

MET, OVER = "#3d7dab", "#c8553d"


def main():
    folder, picture = sys.argv[1:]
    goals = list(reversed(list(all_goals(Results(pathlib.Path(folder))))))
    parts = [goal.measured / goal.limit for goal in goals]
    places = range(len(goals))

    figure, axes = pyplot.subplots(figsize=(11, 0.27 * len(goals) + 1))
    axes.barh(places, parts, height=0.7,
              color=[MET if part <= 1 else OVER for part in parts])
    axes.axvline(1, color="black", linewidth=1)
    for place, goal, part in zip(places, goals, parts):
        axes.text(part, place, f" {goal.measured:.2f} of {goal.limit:g} {goal.unit}",
                  va="center", fontsize=8)
    axes.set_yticks(places, [goal.text for goal in goals], fontsize=8)
    axes.set_xlabel("measured, as a part of what is allowed")
    axes.set_xlim(0, 1.25 * max(1, *parts))
    axes.margins(y=0.01)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)
    figure.savefig(picture, dpi=110, bbox_inches="tight")


if __name__ == "__main__":
    main()
