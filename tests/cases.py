"""The end of a test script written with unittest: runs its cases, says how long each took, and prints the line that
tools/run-tests counts."""

import sys
import time
import unittest


class TimedResult(unittest.TextTestResult):
    def startTest(self, test):
        self.begun = time.monotonic()
        super().startTest(test)

    def addSuccess(self, test):
        self.stream.write(f"{time.monotonic() - self.begun:.1f} s ")
        super().addSuccess(test)


def main():
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=2, resultclass=TimedResult).run(
        unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"]))
    bad = len(result.failures) + len(result.errors) + len(result.skipped) + len(result.unexpectedSuccesses)
    bad = min(bad, result.testsRun) if result.testsRun else 1
    print(f"{result.testsRun - bad if result.testsRun else 0} passed, {bad} failed")
    sys.exit(1 if bad else 0)
