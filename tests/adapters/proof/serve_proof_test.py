"""serve_proof_test.py KALVO DRIVER: `kalvo serve` and `kalvo check` try a data source before anybody relies on it."""

import os
import signal
import sqlite3
import subprocess
import sys
import tempfile
import unittest

import cases
from serving import Serving, wait_until

DRIVER = sys.argv.pop()
KALVO = sys.argv.pop()
REPORT = ('<% var g = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");'
          'g.BuildTable(TABLE_CURRENTALERTS, "", "", "", "", "", TOPN_UNDEFINED, "none"); %>')


def make_database(file):
    """The tables of the reporting database, without a row."""
    with open(os.path.join(os.path.dirname(__file__), "../../../database/schema.sql"), encoding="utf-8") as schema:
        text = schema.read()
    for name, meaning in (("@CI@", " collate nocase"), ("@DT@", "datetime"), ("@END@", ""), ("@B16@", "blob"),
                          ("@PG@", "-- ")):
        text = text.replace(name, meaning)
    connection = sqlite3.connect(file)
    connection.executescript(text)
    connection.close()


class DataSource(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        make_database(cls.path("kalvo.db"))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def path(cls, name):
        return os.path.join(cls.folder.name, name)

    def odbc(self, lines):
        with open(self.path("odbc.ini"), "w", encoding="utf-8") as file:
            file.write("[KalvoDB]\n" + lines + "\n")
        return dict(os.environ, ODBCINI=self.path("odbc.ini"))

    def run_kalvo(self, command, settings, environment=None):
        with open(self.path("kalvo.toml"), "w", encoding="utf-8") as file:
            file.write(settings + f'\nrun = "run"\nsite = "{self.folder.name}"\nlog = "log"\n')
        return subprocess.run([KALVO, command, "--config", self.path("kalvo.toml")], env=environment, text=True,
                              capture_output=True, timeout=60, check=False)

    def test_a_database_that_only_reads_is_proved(self):
        answer = self.run_kalvo("check", 'database = "sqlite:kalvo.db"')
        self.assertIn("Read-only   4 kinds of write refused\n", answer.stdout)
        self.assertIn("Time limit  a slow statement was stopped at its time limit\n", answer.stdout)

    def test_a_source_that_takes_writes_is_not_served(self):
        environment = self.odbc(f"Driver={DRIVER}")
        settings = 'database = "odbc"\nunknown_engine = true'
        checked = self.run_kalvo("check", settings, environment)
        self.assertEqual(checked.returncode, 1)
        self.assertIn("Read-only   fails: the data source is not read-only: it took \"delete from ", checked.stdout)
        served = self.run_kalvo("serve", settings, environment)
        self.assertEqual(served.returncode, 2)
        self.assertIn("kalvo: database: the data source is not read-only: it took \"delete from ", served.stderr)

    def test_an_engine_that_nobody_knows_is_named(self):
        checked = self.run_kalvo("check", 'database = "odbc"', self.odbc(f"Driver={DRIVER}"))
        self.assertEqual(checked.returncode, 1)
        self.assertIn("fails: [0A000] The database \"Careless\" is unknown here", checked.stdout)

    def test_a_source_that_holds_a_statement_is_not_waited_for(self):
        environment = self.odbc(f"Driver={DRIVER}\nStubborn=1")
        checked = self.run_kalvo("check", 'database = "odbc"\nunknown_engine = true', environment)
        self.assertEqual(checked.returncode, 1)
        self.assertIn("did not answer within ten seconds", checked.stdout)

    def test_a_source_that_is_not_there_yet_is_proved_when_it_first_opens(self):
        with Serving(KALVO, {"page.asp": REPORT}, 'workers = 1\ndatabase = "sqlite:late.db"') as server:
            self.assertIn("database: not proved yet: the data source cannot be opened", server.log())
            self.assertIn("conn.Open", server.get("page.asp").text)
            make_database(os.path.join(server.folder, "late.db"))
            page = server.get("page.asp").text
            self.assertNotIn("Error", page)
            self.assertIn("none", page)

    def test_a_source_that_takes_writes_does_not_replace_the_one_that_is_served(self):
        os.environ["ODBCINI"] = self.odbc(f"Driver={DRIVER}")["ODBCINI"]
        try:
            with Serving(KALVO, {"page.asp": REPORT}, f'workers = 1\ndatabase = "sqlite:{self.path("kalvo.db")}"') as server:
                server.configure('workers = 1\ndatabase = "odbc"\nunknown_engine = true')
                server.process.send_signal(signal.SIGHUP)
                wait_until("the reload is refused", lambda: "not reloaded: database: the data source is not read-only"
                           in server.log(), 60)
                self.assertNotIn("Error", server.get("page.asp").text)
        finally:
            del os.environ["ODBCINI"]


if __name__ == "__main__":
    cases.main()
