"""browser_test.py KALVO: the console in Chromium, as its users see and click it, over the small sample."""

import datetime
import http.server
import os
import socketserver
import sys
import threading
import unittest

from selenium.common.exceptions import NoSuchElementException
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import Select

import cases
from browser import Browser
from sample_console import CONSOLE, PASSWORD, SETTINGS, SampleConsole

KALVO = sys.argv.pop()
ALERTS = "Tasks/CurrentAlerts.asp"
MAILBOX = "Resources/MailboxSummary.asp"
FOLDERS = "Resources/PublicFolderSummary.asp"
SERVER = "SEA-EX01"
INBOX = f"{MAILBOX}?Server={SERVER}&Mailbox=alice&Container=Inbox"
FOLDER_TABLE, MESSAGE_TABLE, ATTACHMENT_TABLE = 0, 1, 0
REFUSED = "Mailbox or folder does not exist, or you are not the owner."


def setUpModule():
    global console, browser
    console = SampleConsole(KALVO)
    unittest.addModuleCleanup(lambda: console.__exit__(None))
    console.start()
    browser = Browser(console.address).__enter__()
    unittest.addModuleCleanup(browser.__exit__)


def pages():
    """Every page of the console that shows itself to a click; Process.asp only does what a form says."""
    for folder in ("Tasks", "Resources", "Configuration"):
        for name in sorted(os.listdir(os.path.join(CONSOLE, folder))):
            if name.endswith(".asp") and name != "Process.asp":
                yield f"{folder}/{name}"


def folded(text):
    return text.casefold()


def time(text):
    return datetime.datetime.strptime(text, "%m/%d/%Y %I:%M:%S %p") if text else datetime.datetime.min


def kilobytes(text):
    assert text.endswith("KB"), text
    return float(text[:-2].replace(",", ""))


class Case(unittest.TestCase):
    def setUp(self):
        browser.forget()

    def tearDown(self):
        refused = [each for each in browser.complaints() if "Content Security Policy" in each]
        self.assertEqual(refused, [], "the console keeps to its own policy")

    def enter(self, name, page):
        """Opens a page as somebody who has just signed in."""
        browser.open(page)
        browser.sign_in(name, PASSWORD)

    def report(self, index=0):
        return browser.reports()[index]

    def assert_shown(self, report, shown, count):
        self.assertEqual(report.counts().get("Displaying Entries:"), shown)
        self.assertEqual(len(report.rows()), count)

    def assert_at_bookmark(self, name):
        self.assertEqual(browser.driver.execute_script("return location.hash"), "#" + name)
        top, at_the_end = browser.bookmark_top()
        self.assertTrue(abs(top) < 2 or top > 0 and at_the_end, f"{name} is {top} below the window's upper edge")

    def assert_sorts(self, index, heading, key):
        """Both arrows of a column order its texts, and the rows stay the same ones."""
        before = sorted(self.report(index).rows())
        for arrow, descending in (("Up", False), ("Down", True)):
            self.report(index).sort(heading, arrow)
            report = self.report(index)
            texts = report.column(heading)
            keys = [key(text) for text in texts]
            self.assertGreater(len(set(keys)), 2, f"{heading} tells too little to show an order")
            self.assertEqual(keys, sorted(keys, reverse=descending), f"{heading} {arrow}: {texts}")
            self.assertEqual(sorted(report.rows()), before)


class SigningIn(Case):
    def test_comes_before_every_page(self):
        for page in (*pages(), "Default.asp", "", "Configuration/Process.asp"):
            with self.subTest(page):
                browser.open(page)
                self.assertEqual((browser.page(), browser.heading()), ("SignIn.asp", "Sign In"))
                self.assertEqual(browser.reports(), [])
                self.assertEqual(browser.broken_images(), [])

    def test_leads_to_the_page_that_was_wanted(self):
        self.enter("administrator", "Tasks/Performance.asp?Report=MostDisk")
        self.assertEqual(browser.page(), "Tasks/Performance.asp")
        self.assertIn("Report=MostDisk", browser.driver.current_url)
        self.assertIn("KALVO\\administrator", browser.text())

    def test_with_a_wrong_password_says_so(self):
        browser.open(ALERTS)
        browser.sign_in("alice", "not the password")
        self.assertEqual(browser.page(), "SignIn.asp")
        self.assertIn("This name and password do not fit.", browser.text())
        browser.sign_in("alice", PASSWORD)
        self.assertEqual(browser.page(), ALERTS)

    def test_ends_with_signing_out(self):
        self.enter("alice", INBOX)
        kept = browser.driver.get_cookies()
        browser.sign_out()
        self.assertEqual(browser.page(), "SignIn.asp")
        browser.open(INBOX)
        self.assertEqual(browser.page(), "SignIn.asp")
        for cookie in kept:
            browser.driver.add_cookie(cookie)
        browser.open(INBOX)
        self.assertEqual(browser.page(), "SignIn.asp")


class EveryPage(Case):
    def test_shows_its_images_and_runs_without_complaints(self):
        self.enter("administrator", "Default.asp")
        self.assertEqual(browser.page(), ALERTS)
        scoped = (f"Resources/SingleServerReports.asp?Server={SERVER}", f"Tasks/TopN.asp?Server={SERVER}&Report=MailboxLargest",
                  f"Tasks/Chargeback.asp?Server={SERVER}", INBOX, f"{FOLDERS}?Server={SERVER}")
        browser.complaints()
        for page in (*pages(), *scoped):
            with self.subTest(page):
                browser.open(page)
                self.assertEqual(browser.page(), page.split("?")[0])
                self.assertGreater(browser.images(), 0)
                self.assertEqual(browser.broken_images(), [])
                self.assertEqual(browser.complaints(), [])
                self.assertTrue(page not in scoped or browser.reports())
                self.assertNotIn("Error Generating Table", browser.text())

    def test_is_reached_through_the_navigation(self):
        self.enter("administrator", ALERTS)
        links = browser.driver.find_elements(By.CSS_SELECTOR, "#navigation a")
        titles = [link.text for link in links]
        self.assertGreater(len(titles), 12)
        for place, title in enumerate(titles):
            browser.follow(browser.driver.find_elements(By.CSS_SELECTOR, "#navigation a")[place])
            lit = browser.driver.find_elements(By.CSS_SELECTOR, "#navigation li.lit")
            self.assertEqual([each.text for each in lit], [title])


class CurrentAlerts(Case):
    def test_have_delete_boxes_for_an_administrator(self):
        self.enter("administrator", ALERTS)
        report = self.report()
        self.assertEqual(report.headers()[0], "Delete")
        self.assertEqual(len(report.boxes()), len(report.rows()))
        for box in report.boxes()[1:3]:
            box.click()
        browser.press("Delete selected alerts")
        self.assertIn("2 alerts chosen.", browser.text())

    def test_have_none_for_anybody_else(self):
        for name in ("alice", "visitor"):
            with self.subTest(name):
                browser.forget()
                self.enter(name, ALERTS)
                report = self.report()
                self.assertEqual(len(report.rows()), 50)
                self.assertEqual(report.boxes(), [])
                self.assertNotIn("Delete", report.headers())
                self.assertRaises(NoSuchElementException, browser.button, "Delete selected alerts")

    def test_page_through_all_entries(self):
        self.enter("administrator", ALERTS)
        count = int(self.report().counts()["Number of Entries:"])
        self.assertGreater(count, 100)
        self.assert_shown(self.report(), "1 - 50", 50)
        seen = self.report().rows()
        while len(seen) < count:
            self.report().go("Next")
            self.assert_at_bookmark("1chart")
            more = self.report().rows()
            self.assert_shown(self.report(), f"{len(seen) + 1} - {len(seen) + len(more)}", len(more))
            seen += more
        self.assertRaises(AssertionError, self.report().link, "Next")
        self.report().go("All")
        self.assert_at_bookmark("1chart")
        self.assertEqual(self.report().rows(), seen)
        browser.open(ALERTS)
        self.report().go("Last")
        self.assertEqual(self.report().rows()[-1], seen[-1])
        self.report().go("Previous")
        self.report().go("First")
        self.assert_shown(self.report(), "1 - 50", 50)
        self.assertEqual(self.report().rows(), seen[:50])

    def test_sort_by_their_arrows(self):
        self.enter("administrator", ALERTS)
        self.report().go("All")
        for heading, key in (("Alerted Resource", folded), ("Time of Alert", time), ("Server Name", folded)):
            with self.subTest(heading):
                self.assert_sorts(0, heading, key)
                self.assert_at_bookmark("1chart")

    def test_stay_sorted_while_paging(self):
        self.enter("administrator", ALERTS)
        self.report().sort("Server Name", "Down")
        servers = self.report().column("Server Name")
        self.report().go("Next")
        servers += self.report().column("Server Name")
        self.assertGreater(len(servers), 99)
        self.assertEqual(servers, sorted(servers, key=folded, reverse=True))


class Mailbox(Case):
    def open_inbox(self, name="alice"):
        """As a user does it: from the navigation, by the form, into the folder."""
        self.enter(name, ALERTS)
        browser.follow_text("Mailbox")
        Select(browser.driver.find_element(By.NAME, "Server")).select_by_visible_text(SERVER)
        browser.driver.find_element(By.NAME, "Mailbox").send_keys("alice")
        browser.press("Open")
        self.assertEqual(browser.page(), MAILBOX)
        browser.follow_text("Inbox")

    def messages(self):
        return self.report(MESSAGE_TABLE)

    def open_message(self, picked):
        """Opens the first message that `picked` (row element) takes and returns what its row says."""
        headers = self.messages().headers()
        for element, texts in zip(self.messages().row_elements(), self.messages().rows()):
            if picked(element):
                browser.follow(element.find_elements(By.TAG_NAME, "a")[-1])
                return dict(zip(headers, texts))
        raise AssertionError("no such message")

    def detail(self, name):
        return browser.driver.find_element(By.XPATH, f"//tr[th='{name}']/td[2]").text

    def files(self):
        return console.mailbox(SERVER, "alice")

    def test_sorts_by_size_and_pages_on(self):
        self.open_inbox()
        count = int(self.messages().counts()["Number of Entries:"])
        self.assertEqual(count, len(self.files()))
        self.messages().sort("Message Size", "Down")
        self.assert_at_bookmark("2chart")
        self.assert_shown(self.messages(), "1 - 50", 50)
        sizes = self.messages().column("Message Size")
        self.messages().go("Next")
        self.assert_at_bookmark("2chart")
        self.assert_shown(self.messages(), f"51 - {count}", count - 50)
        sizes = [kilobytes(size) for size in sizes + self.messages().column("Message Size")]
        self.assertEqual(sizes, sorted(sizes, reverse=True))
        self.assertGreater(sizes[0], sizes[-1])
        self.messages().go("All")
        self.assertEqual([kilobytes(size) for size in self.messages().column("Message Size")], sizes)
        self.assert_sorts(MESSAGE_TABLE, "Message Size", kilobytes)

    def test_folders_sort_apart_from_messages(self):
        self.enter("alice", f"{MAILBOX}?Server={SERVER}&Mailbox=alice")
        self.assert_sorts(FOLDER_TABLE, "Message Count", int)
        self.assert_sorts(FOLDER_TABLE, "Folder Name", folded)
        self.assertEqual(browser.complaints(), [])

    def test_shows_a_message_with_its_attachments(self):
        self.open_inbox()
        self.messages().sort("Message Size", "Down")
        row = self.open_message(lambda element: element.find_elements(By.CSS_SELECTOR, 'img[src$="/Attachment.gif"]'))
        for detail, column in (("Subject", "Message Subject"), ("Sender", "Sender"), ("Size", "Message Size"),
                               ("Creation Date", "Creation Date"), ("Modification Date", "Modification Date")):
            self.assertEqual(self.detail(detail), row[column])
        report = self.report(ATTACHMENT_TABLE)
        names = report.column("File Name")
        self.assertGreater(len(names), 0)
        self.assertEqual(report.counts()["Number of Entries:"], str(len(names)))
        self.assertTrue(all(names))
        sizes = [kilobytes(size) for size in report.column("Attachment Size")]
        self.assertLess(sum(sizes), kilobytes(row["Message Size"]))
        self.assertAlmostEqual(sum(sizes), kilobytes(report.totals()[-1]), delta=0.01 * len(sizes))

    def test_keeps_a_message_unless_the_question_is_answered_yes(self):
        self.enter("alice", INBOX)
        before, shown = self.files(), self.messages().rows()
        self.messages().row_elements()[0].find_element(By.NAME, "Delete").click()
        self.assertRegex(browser.answer(yes=False), "^Delete this message")
        self.assertEqual((browser.page(), self.messages().rows()), (MAILBOX, shown))
        browser.open(INBOX)
        self.assertEqual((self.messages().rows(), self.files()), (shown, before))

    def test_deletes_a_message_from_its_own_page(self):
        self.open_inbox()
        before = self.files()
        self.messages().go("All")
        rows = self.messages().rows()
        self.messages().sort("Message Size", "Up")
        row = self.open_message(lambda element: True)
        gone = browser.driver.current_url.removeprefix(browser.address)
        self.assertEqual(self.detail("Subject"), row["Message Subject"])
        self.confirm(browser.button("Delete"))
        self.assertEqual(browser.page(), MAILBOX)
        self.messages().go("All")
        rows.remove(list(row.values()))
        self.assertEqual(self.messages().rows(), rows)
        self.assertEqual(self.messages().counts()["Number of Entries:"], str(len(before) - 1))
        self.assertEqual((len(before - self.files()), self.files() - before), (1, set()))
        browser.open(gone)
        self.assertIn("Error Generating Table", browser.text())
        self.assertNotIn(row["Sender"], browser.text())

    def test_deletes_a_message_from_the_list(self):
        self.enter("alice", INBOX)
        before = self.files()
        self.confirm(self.messages().row_elements()[0].find_element(By.NAME, "Delete"))
        self.assertEqual((browser.page(), len(before - self.files())), (MAILBOX, 1))
        self.assertEqual(self.messages().counts()["Number of Entries:"], str(len(before) - 1))

    def confirm(self, button):
        """Deletes: yes to the question of the list, and once more on the page that shows the message."""
        browser.leaves(lambda: (button.click(), browser.answer(yes=True)))
        self.assertEqual((browser.page(), browser.heading()), ("Configuration/Process.asp", "Delete a Message?"))
        browser.press("Delete this message")

    def test_of_somebody_else_is_refused(self):
        self.enter("alice", f"{MAILBOX}?Server={SERVER}&Mailbox=adam.abbott")
        for address in ("", "&Container=Inbox"):
            browser.open(f"{MAILBOX}?Server={SERVER}&Mailbox=adam.abbott{address}")
            self.assertIn(REFUSED, browser.text())
            self.assertEqual([report.rows() for report in browser.reports() if report.rows()], [])

    def test_is_refused_to_users_without_the_right(self):
        self.enter("visitor", INBOX)
        self.assertIn("You do not have adequate permission to view this mailbox's information.", browser.text())
        self.assertEqual(browser.reports(), [])

    def test_of_anybody_is_open_to_an_administrator(self):
        self.open_inbox("administrator")
        self.assert_shown(self.messages(), "1 - 50", 50)
        row = self.open_message(lambda element: True)
        self.assertEqual(self.detail("Subject"), row["Message Subject"])


class PublicFolders(Case):
    def test_are_open_to_an_administrator(self):
        self.enter("administrator", ALERTS)
        browser.follow_text("Public Folders")
        Select(browser.driver.find_element(By.NAME, "Server")).select_by_visible_text(SERVER)
        browser.press("Open")
        browser.follow_text("Announcements")
        messages = self.report(MESSAGE_TABLE)
        self.assertGreater(len(messages.rows()), 3)
        subject = messages.column("Message Subject")[0]
        browser.follow(messages.row_elements()[0].find_elements(By.TAG_NAME, "a")[-1])
        self.assertEqual(browser.page(), FOLDERS)
        self.assertEqual(browser.driver.find_element(By.XPATH, "//tr[th='Subject']/td[2]").text, subject)

    def test_are_closed_to_everybody_else(self):
        for name in ("alice", "visitor"):
            with self.subTest(name):
                browser.forget()
                self.enter(name, f"{FOLDERS}?Server={SERVER}&Mailbox=Announcements")
                self.assertIn("Public folders are shown to administrators only.", browser.text())
                self.assertEqual(browser.reports(), [])


class Walk(Case):
    """What a user does in one sitting, with the content policy in force and nothing refused by it."""

    def test_from_signing_in_to_signing_out(self):
        browser.complaints()
        self.enter("alice", INBOX)
        messages = lambda: self.report(MESSAGE_TABLE)
        messages().go("Next")
        messages().go("First")
        messages().sort("Sender", "Up")
        messages().sort("Message Size", "Down")
        before, shown = console.mailbox(SERVER, "alice"), messages().column("Message Subject")
        browser.follow(messages().row_elements()[0].find_elements(By.TAG_NAME, "a")[-1])
        subject = browser.driver.find_element(By.XPATH, "//tr[th='Subject']/td[2]").text
        browser.leaves(lambda: (browser.button("Delete").click(), browser.answer(yes=True)))
        self.assertIn(subject, browser.text())
        browser.press("Delete this message")
        self.assertEqual((browser.page(), len(before - console.mailbox(SERVER, "alice"))), (MAILBOX, 1))

        browser.open(f"Resources/DeletedMessages.asp?Server={SERVER}&Mailbox=alice")
        row = browser.driver.find_element(By.XPATH, f"//tr[td[1]='{subject}']")
        browser.follow(row.find_element(By.CSS_SELECTOR, 'input[value="Restore"]'))
        self.assertIn("The message is back in the folder Inbox.", browser.text())
        self.assertEqual(console.mailbox(SERVER, "alice"), before)
        browser.open(INBOX)
        messages().sort("Sender", "Up")
        messages().sort("Message Size", "Down")
        self.assertEqual(messages().column("Message Subject"), shown)
        browser.sign_out()
        self.assertEqual(browser.page(), "SignIn.asp")
        self.assertEqual(browser.complaints(), [])

    def test_of_an_administrator_through_the_audit_log(self):
        self.enter("administrator", "Configuration/AuditLog.asp?Event=signed-in")
        self.assertIn("KALVO\\administrator", browser.text())
        self.assertEqual(browser.complaints(), [])


class Neighbour:
    """A page on another port of the same host, as somebody else's server beside the console."""

    def __init__(self, page):
        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                self.send_response(200)
                self.send_header("Content-Type", "text/html")
                self.end_headers()
                self.wfile.write(page.encode())

            def log_message(self, *words):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.port = self.server.server_address[1]

    def __enter__(self):
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *error):
        self.server.shutdown()
        self.server.server_close()


class Attacks(Case):
    """What somebody else's page, link or name can have a signed-in user's browser do."""

    def delete_address(self):
        """The address of a message's delete form, with everything that the form sends."""
        browser.open(INBOX)
        form = browser.driver.find_element(By.CSS_SELECTOR, 'form[action$="Process.asp"]')
        return browser.driver.execute_script(
            "return arguments[0].action + '?' + new URLSearchParams(new FormData(arguments[0]))", form)

    def setUp(self):
        super().setUp()
        self.enter("alice", INBOX)
        self.address = self.delete_address()
        self.before = console.mailbox(SERVER, "alice")

    def tearDown(self):
        browser.open("SignIn.asp")  # cookies are forgotten where one is
        browser.complaints()
        self.assertEqual(console.mailbox(SERVER, "alice"), self.before, "a message was deleted")

    def attack(self, page, name, done):
        with Neighbour(page) as neighbour:
            browser.driver.get(f"http://{name}:{neighbour.port}/")
            browser.wait("the neighbour's page did not end", lambda driver: driver.execute_script(done))

    def test_by_a_neighbours_image_frame_and_prefetch_delete_nothing(self):
        for name in ("127.0.0.1", "localhost"):
            for why, page, done in (
                    ("image", f'<img src="{self.address}" onload="document.title=1" onerror="document.title=1">',
                     "return document.title == '1'"),
                    ("frame", f'<iframe src="{self.address}" onload="document.title=1"></iframe>', "return document.title == '1'"),
                    ("prefetch", f'<link rel="prefetch" href="{self.address}"><p>', "return performance.now() > 500"),
                    ("head", f"<script>fetch('{self.address}', {{method: 'HEAD', mode: 'no-cors', credentials: 'include'}})"
                             ".finally(() => document.title = 1)</script>", "return document.title == '1'")):
                with self.subTest(f"{why} of {name}"):
                    self.attack(page, name, done)

    def test_by_a_neighbours_form_delete_nothing(self):
        form = f'<form method="post" action="{self.address}"><input name="Token" value="{"0" * 112}"></form>'
        for name in ("127.0.0.1", "localhost"):
            with self.subTest(name), Neighbour(form + "<script>document.forms[0].submit()</script>") as neighbour:
                browser.driver.get(f"http://{name}:{neighbour.port}/")
                browser.wait("the console did not answer",
                             lambda driver: driver.current_url.startswith(browser.address) and driver.title != "")
                self.assertIn(browser.driver.title, ("Forbidden", "Sign In - Kalvo for Exchange"))

    def test_through_the_sign_in_show_the_question(self):
        browser.forget()
        with Neighbour(f'<a href="{self.address}">Your report</a>') as neighbour:
            browser.driver.get(f"http://localhost:{neighbour.port}/")
            browser.follow_text("Your report")
            self.assertEqual(browser.page(), "SignIn.asp")
            browser.sign_in("alice", PASSWORD)
        self.assertEqual((browser.page(), browser.heading()), ("Configuration/Process.asp", "Delete a Message?"))

    def test_under_a_foreign_name_reach_nothing(self):
        port = browser.address.split(":")[2].split("/")[0]
        browser.driver.get(f"http://evil.example:{port}/KalvoforExchange/{INBOX}")
        self.assertNotIn("Kalvo for Exchange", browser.driver.title)
        self.assertEqual(browser.reports(), [])


class Injections(Case):
    """Texts of a request that would be scripts if a page wrote them as they are."""

    SCRIPT = "%22%3E%3Cscript%3Edocument.title%3D%27owned%27%3C%2Fscript%3E%3Cimg+src%3Dx+onerror%3D%22document.title%3D%27owned%27%22%3E"

    def test_run_nothing(self):
        self.enter("administrator", INBOX)
        message = browser.driver.find_element(By.NAME, "MessageId").get_attribute("value")
        for page in (f"{ALERTS}?Debug=Table&Sort={self.SCRIPT}", f"{ALERTS}?Debug=All&Sort={self.SCRIPT}",
                     f"{MAILBOX}?Server={SERVER}&Mailbox=alice&Container=x&MessageId={message}&ContainerId={self.SCRIPT}",
                     f"{MAILBOX}?Server={SERVER}&Mailbox=alice&Container={self.SCRIPT}",
                     f"{FOLDERS}?Server={SERVER}&Mailbox={self.SCRIPT}&PublicFolderId={self.SCRIPT}",
                     f"{FOLDERS}?Server={SERVER}&Mailbox=&PublicFolderId={self.SCRIPT}&MessageId={message}",
                     f"Configuration/AuditLog.asp?User={self.SCRIPT}&Event={self.SCRIPT}",
                     f"Resources/DeletedMessages.asp?Server={SERVER}&Mailbox={self.SCRIPT}",
                     f"Configuration/Process.asp?ProcessType=DeleteMessage&Flags=0&ServerName={SERVER}&MailboxName=alice"
                     f"&MessageId={message}&FolderId={self.SCRIPT}&Continue={self.SCRIPT}"):
            with self.subTest(page):
                browser.open(page)
                self.assertNotIn("owned", browser.driver.title)
        browser.complaints()

    def test_in_a_cookie_run_nothing(self):
        self.enter("administrator", INBOX)
        browser.driver.add_cookie({"name": "ContainerId", "value": self.SCRIPT, "path": "/"})
        browser.open(INBOX)
        self.assertNotIn("owned", browser.driver.title)
        browser.complaints()

    def test_in_a_folders_name_run_nothing(self):
        name = '"><img src=x onerror=alert(1)>'
        os.makedirs(os.path.join(console.folder, "sample", "mail", SERVER, "public", "." + name, "cur"))
        self.enter("administrator", f"{FOLDERS}?Server={SERVER}&Mailbox=")
        browser.follow_text(name)
        self.assertIn(name, browser.driver.find_element(By.TAG_NAME, "body").text)
        browser.complaints()

    def test_in_a_mail_servers_words_run_nothing(self):
        with MailServer("NO <script>document.title='owned'</script>") as server, server.console() as refusing:
            browser.driver.get(f"{refusing.address}{MAILBOX}?Server={SERVER}&Mailbox=alice&Container=Inbox")
            browser.sign_in("administrator", PASSWORD)
            self.assertIn("document.title", browser.driver.find_element(By.TAG_NAME, "body").text)
            self.assertNotIn("owned", browser.driver.title)
        browser.complaints()


class MailServer:
    """An IMAP server that lets everybody in and answers whatever else it is asked with the same words."""

    DIRECTORY = (f"[server {SERVER}]\n\n[mailbox alice]\nserver = {SERVER}\naccount = KALVO\\alice\n"
                 "address = alice@kalvo.example\nlocation = alice\n")

    def __init__(self, words):
        class Handler(socketserver.StreamRequestHandler):
            def handle(self):
                self.wfile.write(b"* OK hello\r\n")
                for line in self.rfile:
                    tag, command = line.decode().split()[:2]
                    answer = "OK done" if command.upper() in ("CAPABILITY", "LOGIN") else words
                    if command.upper() == "CAPABILITY":
                        self.wfile.write(b"* CAPABILITY IMAP4rev1\r\n")
                    self.wfile.write(f"{tag} {answer}\r\n".encode())

        self.server = socketserver.ThreadingTCPServer(("127.0.0.1", 0), Handler)
        self.server.daemon_threads = True

    def __enter__(self):
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *error):
        self.server.shutdown()
        self.server.server_close()

    def console(self):
        """A console, not yet started, whose mailboxes are on this server."""
        made = SampleConsole(KALVO)
        for name, content in (("directory", self.DIRECTORY), ("password", "secret\n")):
            with open(os.path.join(made.folder, name), "w", encoding="utf-8") as file:
                file.write(content)
            os.chmod(file.name, 0o600)
        port = self.server.server_address[1]
        made.configure(SETTINGS.replace("maildir:sample/mail",
                                        f"imap://admin@127.0.0.1:{port}/?tls=none&directory={made.folder}/directory"
                                        f"&password-file={made.folder}/password"))
        return made


if __name__ == "__main__":
    cases.main()
