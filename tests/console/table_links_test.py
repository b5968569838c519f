"""table_links_test.py KALVO: no sort or paging link of one table changes another's state, on pages of one to five tables."""

import html.parser
import os
import random
import subprocess
import sys
import unittest
import urllib.parse

import cases
from serving import Serving

KALVO = sys.argv.pop()
STEPS = 60 if os.environ.get("KALVO_TEST_LONG") else 12
STATE = ("Sort", "SortOrder", "First", "PageSize")
# The tables of one generator, as many as "n" says, from the "from"-th on.
PAGE = """<%@ Language="JavaScript" %><%
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
var tables = [
  function () { generator.BuildTable(TABLE_RES_ORGANIZATION_ALLSERVERS); },
  function () { generator.BuildTable(TABLE_CHARGEBACK_Server, "SEA-EX01"); },
  function () { generator.BuildTable(TABLE_CURRENTALERTS); },
  function () { generator.BuildTable(TABLE_TOPN_MBCNT, "SEA-EX01", "", "", "", "", TOPN_SINGLESERVER); },
  function () { generator.BuildTable(TABLE_AmbiguousAddressResolution, "SEA-EX01", "", "", "%"); }
];
var n = Number(Request.QueryString("n")), first = Number(Request.QueryString("from")), i;
for (i = 0; i < n; ++i) {
  Response.Write("<section>");
  tables[(first + i) % tables.length]();
  Response.Write("</section>");
}
%>"""


class Tables(html.parser.HTMLParser):
    """What each table of a page shows, and its links to the page itself."""

    def __init__(self, text):
        super().__init__()
        self.shown, self.links = [], []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if tag == "section":
            self.shown.append([])
            self.links.append([])
        elif tag == "tr":
            self.shown[-1].append("\n")
        elif tag == "img" and "Controls" not in attrs["src"]:
            self.shown[-1].append(attrs["src"])
        elif tag == "a" and "/Tables.asp?" in attrs.get("href", ""):
            self.links[-1].append(attrs["href"])

    def handle_data(self, data):
        if self.shown:
            self.shown[-1].append(data)


def state(query, table):
    """The values of a table, counted from 0; "" where the address has none."""
    values = urllib.parse.parse_qs(query, keep_blank_values=True)
    return {name: (values.get(name, []) + [""] * 9)[table] for name in STATE}


def others(query):
    return [pair for pair in urllib.parse.parse_qsl(query, keep_blank_values=True) if pair[0] not in STATE]


class Links(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = Serving(KALVO, {"Tables.asp": PAGE}, 'workers = 2\ndatabase = "sqlite:sample/kalvo.db"')
        cls.addClassCleanup(cls.server.__exit__, None)
        subprocess.run([KALVO, "sample", "--out", os.path.join(cls.server.folder, "sample"), "--mail", "none"], check=True,
                       stderr=subprocess.DEVNULL)
        cls.server.start()

    def tables(self, query):
        answer = self.server.get("Tables.asp?" + query)
        self.assertEqual(answer.status, 200)
        return Tables(answer.text)

    def walk(self, choice, count):
        """Follows links at random; at each step every link of the page keeps to its table."""
        query = urllib.parse.urlencode([("n", count), ("from", choice.randrange(5)), ("x", "a b&c"), ("x", "<")]
                                       + [("PageSize", choice.choice(("3", "7", ""))) for _ in range(count)])
        page = self.tables(query)
        self.assertEqual(len(page.shown), count)
        for _ in range(STEPS):
            for table, links in enumerate(page.links):
                self.assertGreater(len(links), 1, query)
                for link in links:
                    self.assert_keeps_to(table, query, urllib.parse.urlsplit(link).query, count)
            table = choice.randrange(count)
            query = urllib.parse.urlsplit(choice.choice(page.links[table])).query
            before, page = page, self.tables(query)
            for other in set(range(count)) - {table}:
                self.assertEqual(page.shown[other], before.shown[other], query)

    def assert_keeps_to(self, table, query, link, count):
        self.assertEqual(others(link), others(query))
        for other in set(range(count)) - {table}:
            self.assertEqual(state(link, other), state(query, other), f"table {table} of {query}: {link}")

    def test_of_one_table_leave_the_others_alone(self):
        for count in range(1, 6):
            for seed in range(2):
                with self.subTest(tables=count, seed=seed):
                    self.walk(random.Random(100 * count + seed), count)

    def test_change_their_own_table(self):
        query = "n=2&from=0&PageSize=3&PageSize=3"
        page = self.tables(query)
        changed = [link for link in page.links[1]
                   if self.tables(urllib.parse.urlsplit(link).query).shown[1] != page.shown[1]]
        self.assertGreater(len(changed), 5)


if __name__ == "__main__":
    cases.main()
