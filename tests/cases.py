"""The end of a test script written with unittest: runs its cases and prints the line that tools/run-tests counts."""

import sys
import unittest


def main():
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=2).run(
        unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"]))
    bad = len(result.failures) + len(result.errors) + len(result.skipped) + len(result.unexpectedSuccesses)
    bad = min(bad, result.testsRun) if result.testsRun else 1
    print(f"{result.testsRun - bad if result.testsRun else 0} passed, {bad} failed")
    sys.exit(1 if bad else 0)
