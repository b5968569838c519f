"""Folders of pages, each beside what `kalvo page` prints of it over the small sample: NAME.asp, NAME.args (options, quoted
as for a shell), NAME.html. A difference leaves NAME.html.actual, which tests/approve accepts. Every example of the guide
is one of these pages, to the letter."""

import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

import cases

KALVO, SOURCES = sys.argv[1], sys.argv[2]
GOLDEN = os.path.join(SOURCES, "tests", "golden")
FOLDERS = ("classic", "guide", "reference")
MARKED = re.compile(r"^<!-- (tests/golden/guide/[\w./]+) -->\n+```\w*\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def read(path):
    with open(path, "rb") as file:
        return file.read()


class PageFolders(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = tempfile.TemporaryDirectory()
        subprocess.run([KALVO, "sample", "--seed", "1", "--mail", "none", "--out", cls.work.name], check=True,
                       capture_output=True)

    @classmethod
    def tearDownClass(cls):
        cls.work.cleanup()

    def printed(self, folder, page):
        base = os.path.join(GOLDEN, folder, page)
        arguments = shlex.split(read(base + ".args").decode()) if os.path.exists(base + ".args") else []
        done = subprocess.run([KALVO, "page", "--root", os.path.join(GOLDEN, folder), "--database",
                               f"sqlite:{self.work.name}/kalvo.db", *arguments, base + ".asp"],
                              capture_output=True, env=dict(os.environ, TZ="UTC"))
        self.assertEqual((done.returncode, done.stderr.decode()), (0, ""), page)
        return done.stdout

    def test_every_page_prints_what_stands_beside_it(self):
        for folder in FOLDERS:
            pages = sorted(name[:-4] for name in os.listdir(os.path.join(GOLDEN, folder)) if name.endswith(".asp"))
            self.assertTrue(pages, folder)
            for page in pages:
                golden = os.path.join(GOLDEN, folder, page + ".html")
                actual = self.printed(folder, page)
                if not os.path.exists(golden) or read(golden) != actual:
                    with open(golden + ".actual", "wb") as file:
                        file.write(actual)
                with self.subTest(page=f"{folder}/{page}"):
                    self.assertTrue(os.path.exists(golden))
                    self.assertEqual(read(golden), actual)

    def test_the_corpus_of_classic_pages_is_large(self):
        self.assertGreaterEqual(sum(name.endswith(".asp") for name in os.listdir(os.path.join(GOLDEN, "classic"))), 40)

    def test_every_example_of_the_guide_is_a_page_that_runs(self):
        guide = read(os.path.join(SOURCES, "docs", "page-scripts.md")).decode()
        marked = dict(MARKED.findall(guide))
        self.assertEqual(guide.count("```asp"), sum(name.endswith(".asp") for name in marked),
                         "an example of a page without its file")
        for name, example in marked.items():
            with self.subTest(file=name):
                self.assertEqual(example, read(os.path.join(SOURCES, name)).decode())
        told = {os.path.basename(name) for name in marked}
        self.assertEqual(sorted(name for name in os.listdir(os.path.join(GOLDEN, "guide")) if name.endswith(".asp")
                                and name not in told), [], "a page that the guide does not show")

    def test_the_first_ten_minutes_are_as_the_guide_tells_them(self):
        guide = read(os.path.join(SOURCES, "docs", "page-scripts.md")).decode()
        steps = re.search(r"^```sh\n(.*?)^```$", guide, re.MULTILINE | re.DOTALL).group(1)
        with tempfile.TemporaryDirectory() as folder:
            os.mkdir(os.path.join(folder, "build"))
            os.symlink(KALVO, os.path.join(folder, "build", "kalvo"))
            os.symlink(os.path.join(SOURCES, "console"), os.path.join(folder, "console"))
            done = subprocess.run(["bash", "-euo", "pipefail", "-c", steps], cwd=folder, capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("<title>My servers", done.stdout)
        self.assertIn("SEA-EX01", done.stdout)


if __name__ == "__main__":
    cases.main()
