#!/usr/bin/env python3
"""Checks that every #include between the source folders follows an arrow.

The linker refuses a call against an arrow; this sees what is inline as well.
With --self-test it proves that a wrong arrow is found.
"""

import pathlib
import re
import sys
import tempfile

# What each folder may use besides itself. The order is from the ground up.
ARROWS = {
    "base": set(),
    "variants": set(),
    "tuning": set(),
    "agent": {"base"},
    "results": {"agent", "base"},
    "results/runs": set(),
    "results/profile": {"results/runs"},
    "programs": {"results", "variants", "agent", "base"},
    "tuner": {"tuning", "agent", "base"},
    "launch": {"programs", "tuner", "tuning", "results", "variants", "agent", "base"},
    "agent/entry": {"launch", "programs", "tuner", "tuning", "results", "variants", "agent", "base"},
    "layer": set(),
    "coarsening": set(),
    "examples": set(),
}
# OpenCL's own types are the business of everybody but the pure rules.
NO_OPENCL = {"variants", "tuning", "results/runs", "results/profile", "coarsening"}

INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^">]+)[">]')


def room(path):
    """The folder of ARROWS that a relative path is in, or None."""
    folders = [f for f in ARROWS if str(path).startswith(f + "/")]
    return max(folders, key=len, default=None)


def wrong_includes(root):
    for source in sorted(root.rglob("*")):
        if source.suffix not in {".h", ".cpp", ".def"}:
            continue
        here = room(source.relative_to(root).as_posix())
        if here is None:
            continue
        for number, line in enumerate(source.read_text().splitlines(), 1):
            include = INCLUDE.match(line)
            if not include:
                continue
            there = room(include[2])
            against = there and there != here and there not in ARROWS[here]
            if against or (here in NO_OPENCL and include[2].startswith("CL/")):
                name = source.relative_to(root)
                yield f"{name}:{number}: {here}/ must not use {include[2]}"


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        (root / "agent/entry").mkdir(parents=True)
        (root / "agent/Bad.h").write_text('#include "launch/Hooks.h"\n')
        (root / "agent/entry/Good.h").write_text('#include "launch/Hooks.h"\n')
        found = list(wrong_includes(root))
    if len(found) != 1 or not found[0].startswith("agent/Bad.h:1:"):
        sys.exit(f"a wrong arrow was not told from a right one: {found}")


def main():
    if "--self-test" in sys.argv[1:]:
        self_test()
        return
    root = pathlib.Path(__file__).resolve().parent.parent
    found = list(wrong_includes(root))
    for line in found:
        print(line)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
