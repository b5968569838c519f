"""mail_truth_test.py KALVO IMAP.MD: made mail is shown as it is, from a Maildir and through a Dovecot over the same files that
is set up with the manual's own lines, and both show the same."""

import datetime
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import unittest

import cases
import made_mail
import serving

MANUAL = os.path.abspath(sys.argv.pop())
KALVO = os.path.abspath(sys.argv.pop())

MESSAGES = 330
ROWS = """<%
var live = Session.StaticObjects("gLiveDriller");
live.GotoContainer("EX01", "alice@kalvo.example", "Inbox", 0, 1);
var rows = live.Messages(), names, i, k;
rows.AddSortField("ModifiedDate", 0);
rows.Sort();
rows.MoveFirst();
for (i = 0; i < rows.Count(); ++i, rows.MoveNext()) {
  live.GotoMsgAttachment("EX01", "alice@kalvo.example", rows.Field("ExchangeId"), 0);
  names = live.Attachments();
  Response.Write([rows.Field("Name"), rows.Field("Sender"), rows.Field("CreateDate"), rows.Field("HasAttachment"), rows.Field("Size")].join("\\t"));
  names.MoveFirst();
  for (k = 0; k < names.Count(); ++k, names.MoveNext()) Response.Write("\\t" + names.Field("LongFileName"));
  Response.Write("\\n");
}
%>"""
DIRECTORY = """[server EX01]
public = {}

[mailbox Alice Archer]
server = EX01
account = KALVO\\alice
address = alice@kalvo.example
location = {}
"""
# What a test needs beside the manual's lines: a place, a port, and no encryption on the way to this machine.
HERE = """base_dir = {0}/run
state_dir = {0}/state
log_path = {0}/dovecot.log
protocols = imap
listen = 127.0.0.1
ssl = no
disable_plaintext_auth = no
first_valid_uid = 1
service imap-login {{
  inet_listener imap {{
    port = {1}
  }}
  inet_listener imaps {{
    port = 0
  }}
}}
"""


def shown_date(seconds):
    date = datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc)
    return f"{date:%Y-%m-%d %H:%M:%S}.000+00:00"


class MailTruth(unittest.TestCase):
    maxDiff = 2000

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="kalvo-truth-")
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        os.chmod(cls.folder, 0o755)
        cls.made = list(made_mail.messages(MESSAGES))
        inbox = os.path.join(cls.folder, "srv/mail/alice")
        for name in ("cur", "new", "tmp"):
            os.makedirs(os.path.join(inbox, name))
        os.makedirs(os.path.join(cls.folder, "srv/public"))
        for i, (name, content, *_) in enumerate(cls.made):
            path = os.path.join(inbox, "cur", name)
            with open(path, "wb") as file:
                file.write(content)
            os.utime(path, (1_600_000_000 + i,) * 2)
        cls.write("srv/mail/mailboxes.txt", DIRECTORY.format("public", "alice"))
        cls.write("rows.asp", ROWS)
        cls.start_dovecot()

    @classmethod
    def write(cls, name, text):
        path = os.path.join(cls.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    @classmethod
    def block(cls, name):
        with open(MANUAL, encoding="utf-8") as file:
            text = re.search(rf"```{name}\n(.*?)```", file.read(), re.S).group(1)
        return text.replace("/etc/dovecot", cls.folder).replace("/srv/", cls.folder + "/srv/")

    @classmethod
    def start_dovecot(cls):
        cls.write("kalvo-masters", cls.block("masters"))
        cls.write("kalvo-users", cls.block("users"))
        cls.write("directory", DIRECTORY.format("Public/", "alice"))
        os.chmod(cls.write("password", "secret\n"), 0o600)
        with socket.socket() as taken:
            taken.bind(("127.0.0.1", 0))
            cls.port = taken.getsockname()[1]
        settings = cls.write("dovecot.conf", HERE.format(cls.folder, cls.port) + cls.block("dovecot"))
        subprocess.run(["chown", "-R", "nobody:nogroup", os.path.join(cls.folder, "srv")], check=True)
        server = subprocess.Popen(["dovecot", "-F", "-c", settings], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, start_new_session=True)
        cls.addClassCleanup(lambda: (os.killpg(server.pid, signal.SIGKILL), server.wait()))
        serving.wait_until("the mail server listens", cls.listens)

    @classmethod
    def listens(cls):
        with socket.socket() as trial:
            return trial.connect_ex(("127.0.0.1", cls.port)) == 0

    def rows(self, mail):
        done = subprocess.run([KALVO, "page", "--mail", mail, os.path.join(self.folder, "rows.asp")], cwd=self.folder,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=100,
                              env={**os.environ, "TZ": "UTC"})
        self.assertEqual(done.stderr, b"")
        return [line.split("\t") for line in done.stdout.decode("utf-8").splitlines()]

    def maildir(self):
        return self.rows(f"maildir:{self.folder}/srv/mail")

    def imap(self, more=""):
        return self.rows(f"imap://kalvo@127.0.0.1:{self.port}/?tls=none&directory={self.folder}/directory"
                         f"&password-file={self.folder}/password{more}")

    def check(self, rows):
        self.assertEqual(len(rows), MESSAGES)
        for (name, content, subject, sender, sent, names), row in zip(self.made, rows):
            with self.subTest(name=name, mail=content[:300]):
                self.assertEqual(row[:4] + row[5:], [subject, sender, shown_date(sent), str(int(bool(names))), *names])

    def test_a_maildir_shows_what_messages_say(self):
        rows = self.maildir()
        self.check(rows)
        self.assertEqual([int(row[4]) for row in rows], [len(content) for _, content, *_ in self.made])

    def test_a_server_set_up_as_the_manual_says_shows_the_same(self):
        rows = self.imap()
        self.check(rows)
        self.assertEqual([int(row[4]) for row in rows], [len(content) + content.count(b"\n") for _, content, *_ in self.made])

    def test_a_check_logs_in_at_the_server(self):
        self.write("kalvo.toml", f'mail = "imap://kalvo@127.0.0.1:{self.port}/?tls=none&directory={self.folder}/directory'
                                 f'&password-file={self.folder}/password"\nrun = "run"\n')
        done = subprocess.run([KALVO, "check", "--config", "kalvo.toml"], cwd=self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=100, text=True, check=False)
        self.assertIn(f"Mail        EX01 lets alice*kalvo read INBOX ({MESSAGES} messages)\n", done.stdout + done.stderr)

    def test_so_does_one_that_is_asked_to_act_for_the_owner(self):
        self.assertEqual(self.imap("&login=authorize"), self.imap())


if __name__ == "__main__":
    cases.main()
