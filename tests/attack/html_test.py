"""html_test.py KALVO: no text from outside becomes a tag or an attribute of a page of the console.

Texts come from the address, forms and cookies, from the reporting database and from the mail store. What pages are made
of is learnt from a clean console; every other page is compared with it. The long form makes twenty times as many requests.
"""

import concurrent.futures
import http.client
import os
import random
import re
import sqlite3
import subprocess
import sys
import unittest
import urllib.parse

import cases
from markup import Page
from sample_console import PASSWORD, SampleConsole

KALVO = sys.argv.pop()
LONG = bool(os.environ.get("KALVO_TEST_LONG"))
REQUESTS = 16_800 if LONG else 840
SERVER = "SEA-EX01"
MAIL = ("Resources/MailboxSummary.asp", "Resources/PublicFolderSummary.asp")
BEGINNINGS = ("Tasks/CurrentAlerts.asp", f"{MAIL[0]}?Server={SERVER}&Mailbox=alice", f"{MAIL[1]}?Server={SERVER}&Mailbox=",
              f"{MAIL[0]}?Server={SERVER}&Mailbox=alice&Container=Archive")
IDENTIFIERS = ("Server", "Mailbox", "Container", "ContainerId", "PublicFolderId", "MessageId")
FORM = {"Content-Type": "application/x-www-form-urlencoded"}

HOSTILE = "\"><script>x()</script><img src=x onerror=x()>'<a href=\"javascript:x()\">"
TEXTS = (HOSTILE, "'", '"', "<", ">", "&lt;script&gt;", "\" onmouseover=x() a=\"", "' onmouseover=x() a='", "<!--", "-->",
         "]]>", "</title><script>x()</script>", "javascript:x()", "//evil.example/", "\r\nX: y\r\n\r\n<script>x()</script>",
         "\u2028<svg/onload=x()>", "\u00bc\u00a0script\u00be", "%NAME%<b>")
PARAMETERS = ("Sort", "SortOrder", "First", "PageSize", "Server", "Mailbox", "Container", "ContainerId", "PublicFolderId",
              "MessageId", "Debug", "GroupName", "MailboxGroup", "Organization", "Site", "Report", "Name", "Beginning",
              "ServerName", "MailboxName", "FolderId", "Flags", "ProcessType", "Continue", "Return", "What", "Delete",
              "KALVO_EDGE", "LOGON_USER", HOSTILE)
ERROR_PAGE = {("html", "lang"), ("head",), ("meta", "charset"), ("title",), ("body",), ("h1",), ("p",)}
COMPLAINT = {("p", "class", "role")}  # how a page answers a form that it does not take


class Visitor:
    """Somebody who has signed in."""

    def __init__(self, console, name):
        self.console, self.name = console, name
        answer = console.get("SignIn.asp", method="POST", headers=FORM,
                             body=urllib.parse.urlencode({"Name": name, "Password": PASSWORD}))
        assert answer.status == 303, answer.status
        self.cookie = answer.headers["Set-Cookie"].split(";")[0]

    def get(self, page, **more):
        headers = {**more.pop("headers", {})}
        headers["Cookie"] = "; ".join(filter(None, (self.cookie, headers.get("Cookie"))))
        for _ in range(50):  # another request of the session may wait already
            answer = self.console.get(page, headers=headers, **more)
            if answer.status != 503:
                return answer
        raise AssertionError(f"{page}: the console has no time")


def address(link):
    """A link as a browser asks for it."""
    return urllib.parse.quote(link, safe="%/:?@!$&'()*+,;=-._~")


class Crawl:
    """The pages that links lead to: of links that differ only in values, a few."""

    def __init__(self, visitor, most):
        self.visitor, self.most = visitor, most
        self.seen, self.kinds, self.waiting = {}, {}, list(BEGINNINGS)

    def kind(self, link):
        page, _, query = link.partition("?")
        names = sorted({name for name, value in urllib.parse.parse_qsl(query, keep_blank_values=True)})
        report = urllib.parse.parse_qs(query).get("Report", [""])[0]
        return page, tuple(names), report

    def take(self, page, link):
        target = urllib.parse.urljoin("/KalvoforExchange/" + page, link.split("#")[0])
        if not target.startswith("/KalvoforExchange/") or not target.split("?")[0].endswith(".asp"):
            return
        target = address(target.removeprefix("/KalvoforExchange/"))
        kind = self.kind(target)
        if "SignIn.asp" in target or target in self.seen or self.kinds.get(kind, 0) >= 2:
            return
        self.kinds[kind] = self.kinds.get(kind, 0) + 1
        self.waiting.append(target)

    def run(self):
        while self.waiting and len(self.seen) < self.most:
            link = self.waiting.pop(0)
            if link in self.seen:
                continue
            answer = self.visitor.get(link, timeout=60)
            page = Page(answer.text)
            self.seen[link] = (answer.status, page)
            for each in page.links:
                self.take(link, each)
        return self.seen


def spoil_database(path, numbers):
    """Puts a hostile text behind every text of the reporting database; behind every number too, where those are asked
    for. What pages look rows up by stays in every second row, so that they go on finding some."""
    with sqlite3.connect(path) as database:
        tables = [row[0] for row in database.execute("select name from sqlite_master where type = 'table'")]
        spoiled = 0
        for table in tables:
            for _, column, kind, *_ in database.execute(f"pragma table_info({table})").fetchall():
                name = column.lower()
                if name == "subsystem" or not numbers and not re.match(r"(?i)(var)?char|text|long", kind):
                    continue
                if name.endswith("id") or name == "serverstate":  # what joins rows
                    continue
                kept = " and rowid % 2 = 0" if name in ("attrib3", "computername", "name") else ""
                try:
                    spoiled += database.execute(f'update {table} set "{column}" = "{column}" || ? where "{column}" is not null'
                                                + kept, (HOSTILE,)).rowcount
                except sqlite3.IntegrityError:
                    pass  # the schema itself does not let it in
        return spoiled


def spoil_mail(folder):
    """Messages and folders with hostile texts, in alice's mailbox and in the public folders of her server."""
    message = ("From: \"{0}\" <a@b.example>\r\nTo: {0}\r\nSubject: {0}\r\nDate: Mon, 2 Nov 2026 10:00:00 +0000\r\n"
               "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\nContent-Type: text/plain\r\n\r\n"
               "{0}\r\n--b\r\nContent-Type: application/octet-stream; name=\"{1}\"\r\n"
               "Content-Disposition: attachment; filename=\"{1}\"\r\n\r\nx\r\n--b--\r\n")
    text = message.format(HOSTILE.replace('"', '\\"'), HOSTILE.replace('"', '\\"'))
    name = HOSTILE.replace("/", "").replace(".", "")
    for tree in (os.path.join(folder, SERVER, "alice"), os.path.join(folder, SERVER, "public")):
        for below in (".Archive", f".{name}", f".{name}.Sub"):
            for part in ("cur", "new", "tmp"):
                os.makedirs(os.path.join(tree, below, part), exist_ok=True)
            with open(os.path.join(tree, below, "cur", f"1793613600.<b>{len(below)}.x:2,S"), "w", encoding="utf-8") as file:
                file.write(text)


def states_of(seen):
    """Of the pages that were seen, one for each page and set of parameters; what only orders and pages is no state."""
    found = {}
    for link in seen:
        page, _, query = link.partition("?")
        names = tuple(sorted({name for name, _ in urllib.parse.parse_qsl(query, keep_blank_values=True)}))
        if not set(names) & {"Sort", "First"}:
            found.setdefault((page, names), link)
    return list(found.values())


def setUpModule():
    global console, administrator, alice, clean, states
    console = SampleConsole(KALVO)
    unittest.addModuleCleanup(lambda: console.__exit__(None))
    console.start()
    administrator, alice = Visitor(console, "administrator"), Visitor(console, "alice")
    states, clean = {}, ERROR_PAGE | COMPLAINT
    for visitor in (administrator, alice):
        seen = Crawl(visitor, 400).run()
        states[visitor] = states_of(seen)
        for status, page in seen.values():
            assert status == 200, seen
            assert page.leads_away() == []
            clean.update(page.tags)


class Markup(unittest.TestCase):
    def assert_clean(self, what, page):
        self.assertEqual(sorted(page.tags - clean), [], what)
        self.assertEqual(page.leads_away(), [], what)

    def assert_answer(self, what, answer):
        self.assertIn(answer.status, (200, 302, 400, 403), what)
        if "Location" in answer.headers:
            self.assertTrue(answer.headers["Location"].startswith(("/KalvoforExchange/", "../")), answer.headers["Location"])
        self.assertNotIn("X", answer.headers, what)
        self.assert_clean(what, Page(answer.text))


class Requests(Markup):
    """Every parameter with every text on every page in its states."""

    def requests(self, visitor):
        """(visitor, page, query, form, cookie), first those that a page may take for the library's own."""
        first, rest = [], []
        for link in states[visitor]:
            page, _, query = link.partition("?")
            for parameter in PARAMETERS:
                kept = "&".join(part for part in query.split("&") if part.split("=")[0] != parameter)
                for text in TEXTS:
                    value = urllib.parse.quote_plus(parameter) + "=" + urllib.parse.quote_plus(text)
                    likely = text == HOSTILE and page in MAIL and parameter in IDENTIFIERS
                    found = first if likely else rest
                    found.append((visitor, page, "&".join(filter(None, (kept, value))), None, None))
                    if text == HOSTILE:
                        found.append((visitor, page, kept, value, None))
                        found.append((visitor, page, kept, None, value.replace("+", "%20")))
        random.Random(8).shuffle(rest)
        return first, rest

    def try_one(self, request):
        visitor, page, query, form, cookie = request
        more = {} if form is None else {"method": "POST", "body": form}
        headers = {**(FORM if form is not None else {}), **({"Cookie": cookie} if cookie else {})}
        return visitor.get(f"{page}?{query}", headers=headers, timeout=60, **more)

    def test_no_parameter_adds_a_part_to_a_page(self):
        for visitor in (administrator, alice):
            first, rest = self.requests(visitor)
            self.assertGreater(len(first) + len(rest), 16_800 // 2)
            self.assertGreater(len(first), 100)
            chosen = first + rest[:REQUESTS // 2 - len(first)]
            with concurrent.futures.ThreadPoolExecutor(2) as pool:
                for request, answer in zip(chosen, pool.map(self.try_one, chosen)):
                    self.assert_answer((visitor.name, *request[1:]), answer)


class Outside(Markup):
    """The database and the mail store are hostile."""

    def assert_shown_as_text(self, console, name):
        seen = Crawl(Visitor(console, name), 260 if LONG else 120).run()
        for link, (status, page) in seen.items():
            self.assertEqual(status, 200, link)
            self.assert_clean(link, page)
        shown = [link for link, (_, page) in seen.items() if "<script>x()" in "".join(page.texts)]
        self.assertGreater(len(shown), 30, "the texts are there to be seen")

    def test_no_text_of_the_database_or_a_mail_adds_a_part_to_a_page(self):
        with SampleConsole(KALVO) as spoiled:
            database = os.path.join(spoiled.folder, "sample", "kalvo.db")
            self.assertGreater(spoil_database(database, numbers=False), 1000)
            spoil_mail(os.path.join(spoiled.folder, "sample", "mail"))
            for name in ("administrator", "alice"):
                self.assert_shown_as_text(spoiled, name)
            self.assertGreater(spoil_database(database, numbers=True), 5000)
            self.assert_shown_as_text(spoiled, "administrator")


class Holes(Markup):
    """Ways in that were open once."""

    X = "%22%3E%3Cscript%3Ealert(1)%3C/script%3E"

    def of(self, visitor, page, pattern):
        return re.search(pattern, visitor.get(page).text)[1].replace("&amp;", "&")

    def test_a_trace_of_the_sort(self):
        for debug in ("Table", "Dictionary", "All", "true"):
            answer = administrator.get(f"Tasks/CurrentAlerts.asp?Debug={debug}&Sort=%3Cscript%3Ealert(1)%3C/script%3E")
            self.assert_answer(debug, answer)
            self.assertNotIn("Sort Information", answer.text)

    def test_an_identifier_beside_a_path(self):
        listing = f"Resources/MailboxSummary.asp?Server={SERVER}&Mailbox=alice&Container=Archive"
        message = self.of(alice, listing, r"MessageId=([^\"&#]*)")
        answer = administrator.get(f"Resources/MailboxSummary.asp?Server={SERVER}&Mailbox=alice&Container=x"
                                   f"&MessageId={message}&ContainerId={self.X}")
        self.assertIn("Delete", answer.text)
        self.assert_answer("ContainerId", answer)

    def test_an_identifier_from_a_form_or_a_cookie(self):
        page = f"Resources/MailboxSummary.asp?Server={SERVER}&Mailbox=alice&Container=Inbox"
        for more in ({"method": "POST", "body": "ContainerId=" + self.X, "headers": FORM},
                     {"headers": {"Cookie": "ContainerId=" + self.X}}):
            answer = administrator.get(page, **more)
            self.assertIn("MessageId=", answer.text)
            self.assert_answer(more, answer)

    def test_the_name_of_a_public_folder(self):
        top = f"Tasks/TopN.asp?Server={SERVER}&Report=FolderLargest"
        folder = self.of(administrator, top, r"PublicFolderId=([^\"&#]*)")
        message = self.of(administrator, top, r"MessageId=([^\"&#]*)")
        for query in (f"Mailbox={self.X}&PublicFolderId={folder}", f"Mailbox={self.X}&PublicFolderId={folder}&MessageId={message}",
                      f"Mailbox=&PublicFolderId={self.X}&MessageId={message}"):
            self.assert_answer(query, administrator.get(f"Resources/PublicFolderSummary.asp?Server={SERVER}&{query}"))

    def test_a_path_is_told_to_whom_the_mailbox_belongs(self):
        page = f"Resources/MailboxSummary.asp?Server={SERVER}&Mailbox=admin"
        folder = self.of(administrator, page, r"ContainerId=([^\"&#]*)")
        self.assertIn("<td>Folder:</td>", administrator.get(f"{page}&ContainerId={folder}").text)
        answer = alice.get(f"{page}&ContainerId={folder}")
        self.assertNotIn("Folder:</td>", answer.text)
        self.assertIn("you are not the owner", answer.text)

    def test_a_link_through_the_sign_in(self):
        page = f"/KalvoforExchange/Tasks/CurrentAlerts.asp?Debug=Table&Sort={self.X}"
        answer = console.get("SignIn.asp", method="POST", headers=FORM, body=urllib.parse.urlencode(
            {"Name": "administrator", "Password": PASSWORD, "Return": page}))
        self.assertEqual(answer.status, 303)
        target = answer.headers["Location"].removeprefix("/KalvoforExchange/")
        self.assert_answer(target, administrator.get(target))


class Reach(unittest.TestCase):
    """A folder whose name cannot stand in an address is shown all the same."""

    NAME = '"><img src=x onerror=alert(1)>'

    def test_by_its_identifier(self):
        with SampleConsole(KALVO) as served:
            for tree, below in (("public", ".Announcements"), ("alice", ".Archive")):
                root = os.path.join(served.folder, "sample", "mail", SERVER, tree)
                subprocess.run(["cp", "-r", os.path.join(root, below), os.path.join(root, "." + self.NAME)], check=True)
            visitor = Visitor(served, "administrator")
            shown = "&quot;&gt;&lt;img src=x onerror=alert(1)&gt;"
            for page, who, says in (("PublicFolderSummary.asp", "", "This name cannot stand in an address"),
                                    ("MailboxSummary.asp", "alice", "<td>Folder:</td>")):
                top = visitor.get(f"Resources/{page}?Server={SERVER}&Mailbox={who}").text
                link = next(each for each in Page(top).links if "FolderId=" in each or "ContainerId=" in each
                            if self.NAME in urllib.parse.unquote_plus(each) or page == "MailboxSummary.asp")
                if page == "MailboxSummary.asp":
                    row = top[:top.index(shown)].rindex("<a ")
                    link = Page(top[row:]).links[0]
                folder = visitor.get("Resources/" + address(link.removeprefix("../Resources/"))).text
                self.assertIn(shown, folder)
                self.assertIn(says, folder)
                message = next(each for each in Page(folder).links if "MessageId=" in each)
                opened = visitor.get("Resources/" + address(message.removeprefix("../Resources/"))).text
                self.assertIn('value="DeleteMessage"', opened)
                self.assertNotIn(self.NAME, opened)


if __name__ == "__main__":
    cases.main()
