"""mail_test.py KALVO: mails that somebody sends to stop the console or to put text into its pages. Each lies in a folder
of its own of a mailbox that `kalvo serve` shows: the folder is listed, its message opened, no worker dies, and another
folder is there all the while."""

import os
import re
import sys
import unittest
from urllib.parse import quote

import cases
import serving

KALVO = os.path.abspath(sys.argv.pop())
CONSOLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "console")

MAILBOXES = """[server EX01]
[mailbox Alice Archer]
server = EX01
account = KALVO\\alice
address = alice@kalvo.example
location = alice
"""

SETTINGS = """mail = "maildir:{store}"
workers = 1
[visitor]
logon = 'KALVO\\admin'
[visitor.session]
KalvoAdministrator = "Yes"
KalvoDrillDownAuth = "Yes"
"""

HEAD = b"From: f@kalvo.example\nSubject: Zyx\n"
MARKUP = '"><script>x()</script><img src=x onerror=x()>'


def nested(count):
    return b"".join(b"Content-Type: multipart/mixed; boundary=b%d\n\n--b%d\n" % (i, i) for i in range(count))


def mails():
    """What the mail is, its bytes, and the subject that is shown."""
    for name in (b"From", b"To", b"Cc", b"Bcc", b"Reply-To", b"Sender"):
        yield f"60 000 groups in {name.decode()}", name + b": " + b"a:" * 60_000 + b"\nSubject: Zyx\n\nx", "Zyx"
    yield "50 000 groups with addresses", b"From: " + b"a:b@c," * 50_000 + b"\nSubject: Zyx\n\nx", "Zyx"
    yield "2 000 000 parentheses", b"From: " + b"(" * 2_000_000 + b"\nSubject: Zyx\n\nx", "Zyx"
    yield "4 000 000 header lines", HEAD + b"aaaaa:b\n" * 4_000_000, "Zyx"
    yield "200 000 attachments", (HEAD + b"Content-Type: multipart/mixed; boundary=b\n\n" +
                                  b"--b\nContent-Type: application/pdf\n\nx\n" * 200_000), "Zyx"
    yield "100 000 nested multiparts", HEAD + nested(100_000), "Zyx"
    yield "50 000 nested messages", HEAD + b"Content-Type: message/rfc822\n\n" * 50_000, "Zyx"
    yield "500 000 encoded words", b"Subject: " + b"=?utf-8?Q?Zyx?= " * 500_000 + b"\n\nx", "Zyx" * 100
    yield "a subject of 60 MB", b"Subject: " + b"Zyx" * 20_000_000 + b"\n\nx", "Zyx" * 100
    yield "100 000 pieces of a file name", (HEAD + b"Content-Disposition: attachment" +
                                            b"".join(b"; filename*%d=x" % i for i in range(100_000)) + b"\n\nx"), "Zyx"
    yield "a year that no calendar has", HEAD + b"Date: Mon, 1 Jan 999999999999 00:00:00 +0000\n\nx", "Zyx"
    yield "30 MB of zeros", HEAD + b"\n" + bytes(30_000_000), "Zyx"
    yield "markup", (f"From: {MARKUP} <a@b>\nSubject: {MARKUP}\nContent-Disposition: attachment; "
                     f"filename=\"{MARKUP[2:]}\"\n\nx").encode(), "&lt;script&gt;"


class Mail(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = serving.Serving(KALVO, site=CONSOLE)
        cls.store = os.path.join(cls.server.folder, "mail")
        cls.server.configure(SETTINGS.format(store=cls.store))
        cls.write("mailboxes.txt", MAILBOXES.encode())
        cls.deliver("Calm", "1.host:2,S", b"Subject: Calm\n\nx\n")
        cls.server.start()
        cls.addClassCleanup(cls.server.__exit__)

    @classmethod
    def write(cls, name, content):
        path = os.path.join(cls.store, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)

    @classmethod
    def deliver(cls, folder, name, content):
        cls.write(f"alice/.{folder}/cur/{name}", content)

    def page(self, query):
        answer = self.server.get(f"Resources/MailboxSummary.asp?Server=EX01&Mailbox=alice&{query}")
        self.assertEqual(answer.status, 200, query)
        return answer.text

    def listed(self, folder):
        return self.page(f"Container={quote(folder)}")

    def check(self, folder, subject):
        """Lists the folder, opens its message, and sees that a worker lives to show another folder."""
        listed = self.listed(folder)
        self.assertIn(subject, listed)
        message = re.search(r'name="MessageId" value="([A-Za-z0-9_-]+)"', listed)
        self.assertIsNotNone(message, listed[-2000:])
        self.assertIn(subject, self.page(f"Container={quote(folder)}&MessageId={message[1]}"))
        self.assertIn("Calm", self.listed("Calm"))

    def tearDown(self):
        with open(self.server.log_file, encoding="utf-8") as file:
            log = file.read()
        self.assertNotRegex(log, "died|killed|ended|lost")

    def test_a_hostile_mail_is_listed_and_opened(self):
        for number, (why, content, subject) in enumerate(mails()):
            with self.subTest(why):
                self.deliver(f"Bomb{number}", "1.host:2,S", content)
                self.check(f"Bomb{number}", subject)

    def test_text_from_a_mail_stays_text(self):
        self.deliver("Markup", f"{MARKUP[:2]}x.host:2,S", [c for w, c, _ in mails() if w == "markup"][0])
        text = self.listed("Markup")
        self.assertNotIn("<script>x()", text)
        self.assertNotIn("<img src=x", text)

    def test_a_file_far_larger_than_the_disk_is_listed(self):
        self.deliver("Sparse", "1.host:2,S", HEAD + b"\n")
        os.truncate(os.path.join(self.store, "alice/.Sparse/cur/1.host:2,S"), 200 << 30)
        self.check("Sparse", "Zyx")

    def test_sizes_that_names_tell_do_not_run_over(self):
        for number in range(3):
            self.deliver("Sizes", f"{number}.host,S=9223372036854775807:2,S", HEAD + b"\nx")
        self.assertNotIn("8,796,093,022,208", self.page("Container="))

    def test_what_is_no_message_is_passed_over(self):
        self.deliver("Odd", "1.host:2,S", HEAD + b"\nx")
        folder = os.path.join(self.store, "alice/.Odd/cur")
        os.mkfifo(os.path.join(folder, "pipe:2,S"))
        os.symlink("/etc/passwd", os.path.join(folder, "link:2,S"))
        os.symlink("/etc", os.path.join(self.store, "alice", ".Linked"))
        self.check("Odd", "Zyx")
        self.assertNotIn("root:", self.listed("Odd"))
        self.assertNotIn("Linked", self.page("Container="))


if __name__ == "__main__":
    cases.main()
