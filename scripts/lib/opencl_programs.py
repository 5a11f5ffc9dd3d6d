"""OpenCL programs of other people's, from Debian's packages, and what to run of them."""

import re
import subprocess
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path


def whole_output(text):
    return {"output": text}


@dataclass(frozen=True)
class Case:
    """One process to start, and how to read what it prints."""

    name: str
    command: tuple[str, ...]
    split: Callable = whole_output  # standard output -> outcome by test
    noise: tuple = ()  # what differs from run to run: pattern, replacement
    environment: tuple = ()


@dataclass(frozen=True)
class Program:
    name: str
    packages: tuple[str, ...]  # the first one's version stands for the program's
    cases: Callable  # whether all of it -> list of Case


def clinfo(_):
    return [Case("for people", ("clinfo",)), Case("for programs", ("clinfo", "--raw")),
            Case("in short", ("clinfo", "--list"))]


def clpeak(everything):
    speeds = ((r"(?m)(: +)([0-9.]+|inf)( us)?$", r"\1SPEED"),)
    benchmarks = ["kernel-latency", "transfer-bandwidth", "compute-integer"]
    if everything:
        benchmarks += ["global-bandwidth", "compute-sp", "compute-dp", "compute-intfast"]
    return [Case(benchmark, ("clpeak", "--" + benchmark, *timer), noise=speeds)
            for benchmark, timer in zip(benchmarks, ((), ("--use-event-timer",)) * 4)]


def hashcat(_):
    """Its self-test, and four digits found by the MD5 of them."""
    return [Case("MD5", ("hashcat", "--quiet", "--force", "-D", "1", "-m", "0", "-a", "3",
                         "--potfile-disable", "--restore-disable", "--logfile-disable",
                         "b52340b4de4566b804c9880aa0b4af5f", "?d?d?d?d"))]


def clfft(_):
    """The client compares each transform of its input with what must come out."""
    transforms = {"1024": ("-x", "1024"), "1024 backward": ("-x", "1024", "--inv"),
                  "1000 out of place": ("-x", "1000", "-o"),
                  "64x64": ("-x", "64", "-y", "64"),
                  "27x25x8": ("-x", "27", "-y", "25", "-z", "8")}
    return [Case(name, ("clFFT-client", *options)) for name, options in transforms.items()]


def routine_results(text):
    """What a test program of CLBlast's prints, by routine."""
    parts = re.split(r"\* Starting tests for the \S*?'(\w+)'", text)
    return dict(zip(parts[1::2], parts[2::2])) or whole_output(text)


def clblast(everything):
    chosen = "*" if everything else "x[adg]*[xotvm]"
    return [Case(path.name.removeprefix("clblast_test_"), (str(path),), routine_results)
            for path in sorted(Path("/usr/bin").glob(f"clblast_test_{chosen}"))]


def pytest_results(text):
    """How each test ended, and for a failed one with what."""
    results = dict(re.findall(
        r"^\S*/(\S+\.py::.+) (PASSED|FAILED|SKIPPED|XFAIL|XPASS|ERROR)\b", text, re.MULTILINE))
    reasons = re.findall(r"^FAILED \S*/(\S+\.py::.+?) - (.*)", text, re.MULTILINE)
    results.update((test, f"FAILED: {reason}") for test, reason in reasons)
    return results or whole_output(text)


def pyopencl(everything):
    folder = Path("/usr/share/doc/python-pyopencl-doc/examples")
    left_out = () if everything else ("test_algorithm",)
    return [Case(path.stem, ("/usr/bin/python3", "-m", "pytest", "-v", "-rf", "--tb=line",
                             "-p", "no:cacheprovider", str(path)), pytest_results,
                 environment=(("PYOPENCL_NO_CACHE", "1"),))
            for path in sorted(folder.glob("test_*.py")) if path.stem not in left_out]


def piglit(everything):
    """The suite's own list of its OpenCL tests, without most generated ones."""
    folder = next(Path("/usr/lib").glob("*/piglit"))
    # What differs by the type of a number only, is tried with one of them.
    chosen = () if everything else ("-x", "@(store|vload|vstore)@(?!.*int)",
                                    "-x", "@builtin-(?!int-|float-)")
    listed = subprocess.run(
        ("piglit", "print-cmd", *chosen, "--format", "{name}\t{command}", "cl"),
        check=True, capture_output=True, text=True).stdout
    for line in listed.splitlines():
        name, command = line.split("\t")
        program, *arguments = command.split()
        yield Case(name, (str(folder / "bin" / Path(program).name), *arguments),
                   environment=(("PIGLIT_SOURCE_DIR", str(folder)),))


PROGRAMS = {
    "clinfo": Program("clinfo", ("clinfo",), clinfo),
    "clpeak": Program("clpeak", ("clpeak",), clpeak),
    "hashcat": Program("hashcat", ("hashcat",), hashcat),
    "clfft": Program("clFFT's client", ("clfft-client",), clfft),
    "clblast": Program("CLBlast's tests", ("clblast-tests",), clblast),
    "pyopencl": Program("PyOpenCL's tests", ("python3-pyopencl", "python-pyopencl-doc",
                                             "python3-pytest", "python3-mako"), pyopencl),
    "piglit": Program("Piglit's OpenCL tests", ("piglit",), piglit),
}
