"""Shows that every test of one build is in another one, too.

Usage: compare_tests.py BUILD OTHER_BUILD EXCEPTIONS

EXCEPTIONS names, a line each, the tests that the other build cannot have, with
the reason: "REGULAR EXPRESSION: REASON". A line that is not needed is an error
like a test that is missing without one.
"""

import re
import subprocess
import sys
from pathlib import Path


def tests_of(build):
    listed = subprocess.run(["ctest", "--test-dir", build, "-N"], check=True,
                            capture_output=True, text=True).stdout
    tests = set(re.findall(r"^ +Test +#\d+: (.+?)(?: +# GetParam.*)?$", listed,
                           re.MULTILINE))
    if not tests:
        sys.exit(f"{build} has no tests")
    return tests


def read_exceptions(path):
    lines = [line for line in Path(path).read_text(encoding="utf-8").splitlines()
             if line and not line.startswith("#")]
    return [line.split(": ", 1) for line in lines]


def main():
    build, other, exceptions_path = sys.argv[1:]
    tests, others = tests_of(build), tests_of(other)
    missing, left_out, problems = tests - others, 0, []
    for pattern, reason in read_exceptions(exceptions_path):
        matched = {test for test in missing if re.fullmatch(pattern, test)}
        if not matched:
            problems.append(f"no missing test needs this line: {pattern}")
        missing -= matched
        left_out += len(matched)
        print(f"{len(matched):4} left out, {pattern}: {reason}")
    problems += [f"missing without a reason: {test}" for test in sorted(missing)]
    print(f"{len(tests)} tests in {build}, {len(others)} in {other}: "
          f"{len(tests & others)} in both, {left_out} left out, "
          f"{len(others - tests)} only in {other}")
    if problems:
        sys.exit("\n".join(problems))


main()
