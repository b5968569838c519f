"""console_test.py KALVO SOURCE: the console's pages over the small sample, served and as the page runner runs them."""

import concurrent.futures
import html.parser
import os
import re
import sqlite3
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

import cases
from serving import Serving

SOURCE = sys.argv.pop()
KALVO = sys.argv.pop()
CONSOLE = os.path.join(SOURCE, "console")
BASE = "/KalvoforExchange/"
FAILURE = "Error Generating Table"
HOSTILE = "\"><script>alert('1')</script>"


class Sample:
    """The small sample, made once for all tests."""

    folder = None

    @classmethod
    def path(cls, *names):
        if cls.folder is None:
            cls.folder = tempfile.TemporaryDirectory(prefix="kalvo-console-")
            subprocess.run([KALVO, "sample", "--out", cls.folder.name], check=True, stderr=subprocess.DEVNULL)
        return os.path.join(cls.folder.name, *names)


class Links(html.parser.HTMLParser):
    """The addresses that a page names: where a click leads, what is loaded, where forms go; and the forms' fields."""

    def __init__(self, text):
        super().__init__()
        self.anchors, self.loaded, self.forms, self.boxes = [], [], [], []
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        attrs = dict(attrs)
        if tag == "a" and "href" in attrs:
            self.anchors.append(attrs["href"])
        if tag == "form":
            self.forms.append(attrs.get("action", ""))
        if tag in ("img", "script") and "src" in attrs:
            self.loaded.append(attrs["src"])
        if tag == "link":
            self.loaded.append(attrs["href"])
        if tag == "input" and attrs.get("type") == "checkbox":
            self.boxes.append((attrs.get("name"), attrs.get("value")))


class Console(unittest.TestCase):
    def run_page(self, page, query="", form=None, administrator=True, database=None):
        command = [KALVO, "page", "--root", CONSOLE, "--url", BASE + page,
                   "--database", "sqlite:" + (database or Sample.path("kalvo.db")), "--mail", "maildir:" + Sample.path("mail"),
                   "--logon", "KALVO\\adam.abbott"]
        if query:
            command += ["--query", query]
        if administrator:
            command += ["--session", "KalvoAdministrator=Yes", "--session", "KalvoDrillDownAuth=Yes"]
        if form is not None:
            command += ["--form", form]
        done = subprocess.run(command + [os.path.join(CONSOLE, page)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=60, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""), f"{page}?{query}")
        return done.stdout.decode()

    def asp_pages(self):
        for folder in ("Tasks", "Resources", "Configuration"):
            for name in sorted(os.listdir(os.path.join(CONSOLE, folder))):
                yield f"{folder}/{name}"


SERVED = """workers = {workers}
database = "sqlite:{sample}/kalvo.db"
mail = "maildir:{sample}/mail"
[visitor]
logon = 'KALVO\\adam.abbott'
[visitor.session]
KalvoAdministrator = "Yes"
KalvoDrillDownAuth = "Yes"
"""


class Crawl(Console):
    """Every link leads to a page that is there, and no page has a failure line."""

    @classmethod
    def setUpClass(cls):
        cls.server = Serving(KALVO, settings=SERVED.format(workers=os.cpu_count(), sample=Sample.path()), site=CONSOLE)
        cls.addClassCleanup(cls.server.__exit__, None, None, None)
        cls.server.start()

    def served(self, page, query):
        query = urllib.parse.quote(query, safe="%/:?@!$&'()*+,;=-._~")  # what a browser does to an address
        answer = self.server.get(f"{page}?{query}", timeout=60)
        self.assertEqual(answer.status, 200, f"{page}?{query}")
        return answer.text

    # What only orders or pages a table; such links are followed once a page and column, not once a scope.
    VIEW = ("Sort", "SortOrder", "First", "PageSize")
    # Pages behind which the mail store begins: they are opened from every report, and left again.
    MAIL = ("Resources/MailboxSummary.asp", "Resources/PublicFolderSummary.asp")

    def key(self, page, query):
        values = urllib.parse.parse_qs(query, keep_blank_values=True)
        scope = tuple(sorted((name, *value) for name, value in values.items() if name not in self.VIEW))
        view = tuple((name, *values[name]) for name in ("Sort", "SortOrder") if name in values)
        if page in self.MAIL:
            return page, scope
        if view or "First" in values:
            return page, tuple(values.get("Report", ())), view
        if page == "Tasks/TopN.asp" and "Report" in values:
            return page, values["Report"][0], tuple(name for name, _ in scope)
        return page, scope

    def follow(self, page, query):
        text = self.served(page, query)
        failure = re.search(FAILURE + "[^\\r\\n]*|The table requested is invalid", text)
        self.assertIsNone(failure, f"{page}?{query}")
        links = Links(text)
        for address in links.loaded:
            self.assertTrue(os.path.isfile(os.path.join(CONSOLE, self.resolved(page, address)[0])), address)
        found = []
        for address in links.anchors + links.forms:
            target, more = self.resolved(page, address)
            self.assertTrue(os.path.isfile(os.path.join(CONSOLE, target)), f"{page}?{query} leads to {address}")
            found.append((target, more))
        if page in self.MAIL:
            return []
        # The Top-N reports name folders and messages that their scanner numbered; the sample's mail store does not
        # know them, so from there the mailboxes themselves are opened, and no further.
        return [(target, more) for target, more in found
                if target.endswith(".asp") and target != "Configuration/Process.asp"
                and not (page == "Tasks/TopN.asp" and ("ContainerId=" in more or "MessageId=" in more))]

    def resolved(self, page, address):
        parts = urllib.parse.urlsplit(urllib.parse.urljoin(BASE + page, address))
        self.assertTrue(parts.path.startswith(BASE), address)
        return parts.path[len(BASE):], parts.query

    def test_of_every_link_from_the_first_page_on(self):
        waiting, seen = [("Tasks/CurrentAlerts.asp", "")], set()
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
            while waiting:
                fresh = []
                for page, query in waiting:
                    key = self.key(page, query)
                    if key not in seen:
                        seen.add(key)
                        fresh.append((page, query))
                waiting = [link for links in workers.map(lambda link: self.follow(*link), fresh) for link in links]
        reached = {key[0] for key in seen}
        # Where nobody signs in, nobody has a password.
        self.assertEqual({page for page in self.asp_pages()} - reached,
                         {"Configuration/Process.asp", "Configuration/Password.asp"})
        mailboxes = [key for key in seen if key[0] == "Resources/MailboxSummary.asp"]
        self.assertGreater(len(mailboxes), 300)


class Pages(Console):
    def test_show_every_database_report(self):
        with open(os.path.join(SOURCE, "include/kalvo/enumerations.h"), encoding="utf-8") as file:
            ids = dict((int(number), name) for name, number in re.findall(r"X\((TABLE_\w+), (\d+)\)", file.read()))
        text = ""
        for page in self.asp_pages():
            with open(os.path.join(CONSOLE, page), encoding="utf-8") as file:
                text += file.read()
        for number in range(2, 44):
            self.assertRegex(text, rf"\b{ids[number]}\b")

    def test_write_nothing_of_a_request_as_it_is(self):
        parameters = ["Server", "GroupName", "Organization", "Site", "Mailbox", "Name", "Report", "Beginning", "Container",
                      "ContainerId", "PublicFolderId", "MessageId", "MailboxGroup", "Sort", "SortOrder"]
        query = "&".join(f"{name}={urllib.parse.quote(HOSTILE)}" for name in parameters)
        for page in self.asp_pages():
            if page == "Configuration/Process.asp":
                continue
            with self.subTest(page):
                self.assertNotIn("<script>alert", self.run_page(page, query))
                for name in parameters:
                    self.assertNotIn("<script>alert", self.run_page(page, f"{name}={urllib.parse.quote(HOSTILE)}"), name)

    def test_of_an_unknown_scope_are_empty_reports_and_no_failures(self):
        for page in ("Resources/SingleServerReports.asp", "Resources/SingleServerGroupReports.asp", "Tasks/Chargeback.asp",
                     "Tasks/CapacityPlanning.asp", "Resources/Organizations.asp", "Tasks/DisabledSingleUser.asp"):
            for value in ("nobody", "O'Neil", "100%", "a\\", "x" * 10000, "東京 😀"):
                value = urllib.parse.quote(value)
                for name in ("Server", "GroupName", "Organization", "Name"):
                    with self.subTest(f"{page} {name}={value[:20]}"):
                        self.assertNotIn(FAILURE, self.run_page(page, f"{name}={value}"))

    def test_go_on_after_a_report_that_fails(self):
        with tempfile.TemporaryDirectory(prefix="kalvo-") as folder:
            spoilt = os.path.join(folder, "kalvo.db")
            with open(Sample.path("kalvo.db"), "rb") as whole, open(spoilt, "wb") as copy:
                copy.write(whole.read())
            database = sqlite3.connect(spoilt)
            database.execute("alter table EXDB_SERVERTOTALS rename column MBSpace to Lost")
            database.commit()
            database.close()
            text = self.run_page("Resources/ServerGroups.asp", database=spoilt)
        self.assertEqual(text.count("Failure retrieving the table information."), 1)
        groups, mailboxes, folders = text.split("<h2>")[1:]
        self.assertIn("Branch Offices", groups)
        self.assertIn("0x80040E14", mailboxes)
        self.assertIn("Branch Offices", folders)

    def test_of_the_root_leads_to_the_alerts(self):
        done = subprocess.run([KALVO, "page", "--headers", os.path.join(CONSOLE, "Default.asp")], stdout=subprocess.PIPE,
                              check=True, timeout=60)
        self.assertRegex(done.stdout.decode(), r"(?s)^[^\n]*302.*Location: Tasks/CurrentAlerts\.asp")


class CurrentAlerts(Console):
    PAGE = "Tasks/CurrentAlerts.asp"

    def test_have_a_box_each_for_an_administrator(self):
        text = self.run_page(self.PAGE, "PageSize=-1")
        links = Links(text)
        count = int(re.search(r"Number of Entries:</th><th[^>]*>(\d+)<", text).group(1))
        self.assertGreater(count, 100)
        self.assertEqual(len(links.boxes), count)
        self.assertTrue(all(name == "Delete" and re.fullmatch(r"[0-9A-F]{32}", value) for name, value in links.boxes))
        self.assertIn("../Configuration/Selection.asp", links.forms)

    def test_have_no_box_and_no_form_for_anybody_else(self):
        text = self.run_page(self.PAGE, administrator=False)
        self.assertEqual((Links(text).boxes, Links(text).forms), ([], []))

    def test_say_what_was_chosen_and_that_nothing_was_changed(self):
        for form, chosen, unchanged in [
                ("What=alerts&Delete=00&Delete=11", "2 alerts chosen.", "No alert has been deleted."),
                ("What=violations&Select=00", "1 quota violation chosen.", "No recipient has been enabled."),
                ("What=members&Include=1&GroupName=A%26B", "1 server chosen for the group A&amp;B.",
                 "The members of the group are as they were."),
        ]:
            with self.subTest(form):
                text = self.run_page("Configuration/Selection.asp", form=form)
                self.assertIn(chosen, text)
                self.assertIn("Nothing was changed. " + unchanged, text)
                self.assertIn("never writes it", text)
        self.assertIn("Only an administrator may change this.",
                      self.run_page("Configuration/Selection.asp", form="What=alerts&Delete=00", administrator=False))
        self.assertIn("Nothing was chosen.", self.run_page("Configuration/Selection.asp", form="What=constructor"))


class Images(unittest.TestCase):
    SIZES = {"Controls/BlankSort": (17, 16), "Controls/Up": (20, 16), "Controls/Down": (20, 16), "Controls/Graph": (34, 24),
             "Controls/HistoryGraph": (34, 24), "Controls/BlankGraph": (34, 24), "Controls/VerticalUp": (16, 17),
             "Controls/VerticalDown": (16, 17), "Controls/BlankGraphSpacing": (4, 19), "Controls/Check": (16, 16),
             "Controls/EmptyCheck": (16, 16), "Message": (16, 16), "Folder": (16, 16), "Attachment": (16, 16),
             "BlankGraphSpacing": (16, 16), "Controls/First": (40, 31), "Controls/Previous": (40, 31),
             "Controls/Next": (40, 31), "Controls/Last": (40, 31), "Controls/All": (40, 31)}

    def test_are_there_in_the_size_that_the_tables_say(self):
        for name, size in self.SIZES.items():
            with open(os.path.join(CONSOLE, "Images", name + ".gif"), "rb") as file:
                head = file.read(10)
            self.assertEqual(head[:6], b"GIF89a", name)
            self.assertEqual((int.from_bytes(head[6:8], "little"), int.from_bytes(head[8:10], "little")), size, name)

    def test_are_what_the_drawing_program_draws(self):
        with tempfile.TemporaryDirectory(prefix="kalvo-") as folder:
            subprocess.run(["/usr/bin/python3", os.path.join(SOURCE, "tools/draw-images"), folder], check=True, timeout=60)
            for name in self.SIZES:
                with open(os.path.join(folder, name + ".gif"), "rb") as drawn, \
                        open(os.path.join(CONSOLE, "Images", name + ".gif"), "rb") as kept:
                    self.assertEqual(drawn.read(), kept.read(), name)


if __name__ == "__main__":
    cases.main()
