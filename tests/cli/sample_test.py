"""sample_test.py KALVO: each sample has identifiers of its own, the same in its database and its mail store."""

import os
import sqlite3
import stat
import subprocess
import sys
import tempfile
import unittest

import cases

KALVO = os.path.abspath(sys.argv.pop())

IDENTIFIERS = """select s.ComputerName, p.ExchangeId, p.FolderPath from EXDB_PUBLICFOLDER p
                  join EXDB_SERVER s on s.ServerId = p.ServerId order by p.PublicFolderId"""

OPEN = """<%
var live = Session.StaticObjects("gLiveDriller"), server = String(Request.QueryString("Server"));
live.GotoContainer(server, "Kalvo " + server, "", 0, 4);
live.GotoContainerById(server, String(Request.QueryString("Id")), 4);
Response.Write(live.CurrentContainerName());
%>"""


class Sample(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="kalvo-")
        cls.addClassCleanup(cls.folder.cleanup)
        with open(os.path.join(cls.folder.name, "open.asp"), "w", encoding="utf-8") as file:
            file.write(OPEN)
        for name, more in [("one", []), ("two", []), ("seed", ["--seed", "1"])]:
            subprocess.run([KALVO, "sample", "--out", name, "--mail", "users", *more], cwd=cls.folder.name, check=True,
                           stderr=subprocess.DEVNULL)

    def path(self, *names):
        return os.path.join(self.folder.name, *names)

    def key(self, name):
        with open(self.path(name, "mail/.kalvo/key"), "rb") as file:
            return file.read()

    def identifiers(self, name):
        with sqlite3.connect(self.path(name, "kalvo.db")) as database:
            return database.execute(IDENTIFIERS).fetchall()

    def test_the_key_is_random_unless_a_seed_is_given(self):
        keys = [self.key(name) for name in ("one", "two", "seed")]
        self.assertEqual([len(key) for key in keys], [16] * 3)
        self.assertEqual(len(set(keys)), 3)
        self.assertEqual(keys[2].hex(), "4e808514237f37dd399e0d8bb4ec463e")

    def test_only_its_owner_reads_the_key(self):
        self.assertEqual(stat.S_IMODE(os.stat(self.path("one/mail/.kalvo/key")).st_mode), 0o600)

    def test_the_databases_identifiers_open_folders_of_its_own_store_alone(self):
        ones = self.identifiers("one")
        self.assertGreater(len(ones), 3)
        self.assertEqual(len(set(ones) & set(self.identifiers("two"))), 0)
        server, identifier, name = ones[0]
        for store, opened in [("one", True), ("two", False)]:
            with self.subTest(store):
                done = subprocess.run([KALVO, "page", "--mail", f"maildir:{store}/mail", "--query",
                                       f"Server={server}&Id={identifier}", "open.asp"], cwd=self.folder.name,
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=60)
                self.assertEqual(done.returncode == 0, opened, done.stderr)
                if opened:
                    self.assertTrue(done.stdout == name, (done.stdout, name))


if __name__ == "__main__":
    cases.main()
