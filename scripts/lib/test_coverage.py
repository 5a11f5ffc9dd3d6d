"""The table of coverage counts every folder that gcovr has found, and all together."""

import unittest

from coverage_table import GUESTS, percent, sums


def counted(name, lines, covered):
    return {"filename": name, "line_total": lines, "line_covered": covered}


class Table(unittest.TestCase):
    def test_each_folder_has_a_row_whatever_it_is_called(self):
        counts = sums([counted("new/A.cpp", 10, 9), counted("agent/entry/B.cpp", 10, 5),
                       counted("new/inner/C.cpp", 20, 20)])
        self.assertEqual(list(counts), ["agent", "new", GUESTS, "all"])
        self.assertEqual(counts["new"], {"line_total": 30, "line_covered": 29})
        self.assertEqual(percent(counts["all"], "line"), 85)

    def test_programs_are_not_counted_with_what_runs_in_applications(self):
        counts = sums([counted("agent/A.cpp", 10, 9), counted("tools/x/B.cpp", 10, 1)])
        self.assertEqual(counts[GUESTS], {"line_total": 10, "line_covered": 9})
        self.assertEqual(percent(counts["all"], "line"), 50)


if __name__ == "__main__":
    unittest.main()
