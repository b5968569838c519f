"""report_test.py REPORT: the attack report counts what was refused, what was not, and what was not tried."""

import contextlib
import importlib.util
import io
import os
import sys
import tempfile
import unittest

import cases

REPORT = sys.argv.pop()
SPEC = importlib.util.spec_from_file_location("report", REPORT)
report = importlib.util.module_from_spec(SPEC)
SPEC.loader.exec_module(report)

SCRIPT = """test_a_bad_name (x.Y.test_a_bad_name) ... 0.1 s ok
test_a_worse_one (x.Y.test_a_worse_one) ... FAIL
test_of_something_else (x.Y.test_of_something_else) ... 0.0 s ok
"""
PROGRAM = """[       OK ] Hostile.Sorts/sqlite (3 ms)
[  FAILED  ] Hostile.Names/sqlite, where GetParam() = 4 (7 ms)
[       OK ] Plain.Case (0 ms)
"""


class Told(unittest.TestCase):
    def report(self, output, pattern, end="true"):
        with tempfile.TemporaryDirectory() as build:
            program = os.path.join(build, "program")
            with open(program, "w", encoding="utf-8") as file:
                file.write(f"#!/bin/bash\ncat <<'END'\n{output}END\n{end}\n")
            os.chmod(program, 0o755)
            with open(os.path.join(build, "CTestTestfile.cmake"), "w", encoding="utf-8") as file:
                file.write(f'add_test(one "{program}")\n')
            made = report.Report(report.load_runner(), build, 1)
            with contextlib.redirect_stdout(io.StringIO()) as out:
                made.part("one", pattern)
                made.part("two", ".") if pattern == "missing" else None
        return out.getvalue(), made.tried, made.through

    def test_cases_of_a_script_are_attacks(self):
        text, tried, through = self.report(SCRIPT, "bad|worse")
        self.assertEqual(text, "  refused      one: a bad name\n  NOT REFUSED  one: a worse one\n")
        self.assertEqual((tried, through), (2, 1))

    def test_cases_of_a_program_are_attacks(self):
        text, tried, through = self.report(PROGRAM, "Hostile")
        self.assertEqual(text, "  refused      one: Hostile.Sorts/sqlite\n  NOT REFUSED  one: Hostile.Names/sqlite\n")
        self.assertEqual((tried, through), (2, 1))

    def test_what_was_not_tried_got_through(self):
        text, tried, through = self.report(SCRIPT, "missing")
        self.assertEqual(text, '  NOT REFUSED  one: no case fits "missing"\n'
                               "  NOT REFUSED  two: there is no such program\n")
        self.assertEqual((tried, through), (2, 2))

    def test_a_program_that_ends_badly_got_through(self):
        text, tried, through = self.report(SCRIPT, "bad", "kill -SEGV $$")
        self.assertIn("  refused      one: a bad name\n", text)
        self.assertIn("  NOT REFUSED  one: ended by signal 11\n", text)
        self.assertEqual((tried, through), (2, 1))

    def test_every_row_names_a_program_once_in_a_part(self):
        for title, parts in report.ATTACKS:
            names = [name for name, _ in parts]
            self.assertEqual(len(names), len(set(names)), title)


if __name__ == "__main__":
    cases.main()
