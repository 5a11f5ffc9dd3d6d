#!/usr/bin/env python3
"""Checks that every #include between the source folders follows an arrow.

Usage: check_arrows.py TARGETS | --self-test

The arrows are what the CMake lists say: a folder may use the folders whose
targets its own targets link, and what those pass on. TARGETS is the file that
CMake writes about them, targets.txt in the build folder. The linker refuses a
call against an arrow; this sees what is inline as well.

A folder is one that has a target of its own sources, or a target of headers,
with the folders inside it that have none. A header in a folder without a target
is for everything in that folder; files that this build leaves out are not read.

With --self-test it proves that wrong arrows are found.
"""

import os
import pathlib
import re
import sys
import tempfile

INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^">]+)[">]')
SUFFIXES = {".h", ".cpp", ".def"}


class Target:
    def __init__(self, root, line):
        self.name, self.folder, libraries, sources, pure = line.split("|")
        self.libraries = libraries.split(",")
        self.pure = pure == "PURE"
        paths = [os.path.normpath(root / self.folder / source)
                 for source in sources.split(",") if source]
        made = f"{root}/build/"
        inside = [path for path in paths
                  if path.startswith(f"{root}/") and not path.startswith(made)]
        self.sources = [os.path.relpath(path, root) for path in inside]
        self.has_folder = bool(self.folder) and (bool(inside) or not paths)


def read_targets(root, path):
    lines = path.read_text(encoding="utf-8").splitlines()
    targets = {line.split("|")[0]: Target(root, line) for line in lines}
    if not targets:
        sys.exit(f"{path} names no target")
    return targets


class Arrows:
    def __init__(self, targets):
        self.targets = targets
        here = [target for target in targets.values() if target.has_folder]
        self.folders = {target.folder for target in here}
        self.pure = {target.folder for target in here if target.pure}
        self.uses = {folder: set() for folder in self.folders}
        for target in here:
            # Some targets compile a file of another folder.
            self.uses[target.folder].update(map(self.folder_of, target.sources))
            self.uses[target.folder].update(
                library.folder for library in self.linked(target))

    def linked(self, target, seen=None):
        """The targets that a target links, and what they pass on."""
        seen = set() if seen is None else seen
        for name in target.libraries:
            library = self.targets.get(name)
            if library and name not in seen:
                seen.add(name)
                yield library
                yield from self.linked(library, seen)

    def folder_of(self, path):
        """The folder with a target that a file is in, or None."""
        for parent in pathlib.PurePosixPath(path).parents:
            if str(parent) in self.folders:
                return str(parent)
        return None

    def has_any_in(self, top):
        """False for a folder of the root that this build leaves out whole."""
        return any(folder.split("/")[0] == top for folder in self.folders)

    def allows(self, source, included):
        here, there = self.folder_of(source), self.folder_of(included)
        parent = pathlib.PurePosixPath(included).parent
        if here is None:
            return True
        if there is None:
            return (parent in pathlib.PurePosixPath(source).parents
                    or not self.has_any_in(included.split("/")[0]))
        return here == there or there in self.uses[here]


def sources_of(root):
    for folder in sorted(path for path in root.iterdir() if path.is_dir()):
        if folder.name == "build" or folder.name.startswith("."):
            continue
        for source in sorted(folder.rglob("*")):
            if source.suffix in SUFFIXES:
                yield source


def wrong_includes(root, arrows):
    own = {path.name for path in root.iterdir() if path.is_dir()}
    for path in sources_of(root):
        source = path.relative_to(root).as_posix()
        here = arrows.folder_of(source)
        for number, line in enumerate(path.read_text("utf-8").splitlines(), 1):
            include = INCLUDE.match(line)
            if not include:
                continue
            first = include[2].split("/")[0]
            ours = include[1] == '"' and "/" in include[2] and first in own
            if (ours and not arrows.allows(source, include[2])) or (
                    here in arrows.pure and first == "CL"):
                yield f"{source}:{number}: {here}/ must not use {include[2]}"


def self_test():
    files = {
        "agent/Bad.h": '#include "launch/Hooks.h"',
        "agent/entry/Good.h": '#include "launch/Hooks.h"\n#include "agent/Lock.h"',
        "launch/Good.h": '#include "launch/part/Part.h"\n#include "agent/Lock.h"',
        "launch/Bad.h": '#include "tests/unit/Test.h"',
        "tests/unit/Good.h": '#include "launch/Hooks.h"\n#include "tests/Common.h"',
        "tests/other/Bad.h": '#include "tests/unit/Test.h"\n#include "launch/Hooks.h"',
        "tests/other/Good.h": '#include "tests/unit/a/Shared.h"',
        "rules/Bad.h": "#include <CL/cl.h>",
    }
    targets = """agent|agent|corvane_options|Lock.cpp|
entry|agent/entry|launch|Exports.cpp|
launch|launch|$<LINK_ONLY:x>,agent|Hooks.cpp,part/Part.cpp|
unit|tests/unit|launch,gmock|Test.cpp|
shared|tests/unit/a||Shared.cpp|
other|tests/other||Test.cpp,../unit/a/Shared.cpp|
rules|rules|||PURE
"""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, text in files.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text + "\n", encoding="utf-8")
        (root / "targets").write_text(targets, encoding="utf-8")
        found = list(wrong_includes(root, Arrows(read_targets(root, root / "targets"))))
    places = sorted(line.split(": ")[0] for line in found)
    expected = ["agent/Bad.h:1", "launch/Bad.h:1", "rules/Bad.h:1",
                "tests/other/Bad.h:1", "tests/other/Bad.h:2"]
    if places != expected:
        sys.exit(f"wrong arrows were not told from right ones: {found}")


def main():
    if sys.argv[1:] == ["--self-test"]:
        self_test()
        return
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    root = pathlib.Path(__file__).resolve().parent.parent
    targets = read_targets(root, pathlib.Path(sys.argv[1]))
    found = list(wrong_includes(root, Arrows(targets)))
    for line in found:
        print(line)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
