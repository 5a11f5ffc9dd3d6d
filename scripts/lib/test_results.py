"""scripts/test tests every preset that it is asked for, and says what became of each.

CMake and CTest are stubs here, in a copy of the scripts.
"""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parents[1]

# A preset that a file "PRESET.unbuildable" names cannot be built.
CMAKE = """#!/bin/sh
for preset; do :; done
[ "$1" != --build ] || [ ! -e "$STUBS/$preset.unbuildable" ]
"""
# "PRESET.failures" tests of seven fail, one is skipped.
CTEST = """#!/bin/sh
failures=$(cat "$STUBS/$2.failures" 2>/dev/null || echo 0)
echo "$2 ran, with $*"
cases=$(cat "$STUBS/$2.cases" 2>/dev/null)
echo "<testsuite tests='7' failures='$failures' disabled='0' skipped='1'>\
$cases</testsuite>" >"$4"
[ "$failures" = 0 ] || exit 8
"""
DPKG_QUERY = "#!/bin/sh\necho installed\n"


class Results(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.tree = Path(temporary.name) / "tree"
        self.stubs = Path(temporary.name) / "stubs"
        shutil.copytree(SCRIPTS, self.tree / "scripts")
        self.stubs.mkdir()
        for name, text in (("cmake", CMAKE), ("ctest", CTEST),
                           ("dpkg-query", DPKG_QUERY), ("apt-get", "")):
            (self.stubs / name).write_text(text)
            (self.stubs / name).chmod(0o755)

    def run_script(self, *presets):
        environment = {**os.environ, "STUBS": str(self.stubs),
                       "PATH": f"{self.stubs}:{os.environ['PATH']}"}
        return subprocess.run([self.tree / "scripts/test", *presets], text=True,
                              env=environment, capture_output=True, timeout=600,
                              check=False)

    def table(self, run):
        """The last lines: the cells of each preset, without its minutes."""
        lines = run.stdout.split("\npreset ")[1].splitlines()
        lines[0] = f"preset {lines[0]}"
        rows = [re.split(r" {2,}", line) for line in lines if line]
        self.assertEqual(rows[0], ["preset", "passed", "failed", "skipped", "minutes"])
        return [row[:4] + row[5:] for row in rows[1:] if len(row) > 1]

    def test_release_is_tested_where_nothing_is_named(self):
        run = self.run_script()
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.table(run), [["release", "6", "0", "1"]])
        self.assertIn("scripts/test --all", run.stdout)

    def test_failed_tests_are_named_with_the_end_of_what_they_printed(self):
        (self.stubs / "release.failures").write_text("1")
        printed = "\n".join(f"line {number}." for number in range(1, 41))
        (self.stubs / "release.cases").write_text(
            "<testcase name='Good' time='1' status='run'>"
            "<system-out>all is well</system-out></testcase>"
            "<testcase name='Bad' time='2.34' status='fail'>"
            f"<system-out>{printed}</system-out></testcase>")
        run = self.run_script("release")
        self.assertIn("release: Bad failed after 2.3 s\n    line 16.\n", run.stdout)
        self.assertIn("    line 40.\n", run.stdout)
        self.assertNotIn("line 15.", run.stdout)
        self.assertNotIn("Good", run.stdout)
        self.assertEqual(self.table(run)[0][2], "1")

    def test_long_tests_are_left_out_only_where_nothing_is_named(self):
        leave_out = "--label-exclude slow|browser"
        self.assertIn(leave_out, self.run_script().stdout)
        self.assertNotIn(leave_out, self.run_script("release").stdout)
        self.assertNotIn(leave_out, self.run_script("--all").stdout)

    def test_a_test_that_fails_does_not_stop_the_other_presets(self):
        (self.stubs / "asan.failures").write_text("2")
        run = self.run_script("asan", "release")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(self.table(run), [["asan", "4", "2", "1", "<-- FAILED"],
                                           ["release", "6", "0", "1"]])

    def test_a_preset_that_cannot_be_built_does_not_stop_the_others(self):
        self.run_script("asan")
        (self.stubs / "asan.unbuildable").touch()
        run = self.run_script("release", "asan", "tsan")
        self.assertEqual(run.returncode, 1)
        self.assertNotIn("asan ran", run.stdout)
        self.assertEqual(
            self.table(run),
            [["release", "6", "0", "1"],
             ["asan", "-", "-", "-", "<-- FAILED", "failed outside of its tests"],
             ["tsan", "6", "0", "1"]])

    def test_packages_that_cannot_be_installed_do_not_stop_the_others(self):
        (self.stubs / "dpkg-query").write_text(
            "#!/bin/sh\ncase $3 in llvm-19*) exit 1 ;; *) echo installed ;; esac\n")
        (self.stubs / "apt-get").write_text("#!/bin/sh\necho 'E: no' >&2\nexit 100\n")
        (self.stubs / "sudo").write_text('#!/bin/sh\nexec "$@"\n')
        (self.stubs / "sudo").chmod(0o755)
        run = self.run_script("llvm-19", "release")
        self.assertEqual(run.returncode, 1)
        self.assertIn("could not install", run.stderr)
        self.assertEqual(self.table(run)[1], ["release", "6", "0", "1"])

    def test_an_unknown_preset_is_refused(self):
        self.assertEqual(self.run_script("relaese").returncode, 2)


if __name__ == "__main__":
    unittest.main()
