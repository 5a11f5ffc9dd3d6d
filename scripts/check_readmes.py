#!/usr/bin/env python3
"""Checks that every folder of sources says what is in it, in one form.

Usage: check_readmes.py | --self-test

A folder's README.md begins with a fenced block: the folder and what it is for in
the first line, then its files. The files that the block names must be there. A
folder without a README of its own is named in one of a folder around it.
The README.md of the project itself has a form of its own.
"""

import pathlib
import re
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = {".h", ".cpp", ".def", ".py", ".js", ".cmake", ".cl"}
FILE = re.compile(r"(?<![\w<>./*-])[\w*./-]+\.(?:h|cpp|def|py|js|cmake|cl|md|txt|sh)\b")


def block_of(readme):
    """The lines of the block that the README begins with, or None."""
    lines = readme.read_text(encoding="utf-8").splitlines()
    if not lines or lines[0] != "```" or "```" not in lines[1:]:
        return None
    return lines[1:lines.index("```", 1)]


def wrong_readme(root, readme):
    """What is wrong with one README."""
    folder = readme.parent
    name = folder.relative_to(root).as_posix() + "/"
    block = block_of(readme)
    if not block or not re.match(re.escape(name) + r" {2,}\S", block[0]):
        yield f"{name}README.md does not begin with a block that begins with {name}"
        return
    for line in block[1:]:
        for file in FILE.findall(line):
            if not (any(folder.glob(file)) or any(root.glob(file))):
                yield f"{name}README.md names {file}, which is not there"


def is_named(root, folder):
    """Whether a README around a folder names it."""
    for parent in folder.parents:
        readme = parent / "README.md"
        if parent == root or not readme.exists():
            continue
        name = folder.relative_to(parent).as_posix() + "/"
        if any(re.search(rf"(?<![\w/]){re.escape(name)}", line)
               for line in block_of(readme) or ()):
            return True
    return False


def wrong_folders(root, files):
    for folder in sorted({(root / file).parent for file in files
                          if pathlib.PurePath(file).suffix in SOURCES}):
        if folder == root:
            continue
        if (folder / "README.md").exists():
            yield from wrong_readme(root, folder / "README.md")
        elif not is_named(root, folder):
            yield f"no README says what is in {folder.relative_to(root).as_posix()}/"


def self_test():
    files = {
        "good/README.md": "```\ngood/  all that is right\n  A.h, *B.cpp   files\n"
                          "  part/   a part\n```\n",
        "good/A.h": "", "good/OneB.cpp": "", "good/part/C.h": "",
        "bare/README.md": "bare/  without a block\n", "bare/A.h": "",
        "old/README.md": "```\nold/  names a file that is gone\n  Gone.h\n```\n",
        "old/A.h": "", "silent/A.h": "",
    }
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, text in files.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text, encoding="utf-8")
        found = list(wrong_folders(root, files))
    expected = ["bare/README.md does not begin", "old/README.md names Gone.h",
                "no README says what is in silent/"]
    if len(found) != 3 or not all(map(str.startswith, found, expected)):
        sys.exit(f"wrong READMEs were not told from right ones: {found}")


def main():
    if sys.argv[1:] == ["--self-test"]:
        self_test()
        return
    files = [path.relative_to(ROOT) for folder in ROOT.iterdir()
             if folder.is_dir() and folder.name != "build" and folder.name[0] != "."
             for path in folder.rglob("*")]
    found = list(wrong_folders(ROOT, files))
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
