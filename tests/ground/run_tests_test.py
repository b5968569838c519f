"""run_tests_test.py RUN_TESTS: the runner counts what happened, whatever way a program ends."""

import os
import subprocess
import sys
import tempfile
import unittest

import cases

RUNNER = sys.argv.pop()

GTEST = r"""#!/bin/bash
file=${GTEST_OUTPUT#json:}
cat > "$file" <<'END'
{"testsuites": [{"name": "A", "testsuite": [%s]}]}
END
exit %d
"""
GOOD = '{"name": "good", "status": "RUN", "result": "COMPLETED"}'
BAD = '{"name": "bad", "status": "RUN", "result": "COMPLETED", "failures": [{}]}'
SKIPPED = '{"name": "skipped", "status": "RUN", "result": "SKIPPED"}'
DISABLED = '{"name": "off", "status": "NOTRUN", "result": "SUPPRESSED"}'


def script(body):
    return "#!/bin/bash\n" + body + "\n"


class Runner(unittest.TestCase):
    CASES = [
        ("cases of a report are counted", GTEST % (f"{GOOD},{GOOD}", 0), "2 passed, 0 failed", 0),
        ("a failed case fails the run", GTEST % (f"{GOOD},{BAD}", 1), "1 passed, 1 failed", 1),
        ("a skipped case is a failed one", GTEST % (f"{GOOD},{SKIPPED}", 0), "1 passed, 1 failed", 1),
        ("a disabled case is a failed one", GTEST % (f"{GOOD},{DISABLED}", 0), "1 passed, 1 failed", 1),
        ("a bad end without a failed case is one", GTEST % (GOOD, 3), "1 passed, 1 failed", 1),
        ("a report without cases fails", GTEST % ("", 0), "0 passed, 1 failed", 1),
        ("a crash is a failed case", script("kill -SEGV $$"), "0 passed, 1 failed", 1),
        ("a script is one case", script("true"), "1 passed, 0 failed", 0),
        ("a failing script is one case", script("exit 1"), "0 passed, 1 failed", 1),
        ("a script may count its own cases", script("echo '7 passed, 0 failed'"), "7 passed, 0 failed", 0),
        ("and its failures", script("echo '7 passed, 2 failed'; exit 1"), "7 passed, 2 failed", 1),
        ("a program is stopped at its limit", script("sleep 60"), "0 passed, 1 failed", 1),
    ]

    def run_build(self, text):
        with tempfile.TemporaryDirectory() as build:
            program = os.path.join(build, "program")
            with open(program, "w", encoding="utf-8") as file:
                file.write(text)
            os.chmod(program, 0o755)
            with open(os.path.join(build, "CTestTestfile.cmake"), "w", encoding="utf-8") as file:
                file.write(f'add_test(one "{program}")\nset_tests_properties(one PROPERTIES TIMEOUT 2)\n')
            return subprocess.run([RUNNER, build], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def test_counts(self):
        for why, text, last_line, code in self.CASES:
            with self.subTest(why):
                done = self.run_build(text)
                self.assertEqual(done.stdout.splitlines()[-1], last_line, done.stdout)
                self.assertEqual(done.returncode, code)

    def test_a_build_without_tests_fails(self):
        with tempfile.TemporaryDirectory() as build:
            done = subprocess.run([RUNNER, build], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            self.assertNotEqual(done.returncode, 0)


if __name__ == "__main__":
    cases.main()
