"""repeated_blocks_test.py SOURCE: the product says nothing twice: no eight lines stand in two places.

Lines are compared without their indentation. Blank lines, comments, includes and lines of brackets alone do not count,
so that neither a file's head nor the end of a block is a repetition.
"""

import os
import re
import sys
import tempfile
import unittest

import cases

SOURCE = sys.argv.pop()
FOLDERS = ("include", "src", "base", "adapters", "database", "host", "console")
ENDINGS = (".h", ".cpp", ".asp", ".inc", ".js")
LENGTH = 8
IGNORED = re.compile(r"(//.*|#.*|<!--#include.*|namespace.*|using [\w:]+;|class \w+;|struct \w+;|[\s(){}\[\];,]*)$")


def files(top):
    for folder in FOLDERS:
        for at, _, names in os.walk(os.path.join(top, folder)):
            yield from (os.path.join(at, name) for name in sorted(names) if name.endswith(ENDINGS))


def counted_lines(file):
    """The lines that count, each with its number."""
    with open(file, encoding="utf-8", errors="replace") as text:
        stripped = [(number, line.strip()) for number, line in enumerate(text, 1)]
    return [(number, line) for number, line in stripped if not IGNORED.match(line)]


def repeated_blocks(top):
    """The places of each block that is there twice: "a.cpp:3 and b.cpp:7", the later one in the order of the files."""
    first_places, told_to, found = {}, {}, []
    for file in files(top):
        lines = counted_lines(file)
        for at in range(len(lines) - LENGTH + 1):
            block = tuple(line for _, line in lines[at:at + LENGTH])
            first, index, number = first_places.setdefault(block, (file, at, lines[at][0]))
            if (first, index) == (file, at) or (first == file and index + LENGTH > at):
                continue
            goes_on = told_to.get((first, file)) == at - 1  # the next line of a block that was told
            told_to[first, file] = at
            if not goes_on:
                found.append(f"{os.path.relpath(first, top)}:{number} and {os.path.relpath(file, top)}:{lines[at][0]}")
    return found


class RepeatedBlocks(unittest.TestCase):
    def found_in(self, texts):
        with tempfile.TemporaryDirectory() as top:
            for name, lines in texts.items():
                os.makedirs(os.path.dirname(os.path.join(top, name)), exist_ok=True)
                with open(os.path.join(top, name), "w", encoding="utf-8") as file:
                    file.write("\n".join(lines) + "\n")
            return repeated_blocks(top)

    def test_a_block_is_named_with_both_its_places(self):
        block = [f"Step({i});" for i in range(LENGTH + 3)]
        found = self.found_in({"src/a.cpp": ["int a;"] + block, "host/b.cpp": ["", "int b;"] + block})
        self.assertEqual(found, ["src/a.cpp:2 and host/b.cpp:3"])

    def test_also_within_one_file(self):
        block = [f"Step({i});" for i in range(LENGTH)]
        self.assertEqual(self.found_in({"src/a.cpp": block + ["int a;"] + block}), ["src/a.cpp:1 and src/a.cpp:10"])

    def test_indentation_and_lines_that_do_not_count_make_no_other_block(self):
        block = [f"Step({i});" for i in range(LENGTH)]
        other = ["  " + line for line in block[:4]] + ["", "  // why", "}"] + block[4:]
        self.assertEqual(self.found_in({"src/a.cpp": block, "src/b.cpp": other}), ["src/a.cpp:1 and src/b.cpp:1"])

    def test_fewer_lines_may_be_alike(self):
        block = [f"Step({i});" for i in range(LENGTH - 1)]
        self.assertEqual(self.found_in({"src/a.cpp": block + ["int a;"], "src/b.cpp": block + ["int b;"]}), [])

    def test_the_product_has_none(self):
        self.assertGreater(len(list(files(SOURCE))), 300)
        self.assertEqual(repeated_blocks(SOURCE), [])


if __name__ == "__main__":
    cases.main()
