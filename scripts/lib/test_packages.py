"""Installing packages waits while another program holds a package lock.

No package is installed here: apt-get is a stub, or the real one with folders and
locks of its own. The pause between two tries is where the tests let go of a lock,
so none of them waits on the clock.
"""

import fcntl
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).with_name("packages.sh")

# Fails like apt-get whose lock is held while the file "held" is there, and tells
# in "calls" what it was asked for.
APT_GET = """#!/bin/sh
cd "$(dirname "$0")" || exit 1
echo "$*" >>calls
[ ! -e broken ] || { echo "E: Unable to locate package $*" >&2; exit 100; }
[ ! -e held ] || { cat held >&2; exit 100; }
"""
DPKG_QUERY = "#!/bin/sh\nexit 1\n"
SUDO = '#!/bin/sh\nexec "$@"\n'

HELD = [
    "E: Could not get lock /var/lib/apt/lists/lock. It is held by process 7 (apt)",
    "E: Could not get lock /var/lib/dpkg/lock-frontend. It is held by process 7 (apt)",
    "E: Unable to lock directory /var/lib/apt/lists/",
    "E: Unable to acquire the dpkg frontend lock (/var/lib/dpkg/lock-frontend), "
    "is another process using it?",
]


def bash(script, folder, **options):
    environment = {**os.environ, "PATH": f"{folder}:{os.environ['PATH']}"}
    environment.pop("BASH_ENV", None)
    return subprocess.run(
        ["bash", "-c", f"set -euo pipefail; source {SCRIPT}; cd {folder}; {script}"],
        env=environment, text=True, capture_output=True, timeout=100, check=False,
        **options)


class Waiting(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)
        for name, text in (("apt-get", APT_GET), ("dpkg-query", DPKG_QUERY),
                           ("sudo", SUDO)):
            (self.folder / name).write_text(text)
            (self.folder / name).chmod(0o755)

    def calls(self):
        words = (self.folder / "calls").read_text().splitlines()
        return ["update" if "update" in line else "install" for line in words]

    def test_an_install_goes_on_when_the_lock_is_free_again(self):
        for words in HELD:
            with self.subTest(words):
                (self.folder / "calls").unlink(missing_ok=True)
                (self.folder / "held").write_text(words)
                run = bash("sleep() { rm held; }; need_packages one two", self.folder)
                self.assertEqual(run.returncode, 0, run.stderr)
                self.assertEqual(self.calls(), ["update", "update", "install"])
                self.assertEqual(run.stdout.count("waiting up to ten minutes"), 1)

    def test_a_lock_that_comes_after_the_update_is_waited_for_too(self):
        run = bash("""
            echo 'E: Could not get lock x' >later
            run_as_root() { "$@" || return; mv later held 2>/dev/null || true; }
            sleep() { rm held; }
            need_packages one""", self.folder)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.calls(), ["update", "install", "install"])

    def test_the_waiting_is_told_once_and_ends_after_ten_minutes(self):
        (self.folder / "held").write_text(HELD[0])
        run = bash("sleep() { SECONDS=$((SECONDS + 100)); }; need_packages one",
                   self.folder)
        self.assertEqual(run.returncode, 1)
        self.assertIn(len(self.calls()), (6, 7))
        self.assertEqual(run.stdout.count("waiting up to ten minutes"), 1)
        self.assertIn(HELD[0], run.stderr)
        self.assertIn("apt-get could not install: one", run.stderr)

    def test_other_failures_are_told_at_once(self):
        (self.folder / "broken").touch()
        run = bash("sleep() { echo slept; }; need_packages one", self.folder)
        self.assertEqual(run.returncode, 1)
        self.assertEqual(self.calls(), ["update"])
        self.assertNotIn("slept", run.stdout)
        self.assertIn("Unable to locate package", run.stderr)


class RealAptGet(unittest.TestCase):
    """The stub says what the real one says when its lists are locked."""

    def test_its_words_for_a_held_lock_are_known(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            for part in ("lists/partial", "cache/archives/partial", "sources"):
                (folder / part).mkdir(parents=True)
            (folder / "conf").write_text(
                f'Dir::Etc::SourceList "/dev/null";\n'
                f'Dir::Etc::SourceParts "{folder}/sources";\n'
                f'Dir::State::Lists "{folder}/lists";\n'
                f'Dir::Cache "{folder}/cache";\n')
            with open(folder / "lists/lock", "w", encoding="utf-8") as lock:
                fcntl.lockf(lock, fcntl.LOCK_EX)
                process = subprocess.Popen(
                    ["bash", "-c",
                     f'set -eu; source {SCRIPT}; run_as_root() {{ "$@"; }}; '
                     f'sleep() {{ read -r; }}; run_apt update; echo updated'],
                    env={**os.environ, "APT_CONFIG": str(folder / "conf")}, text=True,
                    stdin=subprocess.PIPE, stdout=subprocess.PIPE)
                with process:
                    self.assertIn("waiting", process.stdout.readline())
                    fcntl.lockf(lock, fcntl.LOCK_UN)
                    process.stdin.write("the lock is free\n")
                    process.stdin.flush()
                    self.assertEqual(process.stdout.readline(), "updated\n")
                self.assertEqual(process.returncode, 0)


if __name__ == "__main__":
    unittest.main()
