"""Reads the results of the benchmarks and compares them with their limits."""

import collections
import json
import re
import statistics

ALIVE = (1, 100, 10_000)
MODES = ("normal", "autotuning")

# What is compared with a limit; both in the same unit.
Check = collections.namedtuple("Check", "text measured limit unit")


class Results:
    """The medians of one run of scripts/bench, from its folder."""

    def __init__(self, folder):
        self.folder = folder
        self.files = {}

    def runs(self, file):
        """The medians in a file by the benchmark's own name."""
        if file not in self.files:
            path = self.folder / f"{file}.json"
            content = json.loads(path.read_text(encoding="utf-8"))
            self.files[file] = {
                plain_name(run["run_name"]): run
                for run in content["benchmarks"]
                if run.get("aggregate_name") == "median"
            }
        return self.files[file]

    def time(self, file, name):
        return self.runs(file)[name]["real_time"]

    def hook(self, name, alive=1, threads=1, mode="normal"):
        """Nanoseconds of a hooked call, or of a yardstick.

        On one thread these are of the processor: what other programs take
        meanwhile is not counted. Two threads wait for each other, and that is.
        """
        run = self.runs(f"hooks-{mode}-{alive}-{threads}")[name]
        return run["cpu_time" if threads == 1 else "real_time"]

    def added(self, call, yardstick="agent", **where):
        """What the call costs more than straight to the runtime."""
        bare = runtime_case(call)
        return self.hook(f"{call}/{yardstick}", **where) - self.hook(
            f"{bare}/runtime", **where
        )


def plain_name(name):
    return re.sub(r"/(iterations:\d+|real_time|manual_time|threads:\d+)", "", name)


def runtime_case(call):
    """Straight to the runtime a call costs the same whatever the agent does."""
    function = call.split("/")[0]
    if function == "clSetKernelArg":
        return "clSetKernelArg/variants:0/bytes:4"
    if function == "clEnqueueNDRangeKernel":
        last = "changed" if call.endswith("/changed") else "unchanged"
        return f"clEnqueueNDRangeKernel/variants:0/accepts:none/{last}"
    return call


def launch(variants, accepts, change="unchanged"):
    return f"clEnqueueNDRangeKernel/variants:{variants}/accepts:{accepts}/{change}"


def single_call_checks(results):
    lock = results.added("clSetKernelArg/variants:0/bytes:4", "lock")
    for variants in (0, 1, 16):
        for size in (4, 8, 64):
            call = f"clSetKernelArg/variants:{variants}/bytes:{size}"
            yield Check(
                f"clSetKernelArg, {size} bytes, {variants} variants: added, in lock",
                results.added(call) / lock, 2.5, "x",
            )


def launch_checks(results):
    lock = results.added(launch(0, "none"), "lock")
    env = results.hook("getenv/env")
    calls = results.added(launch(1, "first"), "calls")
    yield Check(
        "launch without variants: added, in lock + env",
        results.added(launch(0, "none")) / (lock + env), 2.0, "x",
    )
    for variants in (1, 4, 16):
        yield Check(
            f"launch, the first of {variants} accepts: added, in lock + env + calls",
            results.added(launch(variants, "first")) / (lock + env + calls), 2.0, "x",
        )


def real_launch_checks(results):
    for kernel in ("plain", "tuned"):
        name = f"launch+clFinish/{kernel}"
        yield Check(
            f"launch over a real runtime, {kernel}: beside one without the layer",
            results.time("launch-layer", name) / results.time("launch-direct", name),
            1.03, "x",
        )


def profile_checks(results):
    name = "launch/tuned"
    yield Check(
        "launch of a variant with a profile: beside one without",
        results.time("launch-profile", name) / results.time("launch-layer", name),
        1.1, "x",
    )


def speedups(results):
    """By example and launch, the speed with a profile beside that alone."""
    path = results.folder / "examples.json"
    measured = json.loads(path.read_text(encoding="utf-8"))
    return {launch: times["bare"] / times["run"]
            for launch, times in measured.items()}


def example_checks(results):
    found = speedups(results)
    slowest = min(found, key=found.get)
    yield Check(
        f"examples, tuned and run: time beside alone; the worst: {slowest}",
        1 / found[slowest], 1 / 0.97, "x",
    )


def hooked_names(results, mode, way="agent"):
    return [
        name
        for name in results.runs(f"hooks-{mode}-1-1")
        if name.endswith(f"/{way}")
    ]


def change(results, name, mode, alive):
    return (results.hook(name, alive=alive, mode=mode)
            / results.hook(name, mode=mode))


def machine_change(results, mode, alive):
    """How much slower the machine was in the run with so many objects.

    The runs are minutes apart. What the agent has no part in, the calls straight
    to the runtime and the lock around them, tells how the machine changed.
    """
    names = (hooked_names(results, mode, "runtime")
             + hooked_names(results, mode, "lock"))
    return statistics.median(change(results, name, mode, alive) for name in names)


def growths(results, mode, alive):
    """By name, what a call costs with so many objects beside with one."""
    machine = machine_change(results, mode, alive)
    return {
        name: change(results, name, mode, alive) / machine
        for name in hooked_names(results, mode)
    }


def growth_checks(results):
    for mode in MODES:
        found = growths(results, mode, ALIVE[-1])
        worst = max(found, key=found.get)
        yield Check(
            f"10 000 objects beside 1, {mode}; worst: {worst[:-len('/agent')]}",
            found[worst], 1.5, "x",
        )


def flush_checks(results):
    def milliseconds(way):
        return results.time("flush", f"table/rows:1000000/{way}")

    yield Check("table of 1 000 000 rows: beside the plain program",
               milliseconds("agent") / milliseconds("plain"), 0.3, "x")


def tuning_checks(results):
    yield Check(
        "autotuned launch, 10 ms: beside what it must do",
        results.runs("tuning-agent")["tuning/us:10000"]["ratio"], 1.03, "x",
    )


def all_checks(results):
    for checks in (single_call_checks, launch_checks, real_launch_checks,
                   profile_checks, growth_checks, flush_checks, tuning_checks,
                   example_checks):
        yield from checks(results)
