"""Counts the instructions of hooked calls under callgrind.

Unlike times, the counts are the same on a busy machine: they show what a change
has done, not what it is worth.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

# A benchmark, and the function whose calls count.
CASES = [
    ("clSetKernelArg/variants:0/bytes:4", "clSetKernelArg"),
    ("clSetKernelArg/variants:1/bytes:4", "clSetKernelArg"),
    ("clSetKernelArg/variants:1/bytes:64", "clSetKernelArg"),
    ("clEnqueueNDRangeKernel/unknown-kernel", "clEnqueueNDRangeKernel"),
    *(
        (f"clEnqueueNDRangeKernel/variants:{case}", "clEnqueueNDRangeKernel")
        for case in (
            "0/accepts:none/unchanged",
            "1/accepts:none/unchanged",
            "1/accepts:first/unchanged",
            "1/accepts:first/changed",
            "16/accepts:none/unchanged",
            "16/accepts:first/unchanged",
            "16/accepts:last/unchanged",
        )
    ),
    ("clCreateKernel+release/variants:0", "clCreateKernel|clReleaseKernel"),
    ("clCreateKernel+release/variants:4", "clCreateKernel|clReleaseKernel"),
    ("clCreateBuffer+destruction", "clCreateBuffer"),
    ("clBuildProgram/kernels:100", "clBuildProgram"),
    ("clGetProgramInfo/count", "clGetProgramInfo"),
]

# A look-up of a variable costs more the more of them there are.
ENVIRONMENT = {f"NOTHING_{i}": "" for i in range(40)}


def calls_and_costs(profile, function):
    """Yields (calls, instructions below) for each caller in the profile."""
    wanted = re.compile(rf"corvane::hooks::({function})\(")
    names = {}
    callee = ""
    lines = iter(profile.read_text().splitlines())
    for line in lines:
        if line.startswith("cfn="):
            number, _, name = line[4:].partition(" ")
            callee = names.setdefault(number, name)
        elif line.startswith("fn="):
            number, _, name = line[3:].partition(" ")
            names.setdefault(number, name)
        elif line.startswith("calls="):
            below = next(lines)
            if wanted.match(callee):
                yield int(line[6:].split()[0]), int(below.split()[1])


def count(program, benchmark, function):
    pattern = benchmark.replace("+", r"\+")
    with tempfile.TemporaryDirectory() as folder:
        profile = pathlib.Path(folder) / "profile"
        subprocess.run(
            [
                "valgrind",
                "--tool=callgrind",
                f"--callgrind-out-file={profile}",
                program,
                f"--benchmark_filter=^{pattern}/agent",
                "--benchmark_min_time=0.05",
            ],
            check=True,
            env={**ENVIRONMENT, "PATH": os.environ["PATH"]},
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        pairs = list(calls_and_costs(profile, function))
    # A pair of functions makes one round.
    rounds = sum(calls for calls, _ in pairs) / len(function.split("|"))
    return sum(cost for _, cost in pairs) / rounds


def main():
    print(f"{'instructions of a call, the runtime included':60} {'':>8}")
    for benchmark, function in CASES:
        print(f"{benchmark:60} {count(sys.argv[1], benchmark, function):8.0f}")


if __name__ == "__main__":
    main()
