"""survival_test.py KALVO PAGES: pages that must come to their end, whatever they ask of the library's objects."""

import os
import re
import sqlite3
import subprocess
import sys
import tempfile
import unittest

import cases

PAGES = sys.argv.pop()
KALVO = sys.argv.pop()
SEEDS = range(1, 5)


class Survival(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="kalvo-")
        cls.addClassCleanup(cls.folder.cleanup)
        cls.database = os.path.join(cls.folder.name, "empty.db")
        sqlite3.connect(cls.database).close()

    def page(self, name, *arguments):
        """What a page printed that has to end well."""
        statics = [argument for object_name in ("gTopNResults", "gTopNServerLoader")
                   for argument in ("--static", f"{object_name}={os.path.join(PAGES, 'object.js')}")]
        done = subprocess.run([KALVO, "page", "--time-limit", "100", "--database", f"sqlite:{self.database}", *statics,
                               *arguments, os.path.join(PAGES, name)],
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=110)
        self.assertEqual(done.returncode, 0, done.stderr)
        # What script of the page's own failed with while the library went on, and nothing else.
        for told in done.stderr.decode().splitlines():
            self.assertRegex(told, rf"^kalvo: ({re.escape(name)}:\d+: [\w -]+: \w+: |and \d+ more$)", arguments)
        return done.stdout.decode().rstrip("\n")

    def test_scripts_that_turn_back_to_who_asks_them(self):
        for seed in SEEDS:
            with self.subTest(seed=seed):
                self.assertEqual(self.page("turns_back.asp", "--query", f"Seed={seed}"), "survived")

    def test_a_table_that_is_rendered_while_it_is_rendered(self):
        self.assertRegex(self.page("no_end_of_rendering.asp"), "survived$")

    def test_row_sources_that_were_never_initialised(self):
        self.assertEqual(self.page("never_initialised.asp"),
                         "OpenDS!91 CloseDS!91 MoveFirst=0 MoveNext=0 MoveTotals!91 GetField!91 RecordCount=0 "
                         "GetRowIndex=0 \n"
                         "OpenDS!91 CloseDS=0 MoveFirst=0 MoveNext!91 MoveTotals!91 GetField!91 RecordCount=0 "
                         "GetRowIndex=0 \n"
                         "OpenDS!91 OpenFolderDS!91 OpenMessageDS!91 CloseDS=0 MoveFirst=0 MoveNext!91 MoveTotals=0 "
                         "GetField= RecordCount=0 GetRowIndex=0 ")


cases.main()
