"""What run_transparency.py says of programs that differ, and of some that do not."""

import tempfile
import unittest
from pathlib import Path

from opencl_programs import Case, pytest_results, routine_results
from opencl_runs import Folders, Way, without_noise
from run_transparency import judge

ALONE = Way("alone")
LAYERED = Way("normal", Path("/the/layer"))
TUNED = Way("autotuning", Path("/the/layer"), True)


def verdicts(command, ways=(ALONE, LAYERED), **case):
    with tempfile.TemporaryDirectory() as folder:
        place = Path(folder)
        return judge(Case("it", ("sh", "-c", command), **case), ways,
                     Folders(place, place), place / "kept")


class Verdicts(unittest.TestCase):
    def test_the_same_output_is_equal(self):
        self.assertEqual(verdicts("echo same; echo words >&2; exit 3").equal, 1)

    def test_another_output_is_different(self):
        self.assertEqual(verdicts("echo $OPENCL_LAYERS").different, ["it: output"])

    def test_another_error_stream_is_different(self):
        self.assertEqual(verdicts("echo $OPENCL_LAYERS >&2").different, ["it: output"])

    def test_another_exit_code_is_different(self):
        self.assertEqual(verdicts("test -z \"$OPENCL_LAYERS\"").different, ["it: output"])

    def test_another_end_is_different(self):
        self.assertEqual(verdicts("test -z \"$OPENCL_LAYERS\" || kill -SEGV $$").different,
                         ["it: output"])

    def test_what_differs_alone_is_flaky(self):
        command = "mkdir $HOME/seen && echo first; echo $OPENCL_LAYERS"
        self.assertEqual(verdicts(command).flaky, ["it: output"])

    def test_what_differs_alone_now_and_then_is_flaky(self):
        command = "echo >>$HOME/runs; [ $(wc -l <$HOME/runs) -lt 3 ] || echo late"
        self.assertEqual(verdicts(command).flaky, ["it: output"])

    def test_only_the_test_that_differs_counts(self):
        split = lambda text: dict(line.split() for line in text.splitlines())
        found = verdicts("echo a 1; echo b 2$OPENCL_LAYERS", split=split)
        self.assertEqual((found.equal, found.different), (2, ["it: b"]))

    def test_a_test_that_is_missing_is_different(self):
        split = lambda text: dict(line.split() for line in text.splitlines())
        found = verdicts("echo a 1; echo b 2; test $OPENCL_LAYERS || echo c 3", split=split)
        self.assertEqual(found.different, ["it: c"])

    def test_reports_of_the_agent_are_counted_and_not_compared(self):
        report = "QrlAgent:: 259: CL Error: CL_INVALID_KERNEL"
        found = verdicts(f"test -z \"$OPENCL_LAYERS\" || echo '{report}' >&2; true")
        self.assertEqual((found.equal, found.reports), (1, 1))

    def test_tuning_that_left_no_log_is_different(self):
        self.assertEqual(verdicts("true", (ALONE, TUNED)).different, ["it: there was no agent"])

    def test_timed_launches_are_counted(self):
        command = "test -z \"$CORVANE_AUTOTUNE\" || printf 'h\\n1\\n2\\n' >$CORVANE_AUTOTUNE/.auto.csv"
        found = verdicts(command + "; true", (ALONE, TUNED))
        self.assertEqual((found.equal, found.timed), (1, 2))


class Reading(unittest.TestCase):
    def test_addresses_and_speeds_are_noise(self):
        case = Case("it", (), noise=((r"speed \d+", "SPEED"),))
        self.assertEqual(without_noise("at 0x7f00 speed 12", case), "at ADDRESS SPEED")

    def test_a_failed_pytest_is_told_with_its_reason(self):
        text = ("../a/t.py::one[<x y>] PASSED [ 50%]\n../a/t.py::two FAILED [100%]\n"
                "FAILED ../a/t.py::two - ValueError: no\n")
        self.assertEqual(pytest_results(text),
                         {"t.py::one[<x y>]": "PASSED", "t.py::two": "FAILED: ValueError: no"})

    def test_routines_are_told_apart(self):
        text = "* Starting tests for the 'SDOT' routine\n1\n* Starting tests for the 'DDOT' 2"
        self.assertEqual(routine_results(text), {"SDOT": " routine\n1\n", "DDOT": " 2"})


if __name__ == "__main__":
    unittest.main()
