"""Prints one page of what the benchmarks have found.

Usage: print_ratios.py FOLDER, which holds the results of one run.
"""

import pathlib
import statistics
import sys

from bench_results import (ALIVE, Results, all_checks, growths, runtime_case,
                           speedups)

CALLS = [
    *(f"clSetKernelArg/variants:{v}/bytes:{b}" for v in (0, 1) for b in (4, 64)),
    "clEnqueueNDRangeKernel/unknown-kernel",
    "clEnqueueNDRangeKernel/variants:0/accepts:none/unchanged",
    *(
        f"clEnqueueNDRangeKernel/variants:{case}"
        for case in (
            "1/accepts:first/unchanged",
            "1/accepts:first/changed",
            "16/accepts:none/unchanged",
            "16/accepts:last/unchanged",
        )
    ),
    "clCreateKernel+release/variants:0",
    "clCreateKernel+release/variants:4",
    "clCreateBuffer+destruction",
    *(f"clBuildProgram/kernels:{n}" for n in (10, 100, 1000)),
    "clGetProgramInfo/count",
    "clGetProgramInfo/names",
]


def print_calls(results):
    print("\nA call over a runtime that does nothing          ns: bare   hooked"
          "    added   100 alive  10 000  2 threads")
    few, many = (growths(results, "normal", alive) for alive in ALIVE[1:])
    for call in CALLS:
        bare = results.hook(f"{runtime_case(call)}/runtime")
        hooked = results.hook(f"{call}/agent")
        contended = results.hook(f"{call}/agent", threads=2)
        print(
            f"  {call:53} {bare:5.1f} {hooked:8.1f} {hooked - bare:8.1f}"
            f"     {few[call + '/agent']:5.2f}x  {many[call + '/agent']:5.2f}x"
            f"     {contended / hooked:5.1f}x"
        )


def print_yardsticks(results):
    argument = "clSetKernelArg/variants:0/bytes:4"
    print("\nYardsticks: "
          f"pass adds {results.added(argument, 'pass'):.1f} ns, "
          f"lock {results.added(argument, 'lock'):.1f} ns, "
          f"env takes {results.hook('getenv/env'):.1f} ns; "
          "lock on two threads "
          f"{results.hook(argument + '/lock', threads=2):.1f} ns a call")


def print_real(results):
    print("\nThe same on a real runtime, through loader, layer and agent"
          "      us: bare    below   ratio")
    for name, run in results.runs("launch-direct").items():
        bare = run["real_time"] / 1000
        below = results.time("launch-layer", name) / 1000
        print(f"  {name:60} {bare:8.3f} {below:8.3f}  {below / bare:5.2f}x")


def print_profiles(results):
    print("\nLaunches with a profile                                     "
          "      us: without   with   ratio")
    for name, run in results.runs("launch-profile").items():
        without = results.time("launch-layer", name) / 1000
        profiled = run["real_time"] / 1000
        print(f"  {name:60} {without:8.3f} {profiled:8.3f}"
              f"  {profiled / without:5.2f}x")
    found = speedups(results)
    print("Examples, tuned and run: times as fast as alone")
    for launch, speedup in found.items():
        print(f"  {launch:60} {speedup:5.2f}x")
    print(f"  {'geometric mean':60} "
          f"{statistics.geometric_mean(found.values()):5.2f}x")


def print_results(results):
    print("\nThe results of                                10 000 rows  100 000"
          "  1 000 000   peak")
    for what in ("table/plain", "table/agent", "table+pages/agent"):
        name, way = what.split("/")
        runs = [results.runs("flush")[f"{name}/rows:{rows}/{way}"]
                for rows in (10_000, 100_000, 1_000_000)]
        times = "".join(f"{run['real_time']:7.1f} ms " for run in runs)
        print(f"  {what:43} {times}  {runs[-1]['peakMiB']:4.0f} MiB")
    rows = [f"{way} {results.runs('rows')[f'row/before:100/{way}']['cpu_time']:.0f} ns"
            for way in ("calls", "streams", "agent")]
    print(f"  one row of the raw log: {', '.join(rows)}")
    for name, run in results.runs("tuning-hand").items():
        agent = results.runs("tuning-agent")[name]
        print(f"  {name}: beside runs and copies, by hand {run['ratio']:.3f}x,"
              f" by the agent {agent['ratio']:.3f}x")


def print_checks(results):
    print("\nLimits" + 77 * " " + "measured   at most")
    for check in all_checks(results):
        met = "" if check.measured <= check.limit else "  over"
        print(f"  {check.text:80} {check.measured:7.2f} {check.unit:3}"
              f" {check.limit:6.2f}{met}")


def main():
    results = Results(pathlib.Path(sys.argv[1]))
    print_calls(results)
    print_yardsticks(results)
    print_real(results)
    print_profiles(results)
    print_results(results)
    print_checks(results)


if __name__ == "__main__":
    main()
