"""One run of an OpenCL program, and what it looked like from outside."""

import os
import re
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

# A first compilation for a whole test suite takes that long.
LIMIT = 1200

# What differs from run to run in any program.
NOISE = ((r"\b0x[0-9a-f]+\b", "ADDRESS"),
         (r"/tempfile_\w+", "/TEMPORARY"),
         # PoCL's compiler, and it says nothing of what it finds compiled.
         (r"\b\d+ warnings? generated\.\n", ""),
         (r"(?i)\bclock frequency.*|CLOCK_FREQUENCY.*", "FREQUENCY"))

# The agent reports what the runtime refuses; README.md says so. A program's own
# output never begins like that.
REPORT = re.compile(r"QrlAgent:: \d+: CL Error: \w+\n")


@dataclass
class Outcome:
    """What one run did. `tests` holds, by name, everything that is compared."""

    tests: dict
    reports: int = 0
    timed: int = 0  # rows of the raw timing log
    missing: bool = False  # the agent should have been there and was not


@dataclass(frozen=True)
class Way:
    """How a program is run: on the runtime alone, or with the layer."""

    name: str
    layer: Path = None
    tunes: bool = False


@dataclass
class Folders:
    """Where programs run, and what they find there."""

    folder: Path
    graph_library: Path
    environment: dict = field(default_factory=dict)

    def __post_init__(self):
        mine = ("CORV", "AGENT_", "OPENCL_LAYERS", "POCL_", "PYOPENCL_")
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(mine)}
        # All ways find what the runtime compiled before, as it does without us.
        self.environment["POCL_CACHE_DIR"] = str(self.folder / "kernel-cache")
        self.environment["LC_ALL"] = "C.UTF-8"

    def environment_of(self, case, way, results):
        """A home of its own keeps two cases from meeting in a file there."""
        home = self.folder / "homes" / file_name(case.name)
        home.mkdir(parents=True, exist_ok=True)
        environment = {**self.environment, **dict(case.environment),
                       "HOME": str(home), "XDG_CACHE_HOME": str(home / "cache"),
                       "XDG_DATA_HOME": str(home / "data")}
        if way.layer:
            environment["OPENCL_LAYERS"] = str(way.layer)
        if way.tunes:
            environment["CORVANE_AUTOTUNE"] = results
            environment["CORVANE_INSTALL_LOCATION"] = str(self.graph_library)
        return environment


def file_name(text):
    return re.sub(r"[^\w.-]+", "-", text)


def without_noise(text, case):
    for pattern, replacement in (*NOISE, *case.noise):
        text = re.sub(pattern, replacement, text)
    return text


def start(case, way, folders, scratch):
    """Exit code, output and error stream."""
    work, results = Path(scratch, "work"), Path(scratch, "results")
    work.mkdir()
    results.mkdir()
    try:
        done = subprocess.run(
            case.command, env=folders.environment_of(case, way, str(results)),
            cwd=work, stdin=subprocess.DEVNULL, capture_output=True, timeout=LIMIT,
            check=False)
        return str(done.returncode), done.stdout, done.stderr
    except subprocess.TimeoutExpired as late:
        return f"none after {LIMIT} s", late.stdout or b"", late.stderr or b""


def run(case, way, folders, keep):
    """Runs the case once; its whole output is left in the files `keep`.*"""
    with tempfile.TemporaryDirectory() as scratch:
        code, *streams = start(case, way, folders, scratch)
        log = Path(scratch, "results", ".auto.csv")
        rows = log.read_text(encoding="utf-8").splitlines() if log.exists() else []
    keep.parent.mkdir(parents=True, exist_ok=True)
    for suffix, stream in zip(("out", "err"), streams):
        keep.with_name(f"{keep.name}.{suffix}").write_bytes(stream)

    out, err = (without_noise(stream.decode(errors="replace"), case) for stream in streams)
    err, reports = REPORT.subn("", err) if way.layer else (err, 0)
    process = f"exit code {code}\n{err}"
    tests = case.split(out)
    if len(tests) == 1:
        tests = {name: process + text for name, text in tests.items()}
    else:
        tests["error stream and exit code"] = process
    return Outcome(tests, reports, max(0, len(rows) - 1), way.tunes and not rows)
