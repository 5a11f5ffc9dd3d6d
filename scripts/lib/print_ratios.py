"""Prints, for each pair of benchmarks, what a call costs through the agent."""

import json
import sys


def medians(path):
    with open(path, encoding="utf-8") as file:
        for run in json.load(file)["benchmarks"]:
            if run.get("aggregate_name") == "median":
                yield run["run_name"], run["cpu_time"]


def main():
    times = dict(medians(sys.argv[1]))
    print(f"\n{'medians':44} {'runtime':>9} {'agent':>9} {'added':>9} {'ratio':>6}")
    for name, bare in times.items():
        if not name.endswith("/runtime"):
            continue
        call = name[: -len("/runtime")]
        hooked = times[call + "/agent"]
        print(
            f"{call:44} {bare:6.1f} ns {hooked:6.1f} ns"
            f" {hooked - bare:6.1f} ns {hooked / bare:6.1f}"
        )


if __name__ == "__main__":
    main()
