"""sql_attack_test.py KALVO: hostile sort texts, orders and values on the console's pages, as the page runner runs them:
nothing of them reaches the database, and the edge lets none come that far."""

import os
import sqlite3
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

import cases

KALVO = sys.argv.pop()
HERE = os.path.dirname(os.path.abspath(__file__))
CONSOLE = os.path.join(HERE, "..", "..", "console")
SERVERS = ("alpha", "bravo", "charlie")
VALUES = ("' or '1'='1", "' or 1=1 --", "'; drop table EXDB_SERVER; --", "\\' or 1=1 -- ", "\\", "x\\", "''", "%", "_",
          "\u2019 or 1=1 --", "\uff07 or 1=1 --", "\u02bc or 1=1 --", "'" * 3000, "/* */", "-- #", "\"x\" [y] `z`",
          "{fn now()}", "$1 ? :a @a", "\U0001d11e", "a\r\nb")
SCOPES = ("Resources/SingleServerReports.asp?Server=", "Resources/SingleServerGroupReports.asp?GroupName=",
          "Tasks/Chargeback.asp?Organization=", "Resources/FindMailbox.asp?Mailbox=")


def texts(name):
    with open(os.path.join(HERE, name), encoding="utf-8") as file:
        return [line.rstrip("\n") for line in file if not line.startswith("#")]


class Sql(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.database = os.path.join(cls.folder.name, "kalvo.db")
        with open(os.path.join(HERE, "../../database/schema.sql"), encoding="utf-8") as file:
            schema = file.read()
        for word, meaning in (("@CI@", " collate nocase"), ("@DT@", "datetime"), ("@END@", ""), ("@B16@", "blob"),
                              ("@PG@", "-- ")):
            schema = schema.replace(word, meaning)
        connection = sqlite3.connect(cls.database)
        connection.executescript(schema)
        for number, name in enumerate(SERVERS, 1):
            connection.execute("insert into EXDB_SERVER (ServerId, ComputerName, Missing, ServerState) values (?, ?, 0, 2)",
                               (number, name))
        connection.commit()
        connection.close()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def page(self, address, *options):
        page, _, query = address.partition("?")
        answer = subprocess.run([KALVO, "page", os.path.join(CONSOLE, page), "--root", CONSOLE, "--database",
                                 "sqlite:" + self.database, "--query=" + query, *options],
                                capture_output=True, timeout=60, check=False)
        page = answer.stdout.decode("utf-8", "replace")
        if "--edge" in options and b"holds a placeholder" in answer.stderr:
            return page  # no page ran
        self.assertIn("<html", page, answer.stderr)
        return page

    def shown(self, page):
        return [name for name in SERVERS if name in page]

    def test_the_page_shows_every_server(self):
        page = self.page("Resources/AllServers.asp")
        self.assertEqual(self.shown(page), list(SERVERS))
        self.assertNotIn("Error", page)

    def test_sort_texts_are_refused_by_the_adapter(self):
        for sort in texts("refused_sorts.txt"):
            page = self.page("Resources/AllServers.asp?Sort=" + sort)
            with self.subTest(sort):
                self.assertIn("[42000]", page)
                self.assertEqual(self.shown(page), [])

    def test_orders_are_refused_by_the_adapter(self):
        for order in texts("refused_orders.txt"):
            page = self.page("Resources/AllServers.asp?Sort=ComputerName&SortOrder=" + order)
            with self.subTest(order):
                self.assertIn("[42000]", page)

    def test_nothing_of_it_comes_past_the_edge(self):
        for name, prefix in (("refused_sorts.txt", "Sort="), ("refused_orders.txt", "Sort=ComputerName&SortOrder=")):
            for text in texts(name):
                page = self.page("Resources/AllServers.asp?" + prefix + text, "--edge")
                with self.subTest(text):
                    self.assertNotIn("Error Generating Table", page)
                    self.assertEqual(len(self.shown(page)), 0 if page == "" else 3)

    def test_values_are_values(self):
        for scope in SCOPES:
            nobody = self.rows(self.page(scope + "nobody"))
            for value in VALUES:
                page = self.page(scope + urllib.parse.quote(value))
                with self.subTest((scope, value)):
                    self.assertNotIn("Error Generating Table", page)
                    self.assertEqual(self.rows(page), nobody)

    def rows(self, page):
        return page.count("<tr")


if __name__ == "__main__":
    cases.main()
